#pragma once

#include "kvsig/kernel/DataReader.h"
#include "support/Opened.h"

#include <climits>
#include <deque>

namespace kvsig::test {

/// Asks a reader for everything that it could stumble over: texts and numbers inside and outside
/// the channel range, samples inside, across and far outside the ends. A recording that opens must
/// survive this whatever its header says; the sanitizers look on.
inline void readAround(DataReader& reader) {
    const int channels = reader.channelCount();
    const long samples = reader.sampleCount();
    for (const int channel : {INT_MIN, -1, 0, channels / 2, channels - 1, channels, INT_MAX}) {
        const std::string texts = std::string(reader.channelName(channel)) + reader.grid1(channel) +
                                  reader.grid2(channel) + reader.channelUnits(channel);
        static_cast<void>(reader.storedSamplingRate(channel));
        for (const long middle : {0L, samples / 2, samples, reader.storedSampleCount(), 1L << 31}) {
            rawOf(reader, channel, middle - 50, middle + 50);
            valuesOf(reader, channel, middle - 50, middle + 50, std::nan(""));
        }
    }
    for (const double time : {0.0, -1e300, 1e300, HUGE_VAL, std::nan("")}) {
        static_cast<void>(reader.getClockTime(time));
        static_cast<void>(reader.getElapsedTime(time));
    }
    std::ostringstream stream;
    std::deque<ClientEvent> events;
    reader.patientInfo(stream, true);
    reader.testInfo(stream);
    reader.readEvents(events);
}

/// Calls what takes an index, inside and far outside of what there is.
inline void askByIndex(DataReader& reader) {
    std::stringstream stream;
    SampleTime anchor;
    for (const int i : {INT_MIN, -1, 0, 1, INT_MAX}) {
        static_cast<void>(reader.partFileName(i));
        static_cast<void>(reader.partSampleCount(i));
        static_cast<void>(reader.partDuration(i));
        static_cast<void>(reader.getItem(i, i, i));
        static_cast<void>(reader.channelSampleCount(i));
        static_cast<void>(reader.channelSamplingRate(i));
        static_cast<void>(reader.zeroChannel(i));
        reader.getSampleTime(i, anchor);
        static_cast<void>(reader.montageName(i));
        static_cast<void>(reader.montageDefn(i, stream));
        static_cast<void>(reader.getChannelMapNames(i));
    }
}

/// Calls what a host may call before open() too, in no sensible order. The reader need not be open.
inline void callEverySlot(DataReader& reader) {
    readAround(reader);
    askByIndex(reader);
    std::stringstream stream("[FileInfo]\n[ChannelMap]\n");
    std::vector<short> chunk(1 << 16);
    char name[PatientRec::displayNameSize];
    void* self = nullptr;
    static_cast<void>(reader.QueryInterface(IID_IDataReader, &self));
    for (const int i : {INT_MIN, -1, 0, 1, INT_MAX}) {
        reader.setZeroChannel(i, true);
        static_cast<void>(reader.getSampleChunk(i, chunk.data()));
        static_cast<void>(reader.getChunk(i, chunk.data(), static_cast<int>(chunk.size())));
        static_cast<void>(reader.isMap1010());
        static_cast<void>(reader.hostRecordA(i));
        static_cast<void>(reader.hostRecordB(i));
    }
    static_cast<void>(reader.readSampleInfo());
    static_cast<void>(reader.loadChannelInfo());
    static_cast<void>(reader.getPatientRec());
    static_cast<void>(reader.getPatientName(name));
    for (const bool numbers : {true, false}) {
        reader.setGridNamesAsNumbers(numbers);
        static_cast<void>(reader.indexOfG1("1") + reader.indexOfG2(nullptr));
        static_cast<void>(reader.writeAttributeFile(stream));
    }
    for (const char* map : {"(Default)", "(Private)", "none"}) {
        reader.setChannelMapName(map);
        static_cast<void>(reader.getChannelMapDefn(map, stream));
        static_cast<void>(reader.applyChannelMapDefn(map, stream));
    }
    reader.setPageDuration(std::nan(""));
    reader.flushPages(true);
    static_cast<void>(reader.montageIndex("none"));
    static_cast<void>(reader.inspectFile());
    static_cast<void>(reader.readAttributeFile(stream));
    static_cast<void>(reader.openFile());
    static_cast<void>(reader.readSampleInfo());
    reader.close();
    readAround(reader);
}

} // namespace kvsig::test
