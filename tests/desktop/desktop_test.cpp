// Messages and the user's programs, with scripts in the place of the desktop's programs; the user's settings.
#include "desktop/linux/programs.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "desktop/message_box.h"
#include "desktop/shell.h"
#include "desktop/user_store.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

using Words = std::vector<std::string>;

// A folder with programs that report how they were called, as the only one on the PATH.
class Programs : public testing::Test {
protected:
    Programs() {
        mkfifo((folder / "report").c_str(), 0600);
        folder.BecomePath(false);
        setenv("DISPLAY", ":77", 1);
        unsetenv("WAYLAND_DISPLAY");
    }
    ~Programs() override {
        EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD) << "a child, alive or dead";
    }
    // It reports its name, each argument and what it finds of its parent's, each ended by a line of one dot;
    // "end" is missing where the signal that it sends itself does not end it.
    void AddProgram(const std::string& name) const {
        folder.Program(name, R"({
    for argument in "${0##*/}" "$@"; do printf '%s\n.\n' "$argument"; done
    [ -e /proc/$$/fd/200 ] && printf 'open file\n.\n'
    [ -n "$LD_LIBRARY_PATH" ] && printf 'libraries\n.\n'
    kill -PIPE $$
    printf 'end\n.\n'
} > "${0%/*}/report")");
    }
    // Waits for a program's report.
    Words Report() const {
        const std::string all = ReadAll(folder / "report");  // of a pipe
        Words words;
        for (std::size_t at = 0, end; (end = all.find("\n.\n", at)) != std::string::npos; at = end + 3)
            words.push_back(all.substr(at, end - at));
        return words;
    }

    const TempFolder folder;
};

TEST_F(Programs, GetTheirArgumentsAndNothingElseOfOurs) {
    WriteAll(folder / "tool", "text");  // not executable
    EXPECT_EQ(FindProgram("tool"), "");
    AddProgram("tool");
    Words words = {FindProgram("tool"), "two words", "$(id); `id` 'x' \"y\" \\ *", "--third\nline", ""};
    ASSERT_EQ(words[0], folder / "tool");
    const int file = open("/dev/null", O_RDONLY);
    ASSERT_EQ(dup2(file, 200), 200);  // without close-on-exec, as a host may have its files
    setenv("LD_LIBRARY_PATH", folder.path.c_str(), 1);
    signal(SIGPIPE, SIG_IGN);  // as a host may have it; the program must have the default
    EXPECT_TRUE(StartProgram(words));
    signal(SIGPIPE, SIG_DFL);
    unsetenv("LD_LIBRARY_PATH");
    close(200);
    close(file);
    words[0] = "tool";
    EXPECT_EQ(Report(), words);
}

TEST_F(Programs, AMessageIsShownByTheInstalledDialogProgramOrAsOneLine) {
    testing::internal::CaptureStderr();
    SystemMessageBox().Show("two\nlines", "Error");  // a display, but no program
    AddProgram("kdialog");
    SystemMessageBox().Show("--text", "Error");
    EXPECT_EQ(Report(), (Words{"kdialog", "--title=Error", "--error=--text"}));
    AddProgram("zenity");
    SystemMessageBox().Show("<b>&", "Error");
    EXPECT_EQ(Report(), (Words{"zenity", "--error", "--no-markup", "--title=Error", "--text=<b>&"}));
    unsetenv("DISPLAY");
    SystemMessageBox().Show("text", "Caption.");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ORVA Audio To MIDI: Error: two lines\nORVA Audio To MIDI: Caption.: text\n");
}

TEST_F(Programs, TheShellOpensMail) {
    EXPECT_FALSE(ComposeMail("support@host.example"));  // no such program
    AddProgram("xdg-open");
    EXPECT_TRUE(ComposeMail("support@host.example"));
    EXPECT_EQ(Report(), (Words{"xdg-open", "mailto:support@host.example"}));
}

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
    setenv("XDG_CONFIG_HOME", "/dev/null", 1);  // in which no folder can be made
    EXPECT_FALSE(writeRegistryString("Name", "text"));
}

TEST_F(UserStore, AWriteThatFailsLeavesWhatWasThere) {
    ASSERT_TRUE(writeRegistryString("Name", "Ada"));
    InChild([](Trial&) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit small = {100, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &small);  // bytes that a file may have
        EXPECT_FALSE(writeRegistryString("Name", std::string(200, 'x')));
    });
    EXPECT_EQ(readRegistryString("Name"), "Ada");
    EXPECT_EQ(Files(), 1);
}

}  // namespace
