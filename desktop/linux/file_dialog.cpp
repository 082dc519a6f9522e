#include "desktop/file_dialog.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "desktop/linux/programs.h"

namespace {

bool DesktopIsKde() {
    const char* desktop =
        std::getenv("XDG_CURRENT_DESKTOP");  // NOLINT(concurrency-mt-unsafe): a host does not change it
    return desktop != nullptr && std::string_view(desktop).find("KDE") != std::string_view::npos;
}

using Command = std::vector<std::string>;

Command ZenityCommand(const FileDialogRequest& request) {
    Command command = {"--file-selection", "--save", "--confirm-overwrite", "--title=" + request.title};
    if (!request.proposedName.empty()) command.push_back("--filename=" + request.proposedName);
    command.push_back("--file-filter=" + request.filterName + " | *." + request.extension);
    return command;
}
Command ZenityQuestion(const FileDialogRequest& request, const std::string& text) {
    return {"--question",     "--no-markup",        "--title=" + request.title,
            "--text=" + text, "--ok-label=Replace", "--cancel-label=Cancel"};
}

Command KdialogCommand(const FileDialogRequest& request) {
    const std::string start = request.proposedName.empty() ? "." : request.proposedName;
    const bool namesPattern = request.filterName.find("(*") != std::string::npos;
    const std::string filter = request.filterName + (namesPattern ? "" : " (*." + request.extension + ")");
    return {"--title", request.title, "--getsavefilename", start, filter};
}
Command KdialogQuestion(const FileDialogRequest& request, const std::string& text) {
    return {"--title", request.title, "--warningcontinuecancel", text, "--continue-label", "Replace"};
}

// The desktop's own program first, with the dialog or with the question that is not empty.
Command CommandFor(const FileDialogRequest& request, const std::string& question) {
    const std::string zenity = FindProgram("zenity"), kdialog = FindProgram("kdialog");
    const bool isKdialog = !kdialog.empty() && (DesktopIsKde() || zenity.empty());
    if (!isKdialog && zenity.empty()) return {};
    Command command;
    if (isKdialog)
        command = question.empty() ? KdialogCommand(request) : KdialogQuestion(request, question);
    else
        command = question.empty() ? ZenityCommand(request) : ZenityQuestion(request, question);
    command.insert(command.begin(), isKdialog ? kdialog : zenity);
    if (request.owner != 0) {
        const std::string owner = std::to_string(request.owner);
        if (isKdialog)
            command.insert(command.end(), {"--attach", owner});
        else
            command.push_back("--attach=" + owner);
    }
    return command;
}

constexpr int cancelled = 1 << 8;  // the status of a program that exits with 1

std::string NameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool HasExtension(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    const std::size_t slash = path.rfind('/');
    const std::size_t nameBegins = slash == std::string::npos ? 0 : slash + 1;
    return dot != std::string::npos && dot > nameBegins && dot + 1 < path.size();
}

}  // namespace

class FileDialog::Work {
public:
    bool Start(const FileDialogRequest& wanted);
    State Poll();
    void End();

    State state = State::idle;
    pid_t program = -1;  // leader of its own process group
    std::string path;

private:
    bool Run(const Command& command);
    void TakePath();
    void ReadAnswer();
    void CloseAnswer();
    bool HasEnded(int* status);

    int answerEnd = -1;  // we read what it writes
    std::string answer;
    FileDialogRequest request;
    bool asksToReplace = false;  // the dialog that runs is the question about `path`
};

FileDialog::FileDialog() : work(std::make_unique<Work>()) {}
FileDialog::~FileDialog() {
    work->End();
}
bool FileDialog::Start(const FileDialogRequest& wanted) {
    return work->Start(wanted);
}
FileDialog::State FileDialog::Poll() {
    return work->Poll();
}
void FileDialog::End() {
    work->End();
}
const std::string& FileDialog::Path() const {
    return work->path;
}
int FileDialog::Program() const {
    return work->program;
}

bool FileDialog::Work::Start(const FileDialogRequest& wanted) {
    End();
    request = wanted;
    asksToReplace = false;
    return Run(CommandFor(request, {}));
}

bool FileDialog::Work::Run(const Command& command) {
    answer.clear();
    state = State::failed;
    if (command.empty()) return false;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return false;
    fcntl(ends[1], F_SETFL, 0);  // the program may wait when it writes; we never wait when we read
    program = SpawnProgram(command, ends[1]);
    close(ends[1]);
    answerEnd = ends[0];
    if (program == 0) {
        CloseAnswer();
        program = -1;
        return false;
    }
    state = State::running;
    return true;
}

FileDialog::State FileDialog::Work::Poll() {
    if (state != State::running) return state;
    ReadAnswer();
    int status = 0;
    if (!HasEnded(&status)) return state;
    ReadAnswer();  // what it wrote just before
    CloseAnswer();

    const bool agreed = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    state = WIFEXITED(status) && WEXITSTATUS(status) <= 1 ? State::cancelled : State::failed;
    if (asksToReplace) {
        if (agreed) state = State::chosen;
        if (state == State::cancelled) {  // back to the dialog, with the name that was chosen
            request.proposedName = path;
            asksToReplace = false;
            Run(CommandFor(request, {}));
        }
    } else if (agreed) {
        TakePath();
    }
    return state;
}

void FileDialog::Work::TakePath() {
    if (!answer.empty() && answer.back() == '\n') answer.pop_back();
    if (answer.empty()) return;
    path = answer;
    state = State::chosen;
    if (HasExtension(path)) return;
    path += "." + request.extension;
    if (access(path.c_str(), F_OK) != 0) return;
    asksToReplace = true;
    Run(CommandFor(request,
                   "A file named \"" + NameOf(path) + "\" already exists. Do you want to replace it?"));
}

void FileDialog::Work::ReadAnswer() {
    char piece[4096];
    for (;;) {
        const ssize_t length = read(answerEnd, piece, sizeof piece);
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return;  // nothing now, or nothing any more
        answer.append(piece, std::min(static_cast<std::size_t>(length), longestAnswer - answer.size()));
    }
}

// Looks first and takes the status last: until then the process group keeps its number, and nobody of it is
// left to hold the pipe. A host that gathers all ended processes itself leaves no status; a path counts as
// given then, and leave to replace a file does not.
bool FileDialog::Work::HasEnded(int* status) {
    siginfo_t info = {};
    if (waitid(P_PID, static_cast<id_t>(program), &info, WEXITED | WNOHANG | WNOWAIT) == 0) {
        if (info.si_pid == 0) return false;
        kill(-program, SIGKILL);
        if (waitpid(program, status, 0) < 0) *status = asksToReplace ? cancelled : 0;
    } else if (errno == EINTR) {
        return false;
    }
    program = -1;
    return true;
}

void FileDialog::Work::CloseAnswer() {
    if (answerEnd >= 0) close(answerEnd);
    answerEnd = -1;
}

void FileDialog::Work::End() {
    if (program > 0) {
        kill(-program, SIGKILL);
        pid_t ended = 0;
        do ended = waitpid(program, nullptr, 0);
        while (ended < 0 && errno == EINTR);
        program = -1;
    }
    CloseAnswer();
    answer.clear();
    path.clear();
    state = State::idle;
}
