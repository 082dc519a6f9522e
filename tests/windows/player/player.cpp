// A small host of the module for Windows.
// player MODULE SOUND EVENTS BLOCK [device]: plays floats; writes a line an event: sample, then status and
// data.
// player MODULE: writes how wide the module's window is to be where a window of the host's is.
// player MODULE WINDOWS: opens the window so many times, and shows each page in the last: writes "page N",
// and goes on when there is a file page_N.png in this folder.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "vst2/records.h"

namespace {

constexpr int rate = 44100;  // Hz
long long blockBegin = 0;
FILE* events = nullptr;

std::intptr_t Answer(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void* data, float) {
    if (opcode == audioMasterVersion) return 2400;
    if (opcode == audioMasterGetSampleRate) return rate;
    if (opcode != audioMasterProcessEvents || events == nullptr) return 0;
    const VstEvents& sent = *static_cast<const VstEvents*>(data);
    for (std::int32_t i = 0; i < sent.numEvents; ++i) {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);
        std::fprintf(events, "%lld,%02x%02x%02x\n", std::max(blockBegin + event.deltaFrames, 0LL),
                     event.midiData[0] & 255U, event.midiData[1] & 255U, event.midiData[2] & 255U);
    }
    return 1;
}

std::intptr_t Call(AEffect* effect, std::int32_t opcode, std::intptr_t value = 0, void* data = nullptr) {
    return effect->dispatcher(effect, opcode, 0, value, data, rate);
}

int Width(AEffect* effect) {
    SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    CreateWindowW(L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 400, 320, nullptr, nullptr, nullptr,
                  nullptr);
    const ERect* rect = nullptr;
    Call(effect, effEditGetRect, 0, static_cast<void*>(&rect));
    return rect->right - rect->left;
}

// What comes out is what went in.
bool Play(AEffect* effect, const char* sound, std::size_t block) {
    std::vector<float> samples(std::filesystem::file_size(sound) / sizeof(float));
    std::ifstream file(sound, std::ios::binary);
    file.read(reinterpret_cast<char*>(samples.data()), std::streamsize(samples.size() * sizeof(float)));
    const std::vector<float> same = samples;
    for (std::size_t at = 0; at < samples.size(); at += block) {
        blockBegin = static_cast<long long>(at);
        float* channel = &samples[at];
        effect->processReplacing(effect, &channel, &channel, int(std::min(block, samples.size() - at)));
    }
    blockBegin = static_cast<long long>(samples.size());  // of what a suspend ends
    return samples == same;
}

void Idle(AEffect* effect, int times) {
    for (int i = 0; i < times; ++i) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        Call(effect, effEditIdle);
        Sleep(10);
    }
}

bool ShowWindows(AEffect* effect, int count) {
    for (int left = count; left > 0; --left) {
        const HWND window = CreateWindowW(L"STATIC", L"player", WS_POPUP | WS_VISIBLE, 0, 0, 400, 320,
                                          nullptr, nullptr, nullptr, nullptr);
        if (Call(effect, effEditOpen, 0, window) == 0) return false;
        Idle(effect, 5);
        for (int page = 0; left == 1 && page < 4; ++page) {
            effect->setParameter(effect, 92, static_cast<float>(page + 2));
            Idle(effect, 50);  // some columns of the picture, too
            std::printf("page %d\n", page);
            std::fflush(stdout);
            while (!std::filesystem::exists("page_" + std::to_string(page) + ".png")) Idle(effect, 1);
        }
        Call(effect, effEditClose);
        DestroyWindow(window);
    }
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    const HMODULE module = LoadLibraryA(arguments[1]);
    const auto entry = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(
        reinterpret_cast<void*>(GetProcAddress(module, "VSTPluginMain")));
    AEffect* const effect = entry(Answer);
    Call(effect, effOpen);
    Call(effect, effSetSampleRate);
    Call(effect, effMainsChanged, 1);
    bool done = true;
    if (count == 2) {
        std::printf("%d", Width(effect));
    } else if (count == 3) {
        done = ShowWindows(effect, std::atoi(arguments[2]));
    } else {
        if (count > 5) effect->setParameter(effect, 89, 1);
        events = std::fopen(arguments[3], "wb");
        done = Play(effect, arguments[2], static_cast<std::size_t>(std::atoi(arguments[4])));
        Call(effect, effMainsChanged);
        std::fclose(std::exchange(events, nullptr));
    }
    Call(effect, effClose);
    return done && FreeLibrary(module) ? 0 : 1;
}
