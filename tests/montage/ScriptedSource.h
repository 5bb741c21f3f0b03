#pragma once

#include "kvsig/montage/DataSource.h"

#include <algorithm>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// A filter setting that is on, in hertz.
constexpr FilterAttr on(double cutoff, double second = 0.0) {
    return {.use = true, .cutoff = cutoff, .second = second};
}

struct SourceCall {
    long first, last;
    double scale;
    friend bool operator==(const SourceCall&, const SourceCall&) = default;
    friend std::ostream& operator<<(std::ostream& out, const SourceCall& call) {
        return out << call.first << ".." << call.last << " x " << call.scale;
    }
};

/// A source whose sample `i` is value(i) times the scale. It logs what the raw computation is asked
/// for and can be told to deliver, or to claim, other counts.
class ScriptedSource : public DataSource {
  public:
    explicit ScriptedSource(IDataReader& reader) : DataSource(reader) {}

    std::vector<SourceCall> calls;
    std::function<double(long)> value = [](long i) { return 1000.0 + static_cast<double>(i); };
    /// The count that is answered for one asked for; no more than that is written.
    std::function<int(int)> answer = [](int wanted) { return wanted; };

    std::vector<SourceCall> takeCalls() { return std::exchange(calls, {}); }

    short type() override { return 1; }
    const char* grid1() override { return ""; }
    const char* grid2() override { return ""; }
    const char* name() override { return ""; }
    void constructDefn(char*, bool) override {}
    void setChannel12(int, int) override {}
    void setName(const char*) override {}
    int _getData(long first, long last, float* buf, double scale) override {
        calls.push_back({first, last, scale});
        const auto wanted = static_cast<int>(last - first + 1);
        const int count = answer(wanted);
        for (int i = 0; i < std::min(count, wanted); ++i)
            buf[i] = static_cast<float>(value(first + i) * scale);
        return count;
    }
};

/// The samples `first`..`last`, and in `delivered` the count answered.
inline std::vector<float> read(DataSource& source, long first, long last, double scale = 1.0,
                               int* delivered = nullptr) {
    std::vector<float> samples(static_cast<std::size_t>(last - first + 1), -7.0F);
    const int count = source.getData(first, last, samples.data(), scale);
    if (delivered)
        *delivered = count;
    return samples;
}

inline std::string definition(DataSource& source, bool withSettings = true) {
    std::vector<char> text(DataSource::definitionSize, '?');
    source.constructDefn(text.data(), withSettings);
    return text.data();
}

} // namespace kvsig::test
