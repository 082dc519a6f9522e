#include "desktop/file_dialog.h"

#include <atomic>

#include "base/windows/wide.h"
#include "desktop/windows/module.h"

#include <commdlg.h>
#include <objbase.h>

namespace {

// One dialog, shared by its thread and whoever polls it.
struct Dialog {
    FileDialogRequest request;
    std::atomic<FileDialog::State> state{FileDialog::State::running};
    std::atomic<bool> abandoned{false};
    std::string path;  // written before the state
};

thread_local const Dialog* current = nullptr;  // of this thread

BOOL CALLBACK CloseWindow(HWND window, LPARAM) {
    PostMessageW(window, WM_CLOSE, 0, 0);
    return TRUE;
}

// The dialog's own loop of messages runs this, so that it ends whether it is up already or just coming.
void CALLBACK LookWhetherAbandoned(HWND, UINT, UINT_PTR, DWORD) {
    if (current != nullptr && current->abandoned) EnumThreadWindows(GetCurrentThreadId(), CloseWindow, 0);
}

void Show(Dialog& dialog) {
    constexpr std::size_t longestPath = 32768;
    const FileDialogRequest& request = dialog.request;
    const std::wstring title = Wide(request.title), extension = Wide(request.extension);
    std::wstring filter = Wide(request.filterName);
    filter += L'\0' + (L"*." + extension) + L'\0';
    std::wstring name = Wide(request.proposedName);
    name.resize(longestPath);
    // A window's number is what its handle is. NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto owner = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(request.owner));

    OPENFILENAMEW asked = {};
    asked.lStructSize = sizeof asked;
    asked.hwndOwner = IsWindow(owner) ? owner : nullptr;
    asked.lpstrFilter = filter.c_str();
    asked.lpstrFile = name.data();
    asked.nMaxFile = longestPath;
    asked.lpstrTitle = title.c_str();
    asked.lpstrDefExt = extension.c_str();
    asked.Flags = OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;

    constexpr UINT interval = 50;  // ms
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    current = &dialog;
    const UINT_PTR timer = SetTimer(nullptr, 0, interval, LookWhetherAbandoned);
    const bool chosen = GetSaveFileNameW(&asked) != FALSE;
    const bool failed = !chosen && CommDlgExtendedError() != 0;
    KillTimer(nullptr, timer);
    current = nullptr;
    CoUninitialize();
    if (chosen) dialog.path = Narrow(name.c_str());
    dialog.state = chosen   ? FileDialog::State::chosen
                   : failed ? FileDialog::State::failed
                            : FileDialog::State::cancelled;
}

}  // namespace

class FileDialog::Work {
public:
    std::shared_ptr<Dialog> dialog;  // none in the state idle
};

FileDialog::FileDialog() : work(std::make_unique<Work>()) {}
FileDialog::~FileDialog() {
    End();
}

bool FileDialog::Start(const FileDialogRequest& wanted) {
    End();
    work->dialog = std::make_shared<Dialog>();
    work->dialog->request = wanted;
    if (!RunBeside([dialog = work->dialog] { Show(*dialog); })) work->dialog->state = State::failed;
    return true;
}

FileDialog::State FileDialog::Poll() {
    return work->dialog ? work->dialog->state.load() : State::idle;
}

void FileDialog::End() {
    if (work->dialog) work->dialog->abandoned = true;
    work->dialog.reset();
}

const std::string& FileDialog::Path() const {
    static const std::string none;
    return work->dialog ? work->dialog->path : none;
}

int FileDialog::Program() const {
    return -1;
}
