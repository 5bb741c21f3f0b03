#pragma once

#include "kvsig/kernel/ChannelTable.h"
#include "kvsig/kernel/DataReader.h"
#include "kvsig/kernel/FloatScales.h"
#include "kvsig/kernel/GridIndex.h"
#include "kvsig/kernel/PageCache.h"
#include "kvsig/kernel/PageSource.h"
#include "kvsig/kernel/TimeBase.h"
#include "kvsig/montage/names/Derivation.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kvsig {

/// What a DataReader holds, and what its page cache asks of it.
struct DataReader::State final : PageSource {
    explicit State(DataReader& owner) : reader(owner) {}

    FrameLayout frameLayout() override {
        const int bytesPerSample = reader.bytesPerSample() == 2 ? 2 : 4;
        return {channelCount, bytesPerSample, std::max(reader._minReadPts(), 1)};
    }
    int largestChunk() override { return reader.chunkPts(); }
    long maxDataIndex() override { return reader.maxDataIndex(); }
    long sampleCount() override { return reader.sampleCount(); }
    int readChunk(long firstSample, short* buffer) override {
        return reader.getSampleChunk(firstSample, buffer);
    }
    const RecordLayout* recordLayout() override { return reader.recordLayout(); }
    std::span<const int> channelsStoredWith(int channel) override {
        return reader.channelsStoredWith(channel);
    }
    std::int64_t readPlanes(int channel, long first, std::int64_t count,
                            const SamplePlanes& planes) override {
        return reader.readPlanes(channel, first, count, planes);
    }

    DataReader& reader;
    std::int32_t lastError = 0;
    std::string errorText;
    std::string defaultErrorText; ///< what stands in for an empty errorText
    std::vector<OpenFinding> findings;
    char fileName[260] = "";
    std::string path;
    bool holdsOpened = false; ///< anchors and patient are those of a recording that was opened
    std::string openedPath;   ///< its path
    std::int32_t headerLength = 0;
    std::int16_t channelCount = 0;
    double samplingRate = 0.0;
    std::int32_t maxIndex = -1;
    std::int32_t fileType = 0;
    std::int32_t mapReferential = 1;
    char refGrid[gridNameSize] = "Ref";
    std::int32_t hasChannelMap = 0;
    char channelMapName[32] = "";
    std::string storedMapName; ///< the stored map in force; empty while any other map is, or none
    std::string missingMap;    ///< the one that an attribute file names and that is not stored
    std::vector<std::string> mapNotes; ///< entries of the map in force that were ignored
    int mappedChannels = 0;            ///< the largest channel number that it names
    std::optional<std::vector<std::string>> listedMaps; ///< as getChannelMapNames() hands them out
    ChannelTable channels;
    GridIndex grids1;            ///< of `channels`; empty when names may have changed since
    ChannelTable keptNames;      ///< what keepChannelNames() found
    bool keptNamesGiven = false; ///< a channel map gave them
    TimeBase timeBase;
    PatientRec patient{};
    bool gridNamesAsNumbers = false;
    ULONG references = 0;
    PageCache pages;
    FloatScales scales;
    std::vector<PathInfo> paths;
    bool map1010 = false;
    bool inChunkDefault = false;
};

} // namespace kvsig
