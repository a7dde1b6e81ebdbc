#include "Tasks_bench.h"

namespace bench {
namespace {

struct NullListener : basicutils::LListener {
    bool ListenToMessage(int32_t message, void* param) override {
        seen += message + (param != nullptr);
        return true;
    }
    int64_t seen = 0;
};

}  // namespace

std::unique_ptr<basicutils::LListener> MakeNullListener() {
    return std::make_unique<NullListener>();
}

}  // namespace bench
