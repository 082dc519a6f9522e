#include "platform/user_store.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "gtest/gtest.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

// A configuration folder of its own for each test.
class UserStore : public testing::Test {
protected:
    UserStore() {
        setenv("XDG_CONFIG_HOME", base.c_str(), 1);
        folder = base / "Software" / "ORVA Labs" / "ORVA Audio To MIDI VST 1.30";
    }
    ~UserStore() override {
        unsetenv("XDG_CONFIG_HOME");
        setenv("HOME", homeBefore.c_str(), 1);
    }
    std::size_t Files() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
    const std::string homeBefore = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "/";
    const TempFolder temporary;
    const fs::path base = temporary.path;
    fs::path folder;
};

TEST_F(UserStore, ASettingIsAFileForTheUserAlone) {
    EXPECT_EQ(readRegistryString("Name"), "");
    EXPECT_TRUE(writeRegistryString("Name", "Ada"));
    EXPECT_EQ(readRegistryString("Name"), "Ada");
    std::ifstream file(folder / "Name");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "Ada");  // without a terminator
    struct stat found = {};
    ASSERT_EQ(stat((folder / "Name").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, 0600U);
    EXPECT_TRUE(writeRegistryString("Name", ""));
    EXPECT_EQ(readRegistryString("Name"), "");
    EXPECT_EQ(Files(), 1U);  // and no draft is left
}

TEST_F(UserStore, AReaderHasRoomFor255Bytes) {
    EXPECT_TRUE(writeRegistryString("Code", std::string(255, 'x')));
    EXPECT_EQ(readRegistryString("Code"), std::string(255, 'x'));
    EXPECT_TRUE(writeRegistryString("Code", std::string(256, 'x')));
    EXPECT_EQ(readRegistryString("Code"), "");
    EXPECT_TRUE(writeRegistryString("Code", std::string(1 << 20, 'x')));
    EXPECT_EQ(readRegistryString("Code"), "");
    EXPECT_TRUE(writeRegistryString("Code", std::string("ab\0cd", 5)));
    EXPECT_EQ(readRegistryString("Code"), "ab");
}

TEST_F(UserStore, ANameIsNeverAPath) {
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string(".x"), std::string("a/b"),
          std::string("../x"), std::string("a\\b"), std::string("a\0b", 3), std::string(201, 'n')}) {
        EXPECT_FALSE(writeRegistryString(name, "text")) << name;
        EXPECT_EQ(readRegistryString(name), "");
    }
    EXPECT_TRUE(writeRegistryString(std::string(200, 'n'), "text"));
    EXPECT_EQ(readRegistryString(std::string(200, 'n')), "text");
}

TEST_F(UserStore, WithoutAConfigurationFolderTheHomeHasOne) {
    for (const char* const none : {"", "relative"}) {
        setenv("XDG_CONFIG_HOME", none, 1);
        setenv("HOME", base.c_str(), 1);
        EXPECT_TRUE(writeRegistryString("Name", "Ada"));
        EXPECT_GT(fs::remove_all(base / ".config" / "Software"), 0U);
    }
}

TEST_F(UserStore, WhatIsNoFileReadsAsEmpty) {
    ASSERT_TRUE(writeRegistryString("Name", "Ada"));
    ASSERT_EQ(mkfifo((folder / "Pipe").c_str(), 0600), 0);
    EXPECT_EQ(readRegistryString("Pipe"), "");  // and does not wait for a writer
    fs::create_directory(folder / "Folder");
    EXPECT_EQ(readRegistryString("Folder"), "");
    EXPECT_FALSE(writeRegistryString("Folder", "text"));
    EXPECT_EQ(Files(), 3U);
}

TEST_F(UserStore, AWriteThatBreaksOffLeavesTheOldText) {
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
