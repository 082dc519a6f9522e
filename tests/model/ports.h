#pragma once
#include <bitset>

#include "tests/support/devices.h"

// The table of ports in front of the devices once more and plainly, on devices of its own. Results are codes;
// 0 is success.
class ModelPorts {
public:
    FakeDevices devices;
    bool mapper = false;  // a MIDI Mapper stands ahead of them

    std::uint32_t Open(std::uint32_t& port, std::uint32_t index) {
        if (closed) return 1;
        if (open.count(index) == 0) {
            std::uint64_t handle = 0;  // the mapper itself is device 0xFFFFFFFF
            if (const auto refused = devices.midiOutOpen(handle, mapper ? index - 1 : index)) return refused;
            open[index] = {handle, 0};
        }
        Device& device = open[index];
        ++device.users;
        const auto hole = std::find_if(ports.begin(), ports.end(), [](const Port& p) { return p.isFree; });
        port = static_cast<std::uint32_t>(hole - ports.begin());
        if (hole == ports.end()) ports.emplace_back();
        ports[port].handle = device.handle, ports[port].device = index, ports[port].isFree = false;
        return 0;
    }
    void Close(std::uint32_t port) {
        if (Check(port) != 0) return;
        const std::uint32_t index = ports[port].device;
        if (--open[index].users == 0) {
            Silence(port);
            devices.midiOutClose(open[index].handle);
            open.erase(index);
        }
        if (port + 1 == ports.size())
            ports.pop_back();
        else
            ports[port].isFree = true;
    }
    std::uint32_t Send(std::uint32_t port, std::uint32_t message) {
        if (const std::uint32_t fault = Check(port)) return fault;
        if (const auto refused = devices.midiOutShortMsg(ports[port].handle, message)) return refused;
        const std::uint32_t status = message & 0xF0;
        if (status == 0x90 || status == 0x80)
            ports[port].noteOn[message >> 8 & 127][message & 15] = status == 0x90;
        return 0;
    }
    std::uint32_t SendLong(std::uint32_t port, const MidiLongMessage& message) {
        const std::uint32_t fault = Check(port);
        return fault != 0 ? fault : devices.midiOutLongMsg(ports[port].handle, message);
    }
    void Reset(std::uint32_t port) {
        if (Check(port) != 0) return;
        for (const std::uint32_t controller : {0x79B0U, 0x7BB0U})
            for (std::uint32_t channel = 0; channel < 16; ++channel)
                devices.midiOutShortMsg(ports[port].handle, controller | channel);
        devices.midiOutReset(ports[port].handle);
    }
    void Silence(std::uint32_t port) {
        if (!IsValid(port)) return;
        for (std::uint32_t note = 0; note < 128; ++note)
            for (std::uint32_t channel = 0; channel < 16; ++channel)
                if (ports[port].noteOn[note][channel]) {
                    devices.midiOutShortMsg(ports[port].handle, 0x80 | channel | note << 8);
                    ports[port].noteOn[note][channel] = false;
                }
    }
    bool IsValid(std::uint32_t port) const { return !closed && port < ports.size(); }
    void Unload() {
        if (closed) return;
        for (std::uint32_t port = 0; port < ports.size(); ++port) Silence(port);
        for (const auto& [index, device] : open) devices.midiOutClose(device.handle);
        open.clear();
        closed = true;
    }

private:
    struct Device {
        std::uint64_t handle = 0;
        std::uint32_t users = 0;
    };
    struct Port {
        std::uint64_t handle = 0;
        std::uint32_t device = 0;
        bool isFree = false;
        std::bitset<16> noteOn[128] = {};  // by note, then channel
    };
    std::uint32_t Check(std::uint32_t port) const { return !IsValid(port) ? 1 : ports[port].isFree ? 5 : 0; }

    std::map<std::uint32_t, Device> open;  // by index
    std::vector<Port> ports;
    bool closed = false;
};
