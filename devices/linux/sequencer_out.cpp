#include "devices/linux/sequencer_out.h"

#include <RtMidi.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <thread>

#include "devices/message_ring.h"

namespace {

std::uint32_t CodeOf(RtMidiError::Type type) {
    switch (type) {
        case RtMidiError::NO_DEVICES_FOUND: return MMSYSERR_NODRIVER;
        case RtMidiError::INVALID_DEVICE:
        case RtMidiError::INVALID_PARAMETER: return MMSYSERR_BADDEVICEID;
        case RtMidiError::MEMORY_ERROR: return MMSYSERR_NOMEM;
        case RtMidiError::INVALID_USE: return MMSYSERR_NOTSUPPORTED;
        case RtMidiError::DRIVER_ERROR: return MMSYSERR_ALLOCATED;
        default: return MMSYSERR_ERROR;
    }
}

// RtMidi with its errors as codes. Without a listener of its own it would write warnings to standard error
// and throw the rest.
class QuietRtMidi {
public:
    // Throws RtMidiError where there is no sequencer.
    QuietRtMidi() : out(RtMidi::LINUX_ALSA, midiClientName) {
        out.setErrorCallback(&QuietRtMidi::Note, this);
    }

    RtMidiOut out;
    std::uint32_t code = MMSYSERR_NOERROR;  // of the last error since it was cleared
    std::string text;
    bool keepText = true;  // while sending, the code is all that is asked for

private:
    static void Note(RtMidiError::Type type, const std::string& message, void* self) {
        auto& quiet = *static_cast<QuietRtMidi*>(self);
        quiet.code = CodeOf(type);
        if (quiet.keepText) quiet.text = message;
    }
};

// RtMidi's sending is for one thread at a time, and two instances that share the device have two. So each
// puts its message into a ring, and a thread that finds no other one sending sends all that is in the ring.
// The other returns success at once.
//
// RtMidi sends a short message by one write to the sequencer, opened without waiting, and allocates nothing
// (it does for the text of an error, which it composes before it asks who wants it).
class SequencerDevice : public MidiDevice {
public:
    explicit SequencerDevice(std::unique_ptr<QuietRtMidi> opened) : midi(std::move(opened)) {
        midi->keepText = false;
    }

    std::uint32_t Send(std::uint32_t message, std::size_t length) override {
        std::uint64_t mine;
        if (!ring.Push({message, length}, mine)) return MMSYSERR_ERROR;
        std::uint32_t result = MMSYSERR_NOERROR;
        while (ring.Ready() && !sending.exchange(true)) {
            SendWaiting(mine, result);
            sending.store(false);
        }
        return result;
    }

    std::uint32_t SendLong(const MidiLongMessage& message) override {
        while (sending.exchange(true)) std::this_thread::yield();  // behind no more than the ring's messages
        std::uint32_t result = MMSYSERR_NOERROR;
        constexpr std::uint64_t none = ~std::uint64_t{0};
        SendWaiting(none, result);
        result = Write(message.data, message.length);
        sending.store(false);
        while (ring.Ready() && !sending.exchange(true)) {
            std::uint32_t ignored = MMSYSERR_NOERROR;
            SendWaiting(none, ignored);
            sending.store(false);
        }
        return result;
    }

private:
    struct Short {
        std::uint32_t message;
        std::size_t length;
    };
    // By the thread that has set `sending`: all that waits. `result` becomes that of the message at `mine`.
    void SendWaiting(std::uint64_t mine, std::uint32_t& result) {
        while (ring.Ready()) {
            const Short next = ring.Front();
            const std::array<std::uint8_t, 3> bytes = {static_cast<std::uint8_t>(next.message),
                                                       static_cast<std::uint8_t>(next.message >> 8),
                                                       static_cast<std::uint8_t>(next.message >> 16)};
            const std::uint32_t code = Write(bytes.data(), next.length);
            if (ring.Place() == mine) result = code;
            ring.Pop();
        }
    }
    std::uint32_t Write(const std::uint8_t* bytes, std::size_t length) {
        midi->code = MMSYSERR_NOERROR;
        try {
            midi->out.sendMessage(bytes, length);
        } catch (...) {
            return MMSYSERR_ERROR;
        }
        return midi->code;
    }

    const std::unique_ptr<QuietRtMidi> midi;  // in the hands of the thread that has set `sending`
    MessageRing<Short, 1024> ring;
    std::atomic<bool> sending{false};
};

}  // namespace

bool SequencerBackend::IsThere() const {
    const int file = open(node.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0) close(file);
    return file >= 0;
}

std::vector<std::string> SequencerBackend::DeviceNames() {
    std::vector<std::string> names;
    if (!IsThere()) return names;
    try {
        QuietRtMidi midi;
        const unsigned count = midi.out.getPortCount();
        for (unsigned port = 0; port < count; ++port) {
            const std::string name = midi.out.getPortName(port);
            if (!name.empty()) names.push_back(name);  // empty: it went away since it was counted
        }
    } catch (const RtMidiError&) {
        names.clear();
    }
    return names;
}

MidiOpening SequencerBackend::Open(const std::string& name) {
    if (!IsThere()) return {nullptr, MMSYSERR_BADDEVICEID};
    try {
        auto midi = std::make_unique<QuietRtMidi>();
        // A port's number is its place in a list that changes; its name holds its fixed address.
        const unsigned count = midi->out.getPortCount();
        unsigned port = 0;
        while (port < count && midi->out.getPortName(port) != name) ++port;
        if (port == count) return {nullptr, MMSYSERR_BADDEVICEID};
        midi->out.openPort(port, midiClientName);
        if (midi->out.isPortOpen()) return {std::make_unique<SequencerDevice>(std::move(midi))};
        return {nullptr, midi->code != MMSYSERR_NOERROR ? midi->code : MMSYSERR_ERROR, midi->text};
    } catch (const RtMidiError& error) {
        return {nullptr, CodeOf(error.getType()), error.getMessage()};
    }
}
