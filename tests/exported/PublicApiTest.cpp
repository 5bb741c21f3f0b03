// Sees what a host sees: the umbrella header and the shared library.
#include "kvsig/kvsig.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace kvsig::test {
namespace {

TEST(PublicApi, ARecordingIsReadAndFiltered) {
    const TempDir dir;
    EdfFile()
        .signal("EEG Fp1-Ref", 256)
        .signal("EEG F7-Ref", 256)
        .samples([](int signal, std::int64_t) { return signal == 0 ? 300 : 100; })
        .records(10)
        .writeTo(dir.file("a.edf"));
    std::string error;
    const ReaderPtr reader = openReader(dir.file("a.edf").c_str(), 0, &error);
    ASSERT_TRUE(reader) << error;

    G1G2Source source(*reader, reader->indexOfG1("fp1"), reader->indexOfG1("F7"));
    std::vector<float> page(256);
    EXPECT_EQ(source.getData(512, 767, page.data(), 1.0), 256);
    EXPECT_STREQ(source.name(), "Fp1-F7");
    EXPECT_FLOAT_EQ(page[0], 20.0F);

    IIRHighPass highPass;
    highPass.design(1.0 / reader->samplingRate(), 0, 0);
    source.filters()->addNext(&highPass);
    source.flushCache();
    EXPECT_EQ(source.getData(512, 767, page.data(), 1.0), 256);
    EXPECT_NEAR(page[255], 0.0F, 0.5F);
}

// A host opens the loading of templates to itself, and comes from a row back to its montage.
class TemplateMontage : public SourceMontage {
  public:
    using SourceMontage::createMontageXML;
};

TEST(PublicApi, AMontageIsFilledAndFiltered) {
    const TempDir dir;
    EdfFile()
        .signal("EEG Fp1-Ref", 256)
        .signal("EEG F7-Ref", 256)
        .samples([](int signal, std::int64_t) { return signal == 0 ? 300 : 100; })
        .records(10)
        .writeTo(dir.file("a.edf"));
    const ReaderPtr reader = openReader(dir.file("a.edf").c_str());
    ASSERT_TRUE(reader);
    TemplateMontage montage;
    montage.setReader(reader.get());
    EXPECT_NE(montage.createMontage("Double banana"), 0) << "found beside the library";
    EXPECT_STREQ(montage.source(0)->name(), "Fp1-F7");
    EXPECT_EQ(montage.unresolved().size(), 17U);
    montage.deleteSources();
    EXPECT_EQ(montage.createMontageXML("<Channel Definition='Fp1-F7' Name='row'/>"), 1);
    DataSource* row = montage.source(montage.indexOfName("ROW"));
    ASSERT_TRUE(row);
    EXPECT_EQ(dynamic_cast<SourceMontage*>(row->montage()), &montage);
    std::vector<float> page(256);
    EXPECT_EQ(row->getData(512, 767, page.data(), 1.0), 256);
    EXPECT_FLOAT_EQ(page[0], 20.0F);
    ClientEvent event;
    event.kind = 4;
    event.hasValue = 1;
    event.value = 5.0;
    EXPECT_TRUE(montage.updateState(event));
    EXPECT_EQ(row->getData(512, 767, page.data(), 1.0), 256);
    EXPECT_NEAR(page[255], 0.0F, 0.5F);
}

// A host derives a reader of its own from nothing but the public headers.
class ToyReader : public DataReader {
  public:
    bool openFile() override {
        setChannelCount(1);
        setSamplingRate(10.0);
        setMaxDataIndex(99);
        return true;
    }
    void close() override {}
    bool readSampleInfo() override { return true; }
    int getSampleChunk(long first, short* buffer) override {
        for (int i = 0; i < chunkPts(); ++i)
            buffer[i] = static_cast<short>(first + i);
        return chunkPts();
    }

  protected:
    const char* _grid1(int) override { return "Cz"; }
    const char* _grid2(int) override { return "Ref"; }
    double _calibration(int) override { return 0.5; }
    double _dcOffset(int) override { return 0.0; }
};

TEST(PublicApi, AHostsOwnReaderIsAReaderLikeAnyOther) {
    const ReaderPtr reader(std::make_unique<ToyReader>().release());
    ASSERT_TRUE(reader->open("anything"));
    EXPECT_STREQ(reader->channelName(0), "Cz-Ref");
    float value = 0;
    EXPECT_EQ(reader->getData(0, 42, 42, &value, 2.0, 0), 1);
    EXPECT_EQ(value, 42.0F);

    void* found = nullptr;
    EXPECT_EQ(reader->QueryInterface(IID_IDataReader, &found), S_OK);
    EXPECT_EQ(found, reader.get());
    reader->Release();
}

} // namespace
} // namespace kvsig::test
