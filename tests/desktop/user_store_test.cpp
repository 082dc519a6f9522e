#include "desktop/user_store.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cstdlib>

#include "gtest/gtest.h"
#include "tests/support/temp_folder.h"

namespace {

// A configuration folder of its own for each test.
class UserStore : public testing::Test {
protected:
    UserStore() { setenv("XDG_CONFIG_HOME", base.path.c_str(), 1); }
    ~UserStore() override { unsetenv("XDG_CONFIG_HOME"); }
    auto Files() const { return std::distance(std::filesystem::directory_iterator(folder), {}); }
    const TempFolder base;
    const std::filesystem::path folder = base.path / "Software/ORVA Labs/ORVA Audio To MIDI VST 1.30";
};

TEST_F(UserStore, ASettingIsAFileForTheUserAloneReadUpTo255Bytes) {
    EXPECT_EQ(readRegistryString("Name"), "");
    for (const std::string& text : {std::string(), std::string(255, 'x'), std::string(256, 'x')}) {
        EXPECT_TRUE(writeRegistryString("Name", text));
        EXPECT_EQ(readRegistryString("Name"), text.size() < 256 ? text : "");
        EXPECT_EQ(ReadAll(folder / "Name"), text);  // without a terminator
        EXPECT_EQ(Files(), 1);                      // and no draft is left
    }
    for (const char* name : {"", "..", "a/b"}) EXPECT_FALSE(writeRegistryString(name, "text")) << name;
    struct stat found = {};
    ASSERT_EQ(stat((folder / "Name").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, 0600U);
}

TEST_F(UserStore, AWriteThatFailsLeavesWhatWasThere) {
    ASSERT_TRUE(writeRegistryString("Name", "Ada"));
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {100, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);  // bytes that a file may have
    const bool stored = writeRegistryString("Name", std::string(200, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    EXPECT_FALSE(stored);
    EXPECT_EQ(readRegistryString("Name"), "Ada");
    EXPECT_EQ(Files(), 1);
}

}  // namespace
