#include "devices/windows/winmm_out.h"

#include <algorithm>
#include <string_view>

#include "base/windows/wide.h"

// After our own headers, whose names for results are macros here.
#include <windows.h>

#include <mmsystem.h>

namespace {

template <std::size_t units>
std::string TextOf(const wchar_t (&field)[units]) {
    return Narrow(std::wstring_view(field, wcsnlen(field, units)));
}

class WinmmDevice : public MidiDevice {
public:
    explicit WinmmDevice(HMIDIOUT itsHandle) : handle(itsHandle) {}
    ~WinmmDevice() override { ::midiOutClose(handle); }

    std::uint32_t Send(std::uint32_t message, std::size_t) override {
        return ::midiOutShortMsg(handle, message);
    }
    // The layer keeps the bytes until they are on their way, which it only shows by letting go of them.
    std::uint32_t SendLong(const MidiLongMessage& message) override {
        std::vector<char> bytes(message.data, message.data + message.length);
        MIDIHDR header = {};
        header.lpData = bytes.data();
        header.dwBufferLength = header.dwBytesRecorded = static_cast<DWORD>(bytes.size());
        const std::uint32_t prepared = ::midiOutPrepareHeader(handle, &header, sizeof header);
        if (prepared != MMSYSERR_NOERROR) return prepared;
        const std::uint32_t code = ::midiOutLongMsg(handle, &header, sizeof header);
        while (::midiOutUnprepareHeader(handle, &header, sizeof header) == MIDIERR_STILLPLAYING) Sleep(1);
        return code;
    }

private:
    HMIDIOUT handle;
};

MidiOpening OpenDevice(UINT id) {
    HMIDIOUT handle = nullptr;
    const std::uint32_t code = ::midiOutOpen(&handle, id, 0, 0, CALLBACK_NULL);
    if (code == MMSYSERR_NOERROR) return {std::make_unique<WinmmDevice>(handle), code, {}};
    wchar_t text[MidiOutErrorTextW::units] = {};
    ::midiOutGetErrorTextW(code, text, MidiOutErrorTextW::units);
    return {nullptr, code, TextOf(text)};
}

}  // namespace

std::vector<std::string> WinmmBackend::DeviceNames() {
    std::vector<std::string> names;
    const UINT count = ::midiOutGetNumDevs();
    for (UINT id = 0; id < count; ++id) {
        MIDIOUTCAPSW caps = {};
        const bool read = ::midiOutGetDevCapsW(id, &caps, sizeof caps) == MMSYSERR_NOERROR;
        const std::string plain = read ? TextOf(caps.szPname) : std::string();
        std::string name = plain;
        for (int number = 2; std::find(names.begin(), names.end(), name) != names.end(); ++number)
            name = plain + " (" + std::to_string(number) + ")";
        names.push_back(std::move(name));
    }
    return names;
}

MidiOpening WinmmBackend::Open(const std::string& name) {
    const std::vector<std::string> names = DeviceNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) return {nullptr, MMSYSERR_BADDEVICEID, {}};
    return OpenDevice(static_cast<UINT>(found - names.begin()));
}

MidiOpening WinmmBackend::OpenMapper() {
    return OpenDevice(MIDI_MAPPER);
}
