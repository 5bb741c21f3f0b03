#include "tool/HeldPair.h"

#include "kvsig/util/SampleRange.h"
#include "tool/HeldSamples.h"

namespace kvsig::tool {

// No command sets the sample lag.
int HeldPair::getData(int channel, long first, long last, float* out, double gain, int accumulate) {
    const int count = rangeLength(first, last);
    const int firstCount = this->first()->channelCount();
    IDataReader& member = channel < firstCount ? *this->first() : *second();
    const HeldSamples held(member.samplingRate(), samplingRate());
    if (!held.isSlower() || count == 0)
        return SyncReader::getData(channel, first, last, out, gain, accumulate);
    const long start = held.at(first);
    const long end = held.at(last);
    m_own.resize(static_cast<std::size_t>(end - start + 1));
    member.getData(channel < firstCount ? channel : channel - firstCount, start, end, m_own.data(),
                   gain, 0);
    held.spread(m_own.data(), first, last, [out, accumulate](long i, float value) {
        out[i] = accumulate != 0 ? static_cast<float>(double{out[i]} + double{value}) : value;
    });
    return count;
}

ReaderPtr withHeldSamples(const ReaderPtr& reader) {
    auto* pair = dynamic_cast<SyncReader*>(reader.get());
    if (!pair || pair->first()->samplingRate() == pair->second()->samplingRate())
        return reader;
    ReaderPtr held(new HeldPair(*pair, reader));
    return held->open(pair->fileName()) ? held : ReaderPtr();
}

} // namespace kvsig::tool
