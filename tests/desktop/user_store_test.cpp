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
    std::size_t Files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
    const TempFolder base;
    const std::filesystem::path folder = base.path / "Software/ORVA Labs/ORVA Audio To MIDI VST 1.30";
};

TEST_F(UserStore, ASettingIsAFileForTheUserAloneReadUpTo255Bytes) {
    EXPECT_EQ(readRegistryString("Name"), "");
    const std::pair<std::string, std::string> rows[] = {{"Ada", "Ada"},
                                                        {"", ""},
                                                        {std::string(255, 'x'), std::string(255, 'x')},
                                                        {std::string(256, 'x'), ""},
                                                        {std::string("ab\0cd", 5), "ab"}};
    for (const auto& [text, read] : rows) {
        EXPECT_TRUE(writeRegistryString("Name", text));
        EXPECT_EQ(readRegistryString("Name"), read);
        EXPECT_EQ(ReadAll(folder / "Name"), text);  // without a terminator
        EXPECT_EQ(Files(), 1U);                     // and no draft is left
    }
    struct stat found = {};
    ASSERT_EQ(stat((folder / "Name").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, 0600U);
}

TEST_F(UserStore, ANameIsNeverAPath) {
    for (const std::string& name : {std::string(), std::string(".."), std::string(".x"), std::string("a/b"),
                                    std::string("a\\b"), std::string("a\0b", 3), std::string(201, 'n')}) {
        EXPECT_FALSE(writeRegistryString(name, "text")) << name;
        EXPECT_EQ(readRegistryString(name), "");
    }
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
    EXPECT_EQ(Files(), 1U);
}

}  // namespace
