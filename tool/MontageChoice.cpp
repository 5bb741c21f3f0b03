#include "tool/MontageChoice.h"

#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/util/File.h"
#include "kvsig/util/Text.h"
#include "tool/ChannelNames.h"
#include "tool/ElectrodeName.h"
#include "tool/HeardWarnings.h"
#include "tool/LeftOut.h"
#include "tool/RowFaults.h"
#include "tool/Words.h"

#include <algorithm>
#include <set>
#include <utility>

namespace kvsig::tool {
namespace {

constexpr const char* recordedMontage = "Recorded";

std::string lowerCaseOf(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return lowerCase(c); });
    return text;
}

std::string listed(const std::vector<std::string>& names, const char* between = ", ") {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text.append(i > 0 ? between : "").append(toUtf8(names[i]));
    return text;
}

void remarkOnWhatIsLeftOut(const LeftOut& leftOut, const std::string& where) {
    const auto counted = [&where](const std::vector<std::string>& texts, const char* what) {
        return where + ": " + std::to_string(texts.size()) + " " + what +
               (texts.size() == 1 ? "" : "s") + " left out, ";
    };
    for (const auto& [texts, what] :
         {std::pair(&leftOut.rows, "row"), std::pair(&leftOut.averages, "average")})
        if (!texts->empty())
            remark(counted(*texts, what) + "the recording lacks electrodes of " +
                   (texts->size() == 1 ? "it: " : "them: ") + listed(*texts));
    if (const auto& texts = leftOut.nonsense; !texts.empty())
        remark(counted(texts, "definition") + "which " + (texts.size() == 1 ? "does" : "do") +
               " not parse: \"" + listed(texts, "\", \"") + "\"");
}

std::string validReferences(const SourceMontage& montage) {
    std::vector<std::string> names;
    for (int i = 0; i < montage.avgRefCount(); ++i)
        if (AvgSource* average = montage.avgRef(i))
            names.emplace_back(average->name());
    return listed(names) + (names.empty() ? "" : " or ") + "an electrode of the recording";
}

// A row's channel against the reference that is to be changed: the one that the montage has in
// common, or else the recorded one.
bool standsAgainstReference(const G1G2Source& row, const std::string& common, const char* grid2) {
    return row.channel2() < 0 || (!common.empty() && equalNoCase(grid2, common));
}

void moveRow(G1G2Source& row, int reference) {
    row.setChannel12(row.channel1(), reference);
    char name[derivationNameSize];
    const std::string grid1 = row.grid1();
    NameFromG1G2(grid1.c_str(), row.grid2(), name);
    row.setName(name);
    row.flushCache();
}

// Unlike the library, which moves whatever stands against its recorded reference, ECG and
// temperature stay as they are, and so do the bipolar rows of a referential montage and channels
// that were recorded against something else.
bool applyReference(SourceMontage& montage, const Recording& recording,
                    const std::string& reference, const std::string& where) {
    if (!recording.reader->isMapReferential()) {
        complain(where + ": --reference " + reference +
                 ": the channels were recorded against different electrodes, so no reference can "
                 "take the place of theirs");
        return false;
    }
    int id = -1;
    if (!montage.isValidReference(reference.c_str(), &id)) {
        complain(where + ": --reference " + reference + " is none here; it can be " +
                 validReferences(montage));
        return false;
    }
    const std::string common = montage.isReferential() ? montage.ref() : "";
    const std::optional<std::string> recorded =
        oneReference(recording, channelsOfReference(montage, *recording.reader, id));
    std::vector<std::string> noElectrodes;
    std::vector<std::string> elsewhere;
    int moved = 0;
    for (int i = 0; i < montage.sourceCount(); ++i) {
        auto* row = dynamic_cast<G1G2Source*>(montage.source(i));
        if (!row || row->isGap() || row->channel2() == id)
            continue;
        const std::string grid2 = row->grid2();
        if (!standsAgainstReference(*row, common, grid2.c_str()))
            continue;
        if (!isElectrodeName(row->grid1())) {
            noElectrodes.push_back(rowLabel(*row));
            continue;
        }
        if (!recorded || !equalNoCase(recordedReference(recording, row->channel1()), *recorded)) {
            elsewhere.push_back(rowLabel(*row));
            continue;
        }
        moveRow(*row, id);
        ++moved;
    }
    // Under its first name it would go on answering the recording's reference.
    if (moved > 0 && equalNoCase(montage.name(), recordedMontage))
        montage.setName("Recorded, re-referenced");
    montage.isReferential(); // finds the reference that the rows have now
    const auto remarkOnKept = [&where](const std::string& why,
                                       const std::vector<std::string>& rows) {
        if (!rows.empty())
            remark(where + ": " + why + ", left as they are: " + listed(rows));
    };
    remarkOnKept("no electrodes by their names", noElectrodes);
    remarkOnKept("not known to have been recorded against the same reference as " + reference,
                 elsewhere);
    if (moved == 0)
        remark(where + ": --reference " + reference + " changes no row");
    return true;
}

