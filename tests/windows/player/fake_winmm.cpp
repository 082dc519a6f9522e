// The system's MIDI outputs, played by one device that writes to midi.txt what it is sent.
#define _WINMM_  // these are the functions themselves
#include <windows.h>

#include <mmsystem.h>

#include <cstdio>
#include <cwchar>

static FILE* heard = nullptr;

UINT WINAPI midiOutGetNumDevs() {
    return 1;
}
MMRESULT WINAPI midiOutGetDevCapsW(UINT_PTR, LPMIDIOUTCAPSW caps, UINT size) {
    std::wcscpy(caps->szPname, L"Gerät");
    return size == 84 ? MMSYSERR_NOERROR : MMSYSERR_INVALPARAM;
}
MMRESULT WINAPI midiOutOpen(LPHMIDIOUT handle, UINT id, DWORD_PTR, DWORD_PTR, DWORD) {
    if (id != 0 || heard != nullptr) return MMSYSERR_BADDEVICEID;
    heard = std::fopen("midi.txt", "wb");
    *handle = reinterpret_cast<HMIDIOUT>(&heard);
    return MMSYSERR_NOERROR;
}
MMRESULT WINAPI midiOutClose(HMIDIOUT) {
    std::fputs("closed\n", heard);
    return std::fclose(heard) == 0 ? MMSYSERR_NOERROR : MMSYSERR_ERROR;
}
MMRESULT WINAPI midiOutShortMsg(HMIDIOUT, DWORD message) {
    std::fprintf(heard, "%02lx%02lx%02lx\n", message & 255U, message >> 8U & 255U, message >> 16U & 255U);
    return MMSYSERR_NOERROR;
}
