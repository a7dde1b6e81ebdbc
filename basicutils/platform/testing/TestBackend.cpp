// Chooses the asynchronous engine for a whole test program; see TestBackend.h.
#include <basicutils/platform/testing/TestBackend.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace basicutils::testing {

namespace {

class BackendEnvironment : public ::testing::Environment {
  public:
    void SetUp() override { detail::SelectAsyncBackend(TestAsyncBackend()); }
};

[[maybe_unused]] ::testing::Environment* const gBackend =
    ::testing::AddGlobalTestEnvironment(new BackendEnvironment);

}  // namespace

detail::AsyncBackendKind TestAsyncBackend() {
    const char* chosen = std::getenv("BASICUTILS_TEST_ASYNC_BACKEND");
    if (!chosen) return detail::AsyncBackendKind::kAutomatic;
    if (std::strcmp(chosen, "pool") == 0) return detail::AsyncBackendKind::kThreadPool;
    if (std::strcmp(chosen, "uring") == 0) return detail::AsyncBackendKind::kIoUring;
    return detail::AsyncBackendKind::kAutomatic;
}

}  // namespace basicutils::testing
