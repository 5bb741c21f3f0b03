#include "kvsig/registry/types/DataReaderManager.h"

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/readers/SyncReader.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/registry/types/FormatFactories.h"
#include "kvsig/registry/types/TypeTable.h"
#include "support/FakeReader.h"
#include "support/Testing.h"

#include <cstring>
#include <set>

namespace kvsig::test {
namespace {

std::vector<int> typesOf(DataReaderManager& manager) {
    std::vector<int> types;
    for (const int* type = manager.getFileTypes(); *type != 0; ++type)
        types.push_back(*type);
    return types;
}

std::string nameOf(DataReaderManager& manager, int type) {
    char name[DataReaderManager::typeNameSize + 1];
    std::memset(name, '#', sizeof name);
    const int found = manager.getFileTypeName(type, name);
    EXPECT_EQ(found, name[0] == '\0' ? 0 : 1);
    EXPECT_EQ(name[DataReaderManager::typeNameSize], '#');
    return name;
}

class Registry : public testing::Test {
  protected:
    DRFactory late; // registered records outlive the registry
    DataReaderManager manager;
};

// Layouts and hosts' settings store these names; a slip in one row breaks them silently.
TEST_F(Registry, TheTableHoldsEveryRowOnceAndInOrder) {
    const auto rows = typeTable();
    ASSERT_EQ(rows.size(), 66U);
    std::set<std::string> names;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_TRUE(names.insert(rows[i].name).second) << rows[i].name;
        EXPECT_EQ(rows[i].builtIn, i < 42);
        EXPECT_LT(std::strlen(rows[i].name), std::size_t{DataReaderManager::typeNameSize});
        // The name shows the pattern, but for one that hides a long number.
        const std::string name = rows[i].name;
        const std::size_t open = name.rfind('(');
        if (rows[i].type != 30) {
            EXPECT_EQ(name.substr(open + 1, name.rfind(')') - open - 1), rows[i].pattern);
        }
    }
    EXPECT_STREQ(rows[29].pattern, "*_????????"
                                   "-????"
                                   "-????"
                                   "-????"
                                   "-????????????.erd");
    const std::vector<int> inOrder{13, 2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 14, 15, 16, 17,
                                   18, 19, 20, 21, 22, 23, 24, 24, 25, 26, 27, 28, 29, 30, 31, 32,
                                   33, 34, 35, 36, 37, 38, 40, 41, 42, 44, 60, 46, 47, 48, 49, 50,
                                   51, 52, 52, 53, 54, 55, 56, 57, 58, 59, 61, 62, 63, 64, 65, 66};
    // Without the XML layout, which mode 1 switches off, and the row of 54 that is not listed.
    EXPECT_EQ(typesOf(manager), inOrder);
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_STREQ(manager.factories()[i]->name, rows[i].name);
    EXPECT_EQ(manager.listedFactories().back()->sortKey, 66);
    EXPECT_EQ(manager.listedFactories().front()->sortKey, 1000);
}

TEST_F(Registry, FormatsThatAreNotBuiltInHaveAFactoryClassEach) {
    EXPECT_NE(dynamic_cast<BDFFactory*>(manager.findFactoryByType(48)), nullptr);
    manager.findFactoryByType(48)->owned = 1; // goes once, as all that are the registry's own
    EXPECT_NE(dynamic_cast<BlackrockFactory*>(manager.findFactoryByType(54)), nullptr);
    NervusFactory2 second;
    EXPECT_STREQ(second.name, "NicoletOne nEEG/LTM/Monitor (*.e)");
    CyberkineticsFactory unlisted;
    EXPECT_TRUE(unlisted.isEnabled() && !unlisted.isListed());
    const UnheldReader made(second.create("a.e"));
    EXPECT_NE(made, nullptr);
}

TEST_F(Registry, ModesSwitchFormatsOnAndOff) {
    manager.setFileTypeFlag(2);
    EXPECT_THAT(typesOf(manager), ElementsAre(13, 20));
    const char** strings = manager.getFileTypeStrings();
    EXPECT_STREQ(strings[2], "DigiTrace (*.w18;*.r27;*.w27)");
    EXPECT_STREQ(strings[3], "*.w18;*.r27;*.w27");
    EXPECT_EQ(strings[4], nullptr);
    EXPECT_EQ(strings[5], nullptr);
    manager.setFileTypeFlag(3);
    EXPECT_EQ(manager.getFileTypeFlag(), 3);
    EXPECT_THAT(typesOf(manager), ElementsAre(13, 20));
    manager.setFileTypeFlag(4);
    EXPECT_EQ(typesOf(manager).size(), 65U);
    // A list refresh applies the mode to what a host registered meanwhile.
    late.type = 77;
    late.name = "Late (*.lat)";
    manager.setFileTypeFlag(2);
    manager.registerFactory(&late);
    EXPECT_TRUE(late.isEnabled());
    EXPECT_EQ(late.sortKey, 67);
    EXPECT_THAT(typesOf(manager), ElementsAre(13, 20));
    EXPECT_FALSE(late.isEnabled());
    manager.registerFactory(nullptr);
}

TEST_F(Registry, FindsTypesByNameAndNamesByType) {
    const char* none = nullptr;
    for (const auto& [name, type] : {std::pair{"", 13},
                                     {"EDF90", 6},
                                     {"nihonkohden", 19},
                                     {"Unknown", 1},
                                     {"interleaved", 1},
                                     {"SnapshotData", 39},
                                     {"PushableDataAndMore", 43},
                                     {"xltech", 30},
                                     {"NetworkConcepts", 12},
                                     {"NicOne", 50},
                                     {"ProfusionEEG4", 60},
                                     {"KelvaneLayoutXML", 45},
                                     {"Nonsense", 0},
                                     {"EDF90 (*.edf)x", 0},
                                     {none, 0}})
        EXPECT_EQ(manager.getFileType(name), type) << (name ? name : "null");
    EXPECT_EQ(nameOf(manager, 1), "KelvaneLayout");
    EXPECT_EQ(nameOf(manager, 24), "Bravo");
    EXPECT_EQ(nameOf(manager, 24 | wholeTypeName), "Bravo (*.eeg)");
    EXPECT_EQ(nameOf(manager, 64 | wholeTypeName),
              "CNSMonitor (EEG,Composite,SampleSeries,*,data)");
    EXPECT_EQ(nameOf(manager, 16), "Medelec/TECA");
    EXPECT_EQ(nameOf(manager, 45), "KelvaneLayoutXML");
    EXPECT_EQ(nameOf(manager, 67), "");
    EXPECT_EQ(nameOf(manager, -1), "");
    EXPECT_EQ(manager.getFileTypeName(6, nullptr), 0);
    EXPECT_EQ(manager.findFactoryByName("BDF (*.bdf)")->type, 48);
    EXPECT_EQ(manager.findFactoryByName("bdf (*.bdf)"), nullptr);
    EXPECT_STREQ(manager.getPartnerTag(6), "");
    // The first record of 54 is enabled and not listed, so the second answers.
    EXPECT_EQ(manager.getStaticFlags(54), 3U);
    EXPECT_STREQ(manager.findFactoryByType(54)->name, "Blackrock (*.ns*)");
    EXPECT_EQ(manager.getStaticFlags(1), 0U);
    // What attribute files write must read back.
    for (int type = 1; type <= 66; ++type)
        EXPECT_EQ(KrnlGetFileType(typeNameOf(type).c_str()), type);
}

TEST_F(Registry, TheHostsSortOrderComesFirst) {
    manager.setSortOrder({"Micromed (*.trc)", "EDF90 (*.edf)", "edf90 (*.EDF)", nullptr});
    auto names = manager.getSortOrder();
    ASSERT_EQ(names.size(), 66U);
    EXPECT_STREQ(names[0], "Micromed (*.trc)");
    EXPECT_STREQ(names[1], "EDF90 (*.edf)");
    EXPECT_STREQ(names[2], "KelvaneLayout (*.lay)");
    EXPECT_STREQ(names[3], "NicoletBEAM (d*.)");
    EXPECT_EQ(manager.getFileType(""), 28);
    // Of a name given twice the later place counts.
    manager.setSortOrder({"BDF (*.bdf)", "XLTEK (*.erd)", "BDF (*.bdf)"});
    names = manager.getSortOrder();
    EXPECT_STREQ(names[0], "XLTEK (*.erd)");
    EXPECT_STREQ(names[1], "BDF (*.bdf)");
    EXPECT_STREQ(names[2], "Micromed (*.trc)");
}

struct OwnFactory : DRFactory {
    explicit OwnFactory(int& destroyed) : count(destroyed) {
        type = 6;
        name = "Own (*.own)";
        owned = 1;
    }
    ~OwnFactory() override { ++count; }
    IDataReader* create(const char* fileName) override {
        asked = fileName;
        return yields ? new FakeReader() : nullptr;
    }
    int& count;
    bool yields = true;
    std::string asked;
};

TEST(RegistryAllocation, AsksTheFirstEnabledRecordOnly) {
    int destroyed = 0;
    {
        DataReaderManager manager;
        auto* own = new OwnFactory(destroyed);
        manager.registerFactory(own);
        manager.setSortOrder({"Own (*.own)"});
        CString name = "a.own";
        std::string reason;
        UnheldReader reader = manager.allocate(6, name, reason);
        EXPECT_NE(dynamic_cast<FakeReader*>(reader.get()), nullptr);
        EXPECT_EQ(own->asked, "a.own");
        // A record that creates nothing leaves a built-in type to the registry.
        own->yields = false;
        EXPECT_NE(manager.allocate(6, name, reason), nullptr);
        own->type = 48;
        EXPECT_EQ(manager.allocate(48, name, reason), nullptr);
        own->flags = factoryListed;
        EXPECT_NE(manager.allocate(48, name, reason), nullptr);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(RegistryAllocation, HoldsToTheGatesOfTheMode) {
    DataReaderManager manager;
    CString name = "x";
    std::string reason;
    const auto allocates = [&](int mode, int type) {
        manager.setFileTypeFlag(mode);
        return manager.allocate(type, name, reason) != nullptr;
    };
    EXPECT_TRUE(allocates(1, 28) && allocates(1, 44) && allocates(1, 54) && allocates(1, 1));
    EXPECT_FALSE(allocates(1, 45) || allocates(1, 67) || allocates(1, 0) || allocates(1, -1));
    EXPECT_EQ(reason, "-1 is the number of no recording type");
    EXPECT_TRUE(allocates(2, 20) && allocates(2, 1) && allocates(2, 39));
    EXPECT_FALSE(allocates(2, 28));
    EXPECT_EQ(reason, "the type Micromed is switched off by the file-type mode 2");
    EXPECT_FALSE(allocates(0, 1) || allocates(3, 43));
    EXPECT_TRUE(allocates(3, 20));
    for (const TypeRow& row : typeTable())
        EXPECT_EQ(allocates(4, row.type), !isLayoutType(row.type)) << row.name;
}

TEST(RegistryAllocation, AsksTheHostsRegistryForTheMembersOfAPair) {
    struct HostRegistry : DataReaderManager {
        IDataReader* allocReader(int type, CString& name) override {
            asked.push_back(name);
            return type == 48 ? nullptr : DataReaderManager::allocReader(type, name);
        }
        std::vector<std::string> asked;
    } registry;
    std::string reason;
    CString name = "a.edf*b.trc";
    const UnheldReader pair = registry.allocate(pairType(6, 28), name, reason);
    ASSERT_NE(pair, nullptr);
    EXPECT_THAT(registry.asked, ElementsAre("a.edf", "b.trc"));
    EXPECT_EQ(dynamic_cast<SyncReader&>(*pair).second()->fileType(), 28);
    EXPECT_EQ(name, "a.edf");
    EXPECT_EQ(registry.allocate(pairType(48, 6), name = "a*b", reason), nullptr);
    EXPECT_EQ(reason, "the registry refuses the type BDF");
    EXPECT_EQ(registry.allocate(pairType(6, 67), name = "a*b", reason), nullptr);
    EXPECT_EQ(reason, "67 is the number of no recording type");
}

TEST(RegistryAllocation, StampsTypeAndName) {
    DataReaderManager manager;
    CString name = "rec.msr";
    IDataReader* reader = manager.allocReader(57, name);
    const UnheldReader held(reader);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->fileType(), 57);
    EXPECT_STREQ(reader->fileName(), "rec.msr");
    EXPECT_FALSE(reader->open("rec.msr"));
    EXPECT_EQ(reader->getLastError(), 3);
}

} // namespace
} // namespace kvsig::test
