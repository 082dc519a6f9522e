#include "editor/help_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

void Write(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "<!DOCTYPE html>";
}

}  // namespace

TEST(HelpFile, TheManualOfABuildIsFoundFromThePlugInAndFromTheBundle) {
    const TempFolder folder;
    const fs::path build = folder / "build";
    EXPECT_EQ(ManualOf(build), fs::path());
    Write(build / "manual/manual.html");
    EXPECT_EQ(ManualOf(build), build / "manual/manual.html");
    EXPECT_EQ(ManualOf(build / "orva.lv2"), build / "manual/manual.html");
    EXPECT_EQ(ManualOf(build / "lib/vst"), fs::path()) << "that is somebody else's";
}

TEST(HelpFile, TheManualOfAPackageIsFoundUnderItsPrefix) {
    const TempFolder folder;
    const fs::path prefix = folder / "usr";
    const fs::path lv2 = prefix / "share/doc/orva-lv2/manual.html",
                   vst = prefix / "share/doc/orva-vst/manual.html";
    Write(lv2);
    EXPECT_EQ(ManualOf(prefix / "lib/lv2/orva.lv2"), lv2);
    Write(vst);
    EXPECT_EQ(ManualOf(prefix / "lib/vst"), vst);
    EXPECT_EQ(ManualOf(prefix / "lib/x86_64-linux-gnu/vst"), vst);
    EXPECT_EQ(ManualOf(folder / "home/.vst"), fs::path());
    fs::create_directories(prefix / "lib/vst/orva_vst.html");  // a folder is no page
    EXPECT_EQ(ManualOf(prefix / "lib/vst"), vst);
}

TEST(HelpFile, TheSearchEndsWhereTheFoldersEnd) {
    EXPECT_EQ(ManualOf("/"), fs::path());
    EXPECT_EQ(ManualOf("no/such/folder"), fs::path());
}
