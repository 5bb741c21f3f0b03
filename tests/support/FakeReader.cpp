#include "support/FakeReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kvsig::test {
namespace {

// Differs from channel to channel and from sample to sample, takes both signs and fits 16 bits; the
// period is a prime, so that no page length divides it.
std::int32_t distinctCounts(int channel, long index) {
    return static_cast<std::int32_t>((index * 7 + channel * 131L) % 4001) - 2000;
}

std::string callText(const char* name, const std::string& arguments) {
    return std::string(name) + "(" + arguments + ")";
}

} // namespace

FakeRecording::FakeRecording() : raw(distinctCounts) {}

FakeReader::FakeReader(FakeRecording recording) : file(std::move(recording)) {}

FakeReader::~FakeReader() {
    if (destroyed)
        *destroyed = true;
}

std::vector<std::string> FakeReader::takeCalls(const std::string& prefix) {
    std::erase_if(calls, [&](const std::string& call) { return !call.starts_with(prefix); });
    return std::exchange(calls, {});
}

void FakeReader::setSamples(long count) {
    file.samples = count;
    setMaxDataIndex(count - 1);
}

std::int32_t FakeReader::rawAt(int channel, long index) const {
    return index >= 0 && index < file.stored.value_or(file.samples) ? file.raw(channel, index) : 0;
}

bool FakeReader::openFile() {
    calls.emplace_back("openFile");
    if (file.openFails) {
        setLastError(1);
        return false;
    }
    setChannelCount(static_cast<int>(file.channels.size()));
    setSamplingRate(file.rate);
    setMaxDataIndex(file.samples - 1);
    return true;
}

void FakeReader::close() { calls.emplace_back("close"); }

bool FakeReader::loadChannelInfo() {
    calls.emplace_back("loadChannelInfo");
    return !file.channelInfoFails && DataReader::loadChannelInfo();
}

bool FakeReader::readSampleInfo() {
    calls.emplace_back("readSampleInfo");
    clearSampleTimes();
    for (SampleTime anchor : file.anchors)
        addSampleTime(anchor);
    return !file.sampleInfoFails;
}

bool FakeReader::getPatientRec() {
    calls.emplace_back("getPatientRec");
    return false;
}

void FakeReader::setPageDuration(double seconds) {
    calls.push_back(callText("setPageDuration", std::to_string(seconds)));
    DataReader::setPageDuration(seconds);
}

int FakeReader::chunkPts() { return file.chunkPts ? *file.chunkPts : DataReader::chunkPts(); }

int FakeReader::_minReadPts() {
    return file.minReadPts ? *file.minReadPts : DataReader::_minReadPts();
}

int FakeReader::getSampleChunk(long firstSample, short* buffer) {
    calls.push_back(callText("getSampleChunk", std::to_string(firstSample)));
    return file.chunks == FakeChunks::bySample
               ? writeFrames(firstSample, std::max(chunkPts(), 1), buffer)
               : DataReader::getSampleChunk(firstSample, buffer);
}

int FakeReader::getChunk(long bytePos, short* buffer, int bytes) {
    calls.push_back(callText("getChunk", std::to_string(bytePos) + ", " + std::to_string(bytes)));
    if (file.chunks != FakeChunks::byByte)
        return DataReader::getChunk(bytePos, buffer, bytes);
    const int frameBytes = bytesPerSample() * channelCount();
    return writeFrames(bytePos / frameBytes, bytes / frameBytes, buffer) * frameBytes;
}

int FakeReader::writeFrames(long first, int wanted, short* buffer) {
    const long left = std::max(file.stored.value_or(file.samples) - first, 0L);
    int written = static_cast<int>(std::min<long>(wanted, left));
    if (file.deliver)
        written = std::min(file.deliver(first, written), written);
    auto* out = static_cast<std::byte*>(static_cast<void*>(buffer));
    for (long i = first; i < first + written; ++i)
        for (int channel = 0; channel < channelCount(); ++channel) {
            const std::int32_t wide = file.raw(channel, i);
            const auto narrow = static_cast<std::int16_t>(wide);
            const auto size = static_cast<std::size_t>(file.sampleBytes);
            std::memcpy(out, size == 2 ? static_cast<const void*>(&narrow) : &wide, size);
            out += size;
        }
    return file.claim ? file.claim(first, written) : written;
}

const FakeChannel& FakeReader::logged(const char* call, int channel) {
    calls.push_back(callText(call, std::to_string(channel)));
    return file.channels.at(static_cast<std::size_t>(channel));
}

const char* FakeReader::_grid1(int channel) { return logged("_grid1", channel).grid1.c_str(); }
const char* FakeReader::_grid2(int channel) { return logged("_grid2", channel).grid2.c_str(); }

const char* FakeReader::_channelName(int channel) {
    const FakeChannel& facts = logged("_channelName", channel);
    return facts.name ? facts.name->c_str() : DataReader::_channelName(channel);
}

double FakeReader::_calibration(int channel) { return logged("_calibration", channel).calibration; }
double FakeReader::_dcOffset(int channel) { return logged("_dcOffset", channel).dcOffset; }

short FakeReader::_channelType(int channel) {
    return logged("_channelType", channel).type.value_or(DataReader::_channelType(channel));
}

const char* FakeReader::_channelUnits(int channel) {
    const FakeChannel& facts = logged("_channelUnits", channel);
    return facts.units ? facts.units->c_str() : DataReader::_channelUnits(channel);
}

double FakeReader::_physioHigh(int channel) {
    return logged("_physioHigh", channel).physioHigh.value_or(DataReader::_physioHigh(channel));
}

double FakeReader::_physioLow(int channel) {
    return logged("_physioLow", channel).physioLow.value_or(DataReader::_physioLow(channel));
}

std::int32_t FakeReader::_digitalHigh(int channel) {
    return logged("_digitalHigh", channel).digitalHigh.value_or(DataReader::_digitalHigh(channel));
}

std::int32_t FakeReader::_digitalLow(int channel) {
    return logged("_digitalLow", channel).digitalLow.value_or(DataReader::_digitalLow(channel));
}

} // namespace kvsig::test
