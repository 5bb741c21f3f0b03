#include "tool/MontageChoice.h"

#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/File.h"
#include "kvsig/util/Text.h"
#include "tool/Nearest.h"
#include "tool/Words.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

constexpr const char* recordedMontage = "Recorded";

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + toUtf8(name);
    return text;
}

bool useMontageFile(const Recording& recording, const std::string& file) {
    std::string reason;
    if (!file.empty() && !File().open(file.c_str(), &reason)) {
        complain(recording.path + ": --montage-file " + file + ": " + reason);
        return false;
    }
    SetMontageFile(file.c_str());
    return true;
}

void remarkOnWhatIsLeftOut(const SourceMontage& montage, const std::string& where) {
    const std::vector<std::string>& missing = montage.unresolved();
    if (missing.empty())
        return;
    remark(where + ": " + std::to_string(missing.size()) +
           " rows left out, the recording lacks electrodes of them: " + listed(missing));
}

std::vector<std::string> rowNames(const SourceMontage& montage) {
    std::vector<std::string> names;
    for (int i = 0; i < montage.sourceCount(); ++i)
        names.emplace_back(montage.source(i)->name());
    return names;
}

std::string validReferences(const SourceMontage& montage, IDataReader& reader) {
    std::vector<std::string> names;
    for (int i = 0; i < montage.avgRefCount(); ++i)
        names.emplace_back(montage.avgRef(i)->name());
    return listed(names) + (names.empty() ? "" : " or ") + "an electrode of the recording's " +
           std::to_string(reader.channelCount());
}

// The library moves every row that stands against its channel's recorded reference, the ECG and
// the temperature too. What is no scalp electrode stays as it was.
void keepOtherRows(SourceMontage& montage, int reference, const std::vector<std::string>& names) {
    for (int i = 0; i < montage.sourceCount(); ++i) {
        auto* row = dynamic_cast<G1G2Source*>(montage.source(i));
        if (!row || row->isGap() || row->channel2() != reference || IndexOf1020(row->grid1()) >= 0)
            continue;
        row->setChannel12(row->channel1(), -1);
        row->setName(names[static_cast<std::size_t>(i)].c_str());
        row->flushCache();
    }
}

bool applyReference(SourceMontage& montage, const std::string& reference,
                    const std::string& where) {
    int id = -1;
    if (!montage.isValidReference(reference.c_str(), &id)) {
        complain(where + ": --reference " + reference + " is none here; it can be " +
                 validReferences(montage, *montage.reader()));
        return false;
    }
    const std::vector<std::string> before = rowNames(montage);
    // Rows against another common reference go back to the recording's first.
    if (montage.isReferential())
        montage.changeReference(nullptr);
    const std::vector<std::string> recorded = rowNames(montage);
    montage.changeReference(reference.c_str());
    keepOtherRows(montage, id, recorded);
    if (rowNames(montage) == before)
        remark(where + ": --reference " + reference +
               " changes nothing: no row stands against the recording's reference");
    return true;
}

} // namespace

void addMontageOptions(CLI::App& command, MontageChoice& choice) {
    command.add_option("--montage", choice.name,
                       "Montage by name; 'kvsig montage FILE' lists them");
    command.add_option("--montage-file", choice.file,
                       "Montages of this file come first (INI or XML)");
    command.add_option("--reference", choice.reference,
                       "Reference of referential rows: an electrode or an average, e.g. Av17");
}

std::string rowLabel(DataSource& source) {
    if (source.isGap())
        return {};
    const std::string name = toUtf8(source.name());
    return name.ends_with('-') ? name.substr(0, name.size() - 1) : name;
}

std::vector<std::string> montageNames(IDataReader& reader, const MontageChoice& choice) {
    SetMontageFile(choice.file.c_str());
    std::vector<std::string> names{recordedMontage};
    const auto add = [&names](const std::string& name) {
        if (std::none_of(names.begin(), names.end(),
                         [&name](const std::string& n) { return equalNoCase(n, name); }))
            names.push_back(name);
    };
    for (const std::string& name : MontageNames())
        add(name);
    for (int i = 0; i < reader.montageCount(); ++i)
        add(reader.montageName(i));
    return names;
}

bool fillMontage(SourceMontage& montage, const Recording& recording, const MontageChoice& choice) {
    if (!useMontageFile(recording, choice.file))
        return false;
    IDataReader& reader = *recording.reader;
    const std::string name = choice.name.empty() ? recordedMontage : choice.name;
    const std::string where = recording.path + ": montage " + name;
    montage.setReader(&reader);
    const bool made = montage.createMontage(name.c_str()) != 0 && montage.sourceCount() > 0;
    if (!made && montage.unresolved().empty()) {
        complain(recording.path + ": --montage \"" + name + "\" is not known; there are " +
                 listed(montageNames(reader, choice)));
        return false;
    }
    if (!made) {
        complain(where + ": the recording lacks electrodes of all its rows: " +
                 listed(montage.unresolved()));
        return false;
    }
    remarkOnWhatIsLeftOut(montage, where);
    return choice.reference.empty() || applyReference(montage, choice.reference, where);
}

} // namespace kvsig::tool
