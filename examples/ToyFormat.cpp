// A format of the program's own. A reader says its own facts, and everything that works with
// recordings works with it: montages, filters, pairs, the type list of an open dialog.
//
// A .toy file is a line "toy RATE CHANNELS", then frames of one signed byte per channel, in
// microvolts.
#include "kvsig/kvsig.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <vector>

class ToyReader : public kvsig::DataReader {
  public:
    bool openFile() override {
        m_file = std::ifstream(filePath(), std::ios::binary);
        std::string word;
        double rate = 0;
        int channels = 0;
        if (!(m_file >> word >> rate >> channels) || word != "toy" || rate <= 0 || channels < 1)
            return refuse(2, "its first line is not \"toy RATE CHANNELS\"");
        m_file.get();
        setHeaderLength(static_cast<long>(m_file.tellg()));
        setSamplingRate(rate);
        setChannelCount(channels);
        return true;
    }
    bool readSampleInfo() override {
        m_file.seekg(0, std::ios::end);
        setMaxDataIndex((static_cast<long>(m_file.tellg()) - headerLength()) / channelCount() - 1);
        return true;
    }
    int getSampleChunk(long firstSample, short* buffer) override {
        std::vector<char> bytes(static_cast<std::size_t>(chunkPts()) *
                                static_cast<std::size_t>(channelCount()));
        m_file.clear();
        m_file.seekg(headerLength() + firstSample * channelCount());
        m_file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        for (std::streamsize i = 0; i < m_file.gcount(); ++i)
            *buffer++ = static_cast<signed char>(bytes[static_cast<std::size_t>(i)]);
        return static_cast<int>(m_file.gcount()) / channelCount();
    }
    void close() override { m_file.close(); }

  protected:
    const char* _grid1(int channel) override { return channel == 0 ? "C3" : "C4"; }
    const char* _grid2(int) override { return "Ref"; }
    double _calibration(int) override { return 1.0; } // microvolts per count
    double _dcOffset(int) override { return 0.0; }

  private:
    std::ifstream m_file;
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
    if (!reader) {
        std::cerr << error << "\n";
        return EXIT_FAILURE;
    }
    for (int channel = 0; channel < reader->channelCount(); ++channel) {
        float value = 0;
        reader->getData(channel, 1, 1, &value, 1.0, 0);
        std::cout << reader->channelName(channel) << ": " << value << " uV\n";
    }
    return EXIT_SUCCESS;
}
