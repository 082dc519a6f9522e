#pragma once
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

// What a dialog that asks for a file to write shows and proposes.
struct FileDialogRequest {
    std::string title;
    std::string filterName;    // as the user reads it: "MIDI Files (*.mid)"
    std::string extension;     // without its dot; given to a name that has none
    std::string proposedName;  // may be empty
    std::uint32_t owner = 0;   // the X window above which it stays; 0 for none
};

// The desktop's own dialog for a file to write: zenity or kdialog, found on the PATH and run as a program of
// its own, without a shell, so that it neither blocks the caller nor brings a second toolkit into the host's
// process. The program gets nothing of ours but its arguments: no open file beyond the three standard ones.
//
// The program asks before it gives the name of a file that exists. Where the extension that is added here
// makes it one, a second dialog asks; if the user declines, the first comes again.
//
// One dialog at a time. Its answer is fetched by polling; nothing here waits for the user.
// Threads: all calls on one thread, [ui].
class FileDialog {
public:
    enum class State {
        idle,       // none was started
        running,    // the user is choosing
        chosen,     // path() is the answer
        cancelled,  // the user chose none
        failed,     // the program ended in another way
    };

    FileDialog() = default;
    ~FileDialog() { End(); }  // a dialog that runs is ended, and no process is left behind
    FileDialog(const FileDialog&) = delete;
    FileDialog& operator=(const FileDialog&) = delete;

    // False when there is no such program or it cannot be run; the state is `failed` then. A dialog that runs
    // is ended first.
    bool Start(const FileDialogRequest& wanted);

    State Poll();  // reads what the program wrote so far and looks whether it has ended
    void End();    // back to idle

    const std::string& Path() const { return path; }  // of a state `chosen`
    pid_t Program() const { return program; }         // of the state `running`, else -1

    // At most that much of what the program writes is kept; no path is longer.
    static constexpr std::size_t answerRoom = 8192;  // bytes

private:
    bool Run(const std::vector<std::string>& command);
    void TakePath();
    void ReadAnswer();
    void CloseAnswer();
    bool HasEnded(int* status);

    State state = State::idle;
    pid_t program = -1;  // leader of its own process group
    int answerEnd = -1;  // we read what it writes
    std::string answer;
    std::string path;
    FileDialogRequest request;
    bool asksToReplace = false;  // the dialog that runs is the question about `path`
};
