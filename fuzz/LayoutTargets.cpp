#include "Check.h"
#include "Target.h"
#include "Workspace.h"
#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/EdfFile.h"
#include "support/RawFile.h"
#include "support/ReadAround.h"

// Layouts that name one of two recordings lying beside them.
namespace kvsig::fuzz {
namespace {

std::string recordingBytes() {
    static const std::string bytes =
        test::EdfFile().signal("EEG C3-A2", 16).signal("EEG C4-A1", 16).records(2).bytes();
    return bytes;
}

std::string rawBytes() {
    static const std::string bytes = test::RawFile().frames(64).bytes();
    return bytes;
}

void openLayout(std::string_view input, std::string_view fileName, int type) {
    const WrittenInput written(input, fileName);
    Workspace::get().write("sample.edf", recordingBytes());
    Workspace::get().write("sample.raw", rawBytes());
    std::string error;
    const ReaderPtr reader = openReader(written.path.c_str(), type, &error);
    const ReaderPtr again = openReader(written.path.c_str());
    check(reader || !error.empty(), "a layout that does not open says why");
    if (!reader)
        return;
    auto& recording = dynamic_cast<DataReader&>(*reader);
    test::readAround(recording);
    check(again && again->sampleCount() == reader->sampleCount(), "a layout opens twice alike");
    std::ostringstream stream;
    check(recording.writeAttributeFile(stream), "the attribute file of a layout can be written");
}

const char* const iniLayout = "[FileInfo]\nFile=C:\\eeg\\SAMPLE.RAW\nFileType=Interleaved\n"
                              "SamplingRate=32\nHeaderLength=16\nCalibration=0.25\n"
                              "WaveformCount=3\nDataType=0\n[ChannelMap]\nFp1-Ref=1\nFp2-Ref=2\n"
                              "[Patient]\nFirst=A\nLast=B\n[SampleTimes]\n0=36000.000\n"
                              "[Montage]\nOne=\n[One]\nFp1-Fp2=\nFp1+Fp2=av\n";
const char* const edfLayout = "[FileInfo]\nFile=sample.edf\nFileType=EDF90\nSampleLag=3\n"
                              "ChannelMap=none\n[ChannelMap]\nC3-A2=1\nC4-A1=2\n";
const char* const xmlLayout =
    "<Layout><FileInfo File=\"sample.raw\" FileType=\"Interleaved\" SamplingRate=\"32\" "
    "HeaderLength=\"16\" Calibration=\"0.25\" WaveformCount=\"3\" DataType=\"4\"/>"
    "<ChannelMap><Channel Name=\"Fp1-Ref\" Number=\"1\"/></ChannelMap><Patient Last=\"B\"/>"
    "<SampleTimes><SampleTime Sample=\"0\" Time=\"36000.000\"/></SampleTimes></Layout>";
const char* const xmlEdfLayout = "<?xml version=\"1.0\"?>\n<Layout><FileInfo File=\"sample.edf\" "
                                 "FileType=\"EDF90\"/></Layout>";

} // namespace

std::vector<Target> layoutTargets() {
    return {{"layout_ini",
             "attributes",
             [](std::string_view input) { openLayout(input, "fuzzed.lay", layoutType); },
             {iniLayout, edfLayout}},
            {"layout_xml",
             "xml",
             [](std::string_view input) { openLayout(input, "fuzzed.kvx", xmlLayoutType); },
             {xmlLayout, xmlEdfLayout}}};
}

} // namespace kvsig::fuzz
