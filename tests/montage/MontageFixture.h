#pragma once

#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/SourceMontage.h"
#include "montage/ScriptedSource.h"
#include "support/FakeReader.h"
#include "support/TempDir.h"

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace kvsig::test {

/// The 19 scalp electrodes and the ears, in either generation of names.
inline const std::vector<std::string> oldNames{"Fp1", "Fp2", "F7", "F3", "Fz", "F4", "F8",
                                               "T3",  "C3",  "Cz", "C4", "T4", "T5", "P3",
                                               "Pz",  "P4",  "T6", "O1", "O2", "A1", "A2"};
inline const std::vector<std::string> newNames{"Fp1", "Fp2", "F7", "F3", "Fz", "F4", "F8",
                                               "T7",  "C3",  "Cz", "C4", "T8", "P7", "P3",
                                               "Pz",  "P4",  "P8", "O1", "O2", "A1", "A2"};

/// A recording against "Ref" whose channel `c` holds 10 (c + 1) + i / 100 at sample i.
inline FakeRecording recordingOf(const std::vector<std::string>& electrodes) {
    FakeRecording file;
    file.channels.clear();
    for (const std::string& name : electrodes)
        file.channels.push_back({.grid1 = name, .calibration = 0.01});
    file.rate = 200.0;
    file.raw = [](int channel, long i) { return 1000 * (channel + 1) + static_cast<int>(i); };
    return file;
}

/// Opens its montage to tests, with an open reader.
class TestMontage : public SourceMontage {
  public:
    explicit TestMontage(const std::vector<std::string>& electrodes)
        : TestMontage(recordingOf(electrodes)) {}
    explicit TestMontage(FakeRecording file) : recording(std::move(file)) {
        recording.open("scripted");
        setReader(&recording);
    }
    using SourceMontage::createMontageXML;

    /// Definitions that must be resolved.
    void add(std::initializer_list<const char*> definitions) {
        for (const char* defn : definitions)
            if (!createSource(defn))
                throw std::runtime_error(std::string("not resolved: ") + defn);
    }
    void setFilters(FilterAttr highPass, FilterAttr lowPass = {}, FilterAttr notch = {}) {
        setHighPass(highPass);
        setLowPass(lowPass);
        setNotch(notch);
        updateFilters();
    }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (int i = 0; i < sourceCount(); ++i)
            all.emplace_back(source(i)->name());
        return all;
    }
    std::vector<std::string> averageNames() {
        std::vector<std::string> all;
        for (int i = 0; i < avgRefCount(); ++i)
            all.emplace_back(avgRef(i) ? avgRef(i)->name() : "deleted");
        return all;
    }
    /// A row's first sample.
    float valueOf(int row) { return read(*source(row), 0, 0).front(); }

    FakeReader recording;
};

/// Montage files are looked for in a fresh directory first.
class MontageDirectory {
  public:
    MontageDirectory() { SetMontageDirectory(dir.path().c_str()); }
    ~MontageDirectory() {
        SetMontageDirectory(nullptr);
        SetMontageFile(nullptr);
        SetMontageStream(nullptr);
    }
    void ini(std::string_view text) const { dir.write("kvmont.ini", text); }
    void xml(std::string_view text) const { dir.write("KVMontageTemplates.xml", text); }

    TempDir dir;
};

} // namespace kvsig::test
