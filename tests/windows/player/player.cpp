// A small host of the module for Windows.
// player MODULE SOUND EVENTS BLOCK [device]: plays floats; writes a line an event: sample, status and data.
// player MODULE: writes how wide the module's window is to be where a window of the host's is.
// player MODULE WINDOWS: opens the window so many times, and shows each page in the last: writes "page N",
// and goes on when there is a file page_N.png in this folder.
#include "tests/support/host.h"

#include <windows.h>

namespace {

int Width(const Host& host) {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    CreateWindowW(L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 400, 320, nullptr, nullptr, nullptr,
                  nullptr);
    const ERect* rect = nullptr;
    host.Call(effEditGetRect, 0, 0, static_cast<void*>(&rect));
    return rect->right - rect->left;
}

// What comes out is what went in.
bool Play(Host& host, const char* sound, const char* events, std::size_t block) {
    std::vector<float> samples(std::filesystem::file_size(sound) / sizeof(float));
    std::ifstream file(sound, std::ios::binary);
    file.read(reinterpret_cast<char*>(samples.data()), std::streamsize(samples.size() * sizeof(float)));
    host.events.clear();
    const bool whole = host.Play(samples, block);
    host.Call(effMainsChanged);
    std::FILE* const lines = std::fopen(events, "wb");
    for (const auto& [at, data] : host.events)
        std::fprintf(lines, "%lld,%02x%02x%02x\n", std::max<long long>(at, 0), data[0] & 255U, data[1] & 255U,
                     data[2] & 255U);
    std::fclose(lines);
    return whole;
}

void Idle(const Host& host, int times) {
    for (int i = 0; i < times; ++i) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        host.Call(effEditIdle);
        Sleep(10);
    }
}

bool ShowWindows(const Host& host, int count) {
    for (int left = count; left > 0; --left) {
        const HWND window = CreateWindowW(L"STATIC", L"player", WS_POPUP | WS_VISIBLE, 0, 0, 400, 320,
                                          nullptr, nullptr, nullptr, nullptr);
        if (host.Call(effEditOpen, 0, 0, window) == 0) return false;
        Idle(host, 5);
        for (int page = 0; left == 1 && page < 4; ++page) {
            host.Set(92, static_cast<float>(page + 2));
            Idle(host, 50);  // some columns of the picture, too
            std::printf("page %d\n", page);
            std::fflush(stdout);
            while (!std::filesystem::exists("page_" + std::to_string(page) + ".png")) Idle(host, 1);
        }
        host.Call(effEditClose);
        DestroyWindow(window);
    }
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    const HMODULE module = LoadLibraryA(arguments[1]);
    const auto entry = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(
        reinterpret_cast<void*>(GetProcAddress(module, "VSTPluginMain")));
    Host host;
    if (!host.Open(entry)) return 1;
    host.Call(effOpen);
    host.Call(effSetSampleRate, 0, 0, nullptr, 44100);
    host.Call(effMainsChanged, 0, 1);
    bool done = true;
    if (count == 2) {
        std::printf("%d", Width(host));
    } else if (count == 3) {
        done = ShowWindows(host, std::atoi(arguments[2]));
    } else {
        if (count > 5) host.Set(89, 1);
        done = Play(host, arguments[2], arguments[3], static_cast<std::size_t>(std::atoi(arguments[4])));
    }
    host.Close();
    return done && FreeLibrary(module) ? 0 : 1;
}
