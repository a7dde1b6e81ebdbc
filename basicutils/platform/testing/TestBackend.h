// The asynchronous engine the test programs run on.
//
// Every test program links a global test environment that reads
// BASICUTILS_TEST_ASYNC_BACKEND before the first test: "pool" forces the pool
// of I/O threads, "uring" asks for io_uring (the pool where the kernel gives
// no ring); unset or anything else leaves the library's own choice. CTest
// runs the file and platform suites once more with "pool", so both engines
// carry the whole suites. Only test code reads the variable.
#pragma once

#include <basicutils/platform/internal/AsyncIo.h>

namespace basicutils::testing {

// The engine chosen for this run; tests that switch engines go back to it.
detail::AsyncBackendKind TestAsyncBackend();

}  // namespace basicutils::testing
