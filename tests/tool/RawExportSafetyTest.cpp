#include "kvsig/kvsig.h"
#include "support/Command.h"
#include "support/EdfFile.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig::test {
namespace {

using testing::HasSubstr;

class RawExportSafety : public testing::Test {
  protected:
    RawExportSafety() { recording.signal("Cz", 4).records(3).writeTo(dir.file("a.edf")); }

    CommandResult run(const std::string& arguments) {
        return runCommand(dir, "export --format raw " + arguments);
    }
    TempDir dir;
    EdfFile recording;
};

TEST_F(RawExportSafety, ALayoutNeverTakesThePlaceOfItsData) {
    std::filesystem::create_symlink("out.lay", dir.file("link.raw"));
    std::filesystem::create_symlink("link.raw", dir.file("link.lay"));
    for (const char* output : {"out.lay", "OUT.LAY", "./sub.d/../out.lay"}) {
        const CommandResult refused = run(std::string("a.edf -o ") + output);
        EXPECT_EQ(refused.exitCode, 2) << output;
        EXPECT_THAT(refused.err, HasSubstr("would take the place of the data")) << output;
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.lay")));
    dir.write("out.lay", "kept");
    EXPECT_EQ(run("a.edf -o link.raw").exitCode, 2) << "both lead to out.lay";
    EXPECT_EQ(dir.read("out.lay"), "kept");
    std::filesystem::remove(dir.file("link.raw"));
    EXPECT_EQ(run("a.edf -o link.raw").exitCode, 1) << "a layout that leads to the data";
    EXPECT_EQ(dir.read("link.raw").size(), 24U);
}

} // namespace
} // namespace kvsig::test
