#include "Messaging_bench.h"

namespace bench {
namespace {

struct CountingListener : basicutils::LListener {
    bool ListenToMessage(int32_t message, void*) override {
        sum += message;
        return true;
    }
    int64_t sum = 0;
};

struct CountingPlain : PlainListener {
    bool Listen(int32_t message, void*) override {
        sum += message;
        return true;
    }
    int64_t sum = 0;
};

}  // namespace

PlainListener::~PlainListener() = default;

std::unique_ptr<basicutils::LListener> MakeCountingListener() {
    return std::make_unique<CountingListener>();
}

std::unique_ptr<PlainListener> MakeCountingPlain() {
    return std::make_unique<CountingPlain>();
}

}  // namespace bench
