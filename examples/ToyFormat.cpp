// A format of the program's own: montages, filters, pairs and type lists work with its reader. A
// .toy file is a line "toy RATE", then frames of two signed bytes, C3 and C4 in microvolts.
#include "kvsig/kvsig.h"

#include <fstream>
#include <iostream>

struct ToyReader : kvsig::DataReader {
    std::ifstream file;
    bool openFile() override {
        file = std::ifstream(filePath(), std::ios::binary);
        std::string word;
        double rate = 0;
        if (!(file >> word >> rate) || word != "toy" || rate <= 0 || file.get() != '\n')
            return refuse(2, "its first line is not \"toy RATE\"");
        setHeaderLength(static_cast<long>(file.tellg()));
        setSamplingRate(rate);
        setChannelCount(2);
        return true;
    }
    bool readSampleInfo() override {
        file.seekg(0, std::ios::end);
        setMaxDataIndex((static_cast<long>(file.tellg()) - headerLength()) / 2 - 1);
        return true;
    }
    int getSampleChunk(long firstSample, short* buffer) override {
        file.clear();
        file.seekg(headerLength() + 2 * firstSample);
        int count = 0;
        for (char byte = 0; count < 2 * chunkPts() && file.get(byte); ++count)
            buffer[count] = static_cast<signed char>(byte);
        return count / 2; // frames
    }
    void close() override { file.close(); }
    const char* _grid1(int channel) override { return channel == 0 ? "C3" : "C4"; }
    const char* _grid2(int) override { return "Ref"; }
    double _calibration(int) override { return 1.0; } // microvolts per count
    double _dcOffset(int) override { return 0.0; }
};

struct ToyFactory : kvsig::DRFactory {
    kvsig::IDataReader* create(const char*) override { return new ToyReader; }
};

int main(int argc, char** argv) {
    static ToyFactory factory; // outlives the registry's use of it
    factory.type = 1000;       // above the numbers of the library's own
    factory.name = "Toy (*.toy)";
    factory.pattern = "*.toy";
    kvsig::dataReaderManager().registerFactory(&factory);
    std::string error;
    const kvsig::ReaderPtr reader = kvsig::openReader(argc > 1 ? argv[1] : "", 0, &error);
    for (int channel = 0; reader && channel < reader->channelCount(); ++channel) {
        float value = 0;
        reader->getData(channel, 1, 1, &value, 1.0, 0);
        std::cout << reader->channelName(channel) << ": " << value << " uV\n";
    }
    std::cerr << error << (reader ? "" : "\n");
    return reader ? 0 : 1;
}
