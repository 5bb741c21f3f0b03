#include "kvsig/registry/types/DataReaderManager.h"

#include "kvsig/registry/types/FormatFactories.h"
#include "kvsig/registry/types/TypeTable.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <string_view>

namespace kvsig {
namespace {

constexpr std::int32_t firstSortKey = 1000;

// What layouts of other programs and releases write. The argument begins with one of these, while
// a format's name begins with the argument: the two comparisons run in opposite directions on
// purpose.
constexpr struct {
    const char* name;
    ReaderType type;
} fixedNames[] = {
    {"Unknown", interleavedType},
    {"Interleaved", interleavedType},
    {"SnapshotData", snapshotType},
    {"PushableData", pushableType},
    {"NetworkConcepts", 12},
    {"XLTech", 30},
    {"NicOne", 50},
    {"ProfusionEEG4", 60},
};

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view firstWord(std::string_view text) {
    const auto begin = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto end = std::find_if(begin, text.end(), isBlank);
    return {begin, end};
}

std::unique_ptr<DRFactory> builtInRecord(const TypeRow& row) {
    auto record = std::make_unique<DRFactory>();
    record->type = row.type;
    record->name = row.name;
    record->pattern = row.pattern;
    record->sortKey = firstSortKey;
    return record;
}

} // namespace

DataReaderManager::DataReaderManager() {
    for (const TypeRow& row : typeTable())
        if (row.builtIn)
            m_factories.push_back(m_rows.emplace_back(builtInRecord(row)).get());
    DataReaderManager::setFileTypeFlag(1);
    for (auto& factory : formatFactories()) {
        DataReaderManager::registerFactory(factory.get());
        m_rows.push_back(std::move(factory));
    }
}

DataReaderManager::~DataReaderManager() {
    for (const auto& row : m_rows) // they go by themselves, whatever flag a host has set
        row->owned = 0;
    for (DRFactory* factory : m_factories)
        if (factory->owned != 0)
            delete factory;
}

int DataReaderManager::getFileTypeFlag() { return m_fileTypeMode; }

void DataReaderManager::setFileTypeFlag(int mode) {
    m_fileTypeMode = mode;
    if (mode != 1 && mode != 2 && mode != 4)
        return;
    for (DRFactory* factory : m_factories) {
        const ReaderType type = factory->type;
        const bool enabled = mode == 1 ? type != xmlLayoutType
                             : mode == 2
                                 ? type == 20 || type == layoutType || type == interleavedType
                                 : true;
        factory->flags =
            enabled ? factory->flags | factoryEnabled : factory->flags & ~factoryEnabled;
    }
}

std::vector<DRFactory*> DataReaderManager::listedFactories() {
    std::vector<DRFactory*> listed;
    std::copy_if(m_factories.begin(), m_factories.end(), std::back_inserter(listed),
                 [](const DRFactory* f) { return f->isEnabled() && f->isListed(); });
    return listed;
}

DRFactory* DataReaderManager::findFactoryByName(const char* name) {
    for (DRFactory* factory : listedFactories())
        if (viewOf(factory->name) == viewOf(name))
            return factory;
    return nullptr;
}

DRFactory* DataReaderManager::findFactoryByType(int type) {
    for (DRFactory* factory : listedFactories())
        if (factory->type == type)
            return factory;
    return nullptr;
}

void DataReaderManager::refreshLists() {
    m_types.clear();
    m_typeStrings.clear();
    setFileTypeFlag(m_fileTypeMode);
    for (const DRFactory* factory : listedFactories()) {
        m_types.push_back(factory->type);
        m_typeStrings.push_back(factory->name);
        m_typeStrings.push_back(factory->pattern);
    }
    m_types.push_back(0);
    m_typeStrings.insert(m_typeStrings.end(), 2, nullptr);
}

int* DataReaderManager::getFileTypes() {
    refreshLists();
    return m_types.data();
}

const char** DataReaderManager::getFileTypeStrings() {
    refreshLists();
    return m_typeStrings.data();
}

int DataReaderManager::getFileType(const char* typeName) {
    if (!typeName)
        return noReaderType;
    // An empty name begins every name: the first record answers.
    for (const DRFactory* factory : m_factories)
        if (startsWithNoCase(viewOf(factory->name), typeName))
            return factory->type;
    for (const auto& fixed : fixedNames)
        if (startsWithNoCase(typeName, fixed.name))
            return fixed.type;
    return noReaderType;
}

DRFactory* DataReaderManager::firstOfType(int type) const {
    const auto found = std::find_if(m_factories.begin(), m_factories.end(),
                                    [type](const DRFactory* f) { return f->type == type; });
    return found == m_factories.end() ? nullptr : *found;
}

int DataReaderManager::getFileTypeName(int type, char* buffer) {
    if (!buffer)
        return 0;
    const auto write = [buffer](std::string_view text) {
        copyText(buffer, typeNameSize, text);
        return text.empty() ? 0 : 1;
    };
    const int number = type & 0xFFFFFF;
    // Raw interleaved data answers to the name of the layout that describes it, on purpose.
    if (number == interleavedType)
        return write("KelvaneLayout");
    const DRFactory* factory = firstOfType(number);
    if (!factory)
        return write("");
    const std::string_view name = viewOf(factory->name);
    return write((type & wholeTypeName) != 0 ? name : firstWord(name));
}

const char* DataReaderManager::getPartnerTag(int type) {
    const DRFactory* factory = findFactoryByType(type);
    return factory && factory->partnerTag ? factory->partnerTag : "";
}

unsigned long DataReaderManager::getStaticFlags(int type) {
    const DRFactory* factory = findFactoryByType(type);
    return factory ? factory->flags : 0;
}

std::vector<const char*> DataReaderManager::getSortOrder() {
    std::vector<const char*> names;
    std::transform(m_factories.begin(), m_factories.end(), std::back_inserter(names),
                   [](const DRFactory* factory) { return factory->name; });
    return names;
}

void DataReaderManager::setSortOrder(const std::vector<const char*>& names) {
    std::int32_t key = firstSortKey;
    for (DRFactory* factory : m_factories) {
        factory->sortKey = key++;
        for (std::size_t j = 0; j < names.size(); ++j)
            if (viewOf(factory->name) == viewOf(names[j]))
                factory->sortKey = static_cast<std::int32_t>(j);
    }
    std::stable_sort(
        m_factories.begin(), m_factories.end(),
        [](const DRFactory* a, const DRFactory* b) { return a->sortKey < b->sortKey; });
}

void DataReaderManager::registerFactory(DRFactory* factory) {
    if (!factory)
        return;
    factory->sortKey = static_cast<std::int32_t>(m_factories.size()) + 1;
    m_factories.push_back(factory);
}

DataReaderManager& dataReaderManager() {
    static DataReaderManager manager;
    return manager;
}

} // namespace kvsig
