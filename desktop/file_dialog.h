#pragma once
#include <cstdint>
#include <memory>
#include <string>

// What a dialog that asks for a file to write shows and proposes.
struct FileDialogRequest {
    std::string title;
    std::string filterName;    // as the user reads it: "MIDI Files (*.mid)"
    std::string extension;     // without its dot; given to a name that has none
    std::string proposedName;  // may be empty
    std::uint32_t owner = 0;   // the window above which it stays, by its number; 0 for none
};

// The desktop's own dialog for a file to write, which neither blocks the caller nor runs its messages. It
// asks before it gives the name of a file that exists, whether by itself or by the extension that is added.
//
// On Linux: zenity or kdialog, found on the PATH and run as a program of its own, without a shell, so that no
// second toolkit comes into the host's process. The program gets nothing of ours but its arguments: no open
// file beyond the three standard ones. Where the extension that is added here names a file that exists, a
// second dialog asks; if the user declines, the first comes again.
//
// On Windows: the system's, on a thread of its own. The module stays loaded until that has ended.
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
        failed,     // the dialog ended in another way
    };

    FileDialog();
    ~FileDialog();  // a dialog that runs is ended, and no process is left behind
    FileDialog(const FileDialog&) = delete;
    FileDialog& operator=(const FileDialog&) = delete;

    // False when there is no such program or it cannot be run; the state is `failed` then. A dialog that runs
    // is ended first.
    bool Start(const FileDialogRequest& wanted);

    State Poll();  // fetches what there is of an answer and looks whether the dialog has ended
    void End();    // back to idle

    const std::string& Path() const;  // of a state `chosen`
    int Program() const;  // the process of the state `running`, where it has one of its own; else -1

    // At most that much of what a program writes is kept; no path is longer.
    static constexpr std::size_t longestAnswer = 8192;  // bytes

private:
    class Work;
    std::unique_ptr<Work> work;
};
