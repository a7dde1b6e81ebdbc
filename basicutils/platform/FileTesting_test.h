// Shared by the file services' tests: the scratch folder of the test support
// (one class for every test program, so that no two definitions of it meet
// in one program), and GoogleTest.
#pragma once

#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>
