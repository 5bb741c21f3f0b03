#include "kvsig/montage/MontageLoader.h"

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/DefinitionBuilder.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/Translate1020.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/XmlReader.h"

#include <string>

namespace kvsig {
namespace {

/// Counts what is made of one montage and stops at the most.
class RowBudget {
  public:
    explicit RowBudget(SourceMontage& montage) : m_montage(montage) {}

    /// False when the budget is spent.
    bool takeOne() {
        if (m_taken < mostMontageRows) {
            ++m_taken;
            return true;
        }
        if (!m_told)
            logMessage(logWarning, "SourceMontage: montage \"" + std::string(m_montage.name()) +
                                       "\" has more than " + std::to_string(mostMontageRows) +
                                       " definitions; the rest is left out");
        m_told = true;
        return false;
    }

  private:
    SourceMontage& m_montage;
    int m_taken = 0;
    bool m_told = false;
};

int loadElements(SourceMontage& montage, XmlReader& xml, const char* element, RowBudget& budget) {
    int made = 0;
    xml.resetPosition();
    while (xml.findElement(element) && budget.takeOne()) {
        DataSource* source = montage.createSource(xml.attribute("Definition").c_str());
        if (!source)
            continue;
        ++made;
        if (const std::string name = xml.attribute("Name"); !name.empty())
            source->setName(name.c_str());
    }
    return made;
}

} // namespace

std::string translatedFor(IDataReader& reader, std::string_view text) {
    std::string names(text);
    Translate1020To1010Names(names.data(), names.data() + names.size(), reader.isMap1010());
    return names;
}

int loadMontageEntries(SourceMontage& montage, const std::vector<ProfileEntry>& entries) {
    if (!montage.reader())
        return 0;
    IDataReader& reader = *montage.reader();
    RowBudget budget(montage);
    const auto load = [&](bool averages) {
        for (const ProfileEntry& entry : entries) {
            if (isAverageDerivation(entry.key.c_str()) != averages)
                continue;
            if (!budget.takeOne())
                return;
            const std::string defn = translatedFor(reader, entry.key);
            DataSource* source = montage.createSource(defn.c_str());
            if (!source)
                continue;
            char name[derivationNameSize];
            NameFromDefn(std::string(derivationOf(defn.c_str())).c_str(), reader.refGrid(), name);
            source->setName(entry.value.empty() ? name : entry.value.c_str());
        }
    };
    load(true);
    montage.addGlobalAvgRefs();
    load(false);
    montage.isReferential();
    return 1;
}

int loadMontageXML(SourceMontage& montage, const std::string& text) {
    if (!montage.reader())
        return 0;
    XmlReader xml;
    std::string reason;
    if (!xml.setDocument(translatedFor(*montage.reader(), text), &reason)) {
        logMessage(logWarning, "SourceMontage: montage \"" + std::string(montage.name()) +
                                   "\" cannot be read: " + reason);
        return 0;
    }
    RowBudget budget(montage);
    int made = loadElements(montage, xml, "AvgRef", budget);
    montage.addGlobalAvgRefs();
    made += loadElements(montage, xml, "Channel", budget);
    montage.isReferential();
    return made;
}

} // namespace kvsig
