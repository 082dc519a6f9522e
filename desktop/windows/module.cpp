#include "desktop/windows/module.h"

#include <memory>
#include <string>
#include <utility>

#include "desktop/module_folder.h"

namespace {

HMODULE FindModule(DWORD flags) {
    static const char here = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags,
                       reinterpret_cast<const wchar_t*>(&here), &module);
    return module;
}

// All that the thread owns is gone before the module may go.
DWORD WINAPI Run(void* given) {
    {
        const std::unique_ptr<std::function<void()>> work(static_cast<std::function<void()>*>(given));
        try {
            (*work)();
        } catch (...) {  // no memory, and nobody to hear of it
        }
    }
    FreeLibraryAndExitThread(ThisModule(), 0);
}

}  // namespace

HMODULE ThisModule() {
    return FindModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
}

bool RunBeside(std::function<void()> work) {
    auto given = std::make_unique<std::function<void()>>(std::move(work));
    const HMODULE held = FindModule(0);
    const HANDLE thread = CreateThread(nullptr, 0, Run, given.get(), 0, nullptr);
    if (thread == nullptr) {
        FreeLibrary(held);
        return false;
    }
    CloseHandle(thread);
    [[maybe_unused]] const auto* const handedOver = given.release();
    return true;
}

std::filesystem::path ModuleFolder() {
    std::wstring name(32768, L'\0');  // no path is longer
    name.resize(GetModuleFileNameW(ThisModule(), name.data(), static_cast<DWORD>(name.size())));
    return std::filesystem::path(name).parent_path();
}
