#include "tool/HeardWarnings.h"

#include "kvsig/util/LogSink.h"

namespace kvsig::tool {

HeardWarnings::HeardWarnings() {
    SetLogSink([this](int level, const char* text) {
        if (level >= logWarning)
            m_texts.emplace_back(text);
    });
}

HeardWarnings::~HeardWarnings() { SetLogSink({}); }

} // namespace kvsig::tool
