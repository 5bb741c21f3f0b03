#include "kvsig/util/LogSink.h"

#include <memory>
#include <mutex>
#include <utility>

namespace kvsig {
namespace {

using Sink = std::function<void(int, const char*)>;

struct SinkHolder {
    std::mutex mutex;
    std::shared_ptr<const Sink> sink;
};

SinkHolder& holder() {
    static SinkHolder instance;
    return instance;
}

} // namespace

void SetLogSink(Sink sink) {
    auto installed = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    const std::lock_guard lock(holder().mutex);
    holder().sink = std::move(installed);
}

void logMessage(int level, const std::string& text) {
    std::shared_ptr<const Sink> sink;
    {
        const std::lock_guard lock(holder().mutex);
        sink = holder().sink;
    }
    if (sink)
        (*sink)(level, text.c_str());
}

} // namespace kvsig
