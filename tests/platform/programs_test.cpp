// Messages and the user's programs, with scripts in the place of the desktop's programs.
#include "platform/programs.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "gmock/gmock.h"
#include "platform/message_box.h"
#include "platform/shell.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Texts = std::vector<std::string>;

// A folder with programs that report how they were called, as the only one on the PATH.
class Programs : public testing::Test {
protected:
    Programs() {
        mkfifo((folder / "report").c_str(), 0600);
        setenv("PATH", folder.c_str(), 1);
        setenv("DISPLAY", ":77", 1);
        unsetenv("WAYLAND_DISPLAY");
    }
    ~Programs() override {
        setenv("PATH", pathBefore.c_str(), 1);
        unsetenv("DISPLAY");
    }
    // It reports each argument and what it finds of its parent's, each ended by a line of one dot.
    void AddProgram(const std::string& name) {
        std::ofstream(folder / name) << R"(#!/bin/sh
{
    for argument in "$0" "$@"; do printf '%s\n.\n' "$argument"; done
    [ -e /proc/$$/fd/200 ] && printf 'open file\n.\n'
    [ -n "$LD_LIBRARY_PATH" ] && printf 'libraries\n.\n'
    kill -PIPE $$
    printf 'end\n.\n'
} > "${0%/*}/report"
)";
        fs::permissions(folder / name, fs::perms::owner_all);
    }
    // Waits for a program's report: its arguments, and without "end" it died of the signal that it sent
    // itself.
    Texts Report() {
        const int pipe = open((folder / "report").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        std::string all;
        pollfd waiting = {pipe, POLLIN, 0};
        char part[4096];
        while (poll(&waiting, 1, 20000) > 0) {
            const ssize_t got = read(pipe, part, sizeof part);
            if (got <= 0) break;
            all.append(part, static_cast<std::size_t>(got));
        }
        close(pipe);
        Texts texts;
        for (std::size_t at = 0, end; (end = all.find("\n.\n", at)) != std::string::npos; at = end + 3)
            texts.push_back(all.substr(at, end - at));
        return texts;
    }
    // No program that was started is a child of this process, alive or dead.
    static bool HasNoChildren() { return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD; }
    std::string Path(const std::string& name) const { return folder / name; }

    const std::string pathBefore = std::getenv("PATH");
    const TempFolder temporary;
    const fs::path folder = temporary.path;
};

TEST_F(Programs, GetTheirArgumentsAndNothingElseOfOurs) {
    AddProgram("tool");
    const Texts arguments = {FindProgram("tool"), "two words", "$(id); `id` 'x' \"y\" \\ *", "--third\nline",
                             ""};
    ASSERT_EQ(arguments[0], Path("tool"));
    const int file = open("/dev/null", O_RDONLY);
    ASSERT_EQ(dup2(file, 200), 200);  // without close-on-exec, as a host may have its files
    setenv("LD_LIBRARY_PATH", folder.c_str(), 1);
    signal(SIGPIPE, SIG_IGN);  // as a host may have it; the program must have the default
    EXPECT_TRUE(StartProgram(arguments));
    signal(SIGPIPE, SIG_DFL);
    unsetenv("LD_LIBRARY_PATH");
    close(200);
    close(file);
    EXPECT_EQ(Report(), arguments);
    EXPECT_TRUE(HasNoChildren());
}

TEST_F(Programs, AreFoundOnThePathIfTheyCanBeRun) {
    EXPECT_EQ(FindProgram("tool"), "");
    std::ofstream(folder / "tool") << "text";  // not executable
    fs::create_directory(folder / "other");
    setenv("PATH", ("relative::" + folder.string() + ":/nowhere").c_str(), 1);
    EXPECT_EQ(FindProgram("tool"), "");
    EXPECT_EQ(FindProgram("other"), "");
    AddProgram("tool");
    EXPECT_EQ(FindProgram("tool"), Path("tool"));
    unsetenv("PATH");
    EXPECT_EQ(FindProgram("sh").substr(0, 1), "/");
}

TEST_F(Programs, AMessageIsShownByTheDialogProgramThatIsThere) {
    AddProgram("kdialog");
    SystemMessageBox().Show("--text", "Error");
    EXPECT_THAT(Report(), ElementsAre(Path("kdialog"), "--title=Error", "--error=--text"));
    AddProgram("zenity");
    SystemMessageBox().Show("<b>&", "Error");
    EXPECT_THAT(Report(),
                ElementsAre(Path("zenity"), "--error", "--no-markup", "--title=Error", "--text=<b>&"));
    EXPECT_TRUE(HasNoChildren());
}

TEST_F(Programs, WithoutADialogAMessageIsOneLineOnStandardError) {
    testing::internal::CaptureStderr();
    SystemMessageBox().Show("two\nlines", "Error");  // a display, but no program
    AddProgram("zenity");
    unsetenv("DISPLAY");
    SystemMessageBox().Show("text", "Caption.");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ORVA Audio To MIDI: Error: two lines\nORVA Audio To MIDI: Caption.: text\n");
}

TEST_F(Programs, TheShellOpensPagesMailAndHelp) {
    EXPECT_FALSE(SystemShell().OpenWebPage("https://host.example/"));  // no such program
    AddProgram("xdg-open");
    EXPECT_TRUE(SystemShell().OpenWebPage("https://host.example/a?b=c&d"));
    EXPECT_THAT(Report(), ElementsAre(Path("xdg-open"), "https://host.example/a?b=c&d"));
    EXPECT_TRUE(SystemShell().OpenMail("support@host.example"));
    EXPECT_THAT(Report(), ElementsAre(Path("xdg-open"), "mailto:support@host.example"));
    EXPECT_FALSE(SystemShell().OpenHelpFile(Path("absent.chm")));
    std::ofstream(folder / "-help.chm") << "help";
    EXPECT_TRUE(SystemShell().OpenHelpFile(Path("-help.chm")));
    EXPECT_THAT(Report(), ElementsAre(Path("xdg-open"), Path("-help.chm")));
    EXPECT_FALSE(SystemShell().OpenWebPage("--version"));
    EXPECT_FALSE(SystemShell().OpenWebPage(""));
    EXPECT_TRUE(HasNoChildren());
}

struct Recorder : IMessageBox, IMessageWindow {
    void Show(const std::string& text, const std::string& caption) override {
        shown.push_back(caption + ":" + text);
    }
    bool TakeMessage(const std::string& text, const std::string& caption) override {
        if (takes) Show(text, caption);
        return takes;
    }
    bool takes = true;
    Texts shown;
};

TEST(MessageBoxes, GoToTheOpenWindowFirst) {
    Recorder system, window;
    SubstituteSystemMessageBox(&system);
    MessageBox box;
    box.Show("1", "c");
    box.SetWindow(&window);
    box.Show("2", "c");
    window.takes = false;
    box.Show("3", "c");
    window.takes = true;
    box.Show("4", "c");
    box.SetWindow(nullptr);
    box.Show("5", "c");
    EXPECT_THAT(window.shown, ElementsAre("c:2", "c:4"));
    EXPECT_THAT(system.shown, ElementsAre("c:1", "c:3", "c:5"));
    SubstituteSystemMessageBox(nullptr);
}

}  // namespace