int shownRows(const SourceMontage& montage) {
    int rows = 0;
    for (int i = 0; i < montage.sourceCount(); ++i)
        rows += montage.source(i)->isGap() ? 0 : 1;
    return rows;
}

} // namespace

void addMontageOptions(CLI::App& command, MontageChoice& choice) {
    command
        .add_option("--montage", choice.name,
                    "The rows of a montage; 'kvsig montage FILE' lists the names")
        ->type_name("NAME");
    command
        .add_option("--montage-file", choice.file,
                    "A file of montages, INI or XML, that come before all others")
        ->type_name("FILE");
    command
        .add_option("--reference", choice.reference,
                    "Puts rows that have one reference against another: an electrode or an "
                    "average, as in Cz or Av17")
        ->type_name("NAME");
}

std::string rowLabel(DataSource& source) {
    if (source.isGap())
        return {};
    std::string name = toUtf8(source.name());
    if (name.ends_with('-'))
        name.pop_back();
    // Channels that a map leaves out have no electrodes to be called by.
    const auto* row = dynamic_cast<G1G2Source*>(&source);
    return name.empty() && row && row->channel2() < 0
               ? channelLabel(*source.reader(), row->channel1())
               : name;
}

bool useMontageFile(const std::string& file, const std::string& where) {
    std::string reason;
    if (!file.empty() && !File().open(file.c_str(), &reason)) {
        complain(where + ": --montage-file " + file + ": " + reason);
        return false;
    }
    SetMontageFile(file.c_str());
    return true;
}

std::vector<std::string> montageNames(IDataReader& reader) {
    std::vector<std::string> names{recordedMontage};
    std::set<std::string> known{lowerCaseOf(recordedMontage)};
    const auto add = [&](const std::string& name) {
        if (known.insert(lowerCaseOf(name)).second)
            names.push_back(name);
    };
    for (const std::string& name : MontageNames())
        add(name);
    for (int i = 0; i < reader.montageCount(); ++i)
        add(reader.montageName(i));
    return names;
}

bool fillMontage(SourceMontage& montage, const Recording& recording, const MontageChoice& choice) {
    if (!useMontageFile(choice.file, recording.path))
        return false;
    IDataReader& reader = *recording.reader;
    const std::string name = choice.name.empty() ? recordedMontage : choice.name;
    const std::string where = recording.path + ": montage " + name;
    montage.setReader(&reader);
    const HeardWarnings warnings;
    const bool known = montage.createMontage(name.c_str()) != 0;
    for (const std::string& text : warnings.texts())
        complain(std::string(where).append(": ").append(text));
    if (!known && montage.unresolved().empty()) {
        // The library makes the montages that a recording holds where it has one reference only.
        if (reader.montageIndex(name.c_str()) >= 0 && !reader.isMapReferential()) {
            complain(where + " is the recording's own and cannot be made: its channels were "
                             "recorded against different electrodes");
            return false;
        }
        const std::vector<std::string> names = montageNames(reader);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            complain(recording.path + ": --montage \"" + name + "\" is not known; there are " +
                     listed(names));
            return false;
        }
    }
    LeftOut leftOut = leftOutOf(montage);
    const bool anyRow = shownRows(montage) > 0;
    if (!anyRow)
        complain(where + (leftOut.rows.empty() ? " has no rows"
                                               : ": the recording lacks electrodes of all its "
                                                 "rows: " +
                                                     listed(std::exchange(leftOut.rows, {}))));
    remarkOnWhatIsLeftOut(leftOut, where);
    if (!anyRow)
        return false;
    return choice.reference.empty() || applyReference(montage, recording, choice.reference, where);
}

} // namespace kvsig::tool
