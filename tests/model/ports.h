#pragma once
#include <bitset>

#include "tests/support/test.h"

// The devices of the system, and the table of ports in front of them, once more and plainly. What reaches the
// devices is written down as lines: "open 2" (a device id), then by handle "send 1 90 3c 64", "close 1",
// "reset 1", "long 1 3"; "stale" is a send to a handle that has been closed.
class ModelPorts {
public:
    // The devices.
    std::uint32_t deviceCount = 3;
    bool mapper = false;                                     // a MIDI Mapper stands ahead of the devices
    std::map<std::uint32_t, std::uint32_t> refusedOpens;     // device id to code
    std::map<std::uint32_t, std::uint32_t> refusedMessages;  // message to code
    std::vector<std::string> lines;                          // what reached the devices

    // The table. Results are codes; 0 is success.
    std::uint32_t Open(std::uint32_t& port, std::uint32_t index) {
        if (closed) return 1;
        if (devices.count(index) == 0) {
            const std::uint32_t id = mapper ? index - 1 : index;  // the mapper itself is device 0xFFFFFFFF
            lines.push_back("open " + (id == 0xFFFFFFFF ? "mapper" : std::to_string(id)));
            if (id >= deviceCount && id != 0xFFFFFFFF) refusedOpens[id] = 2;
            if (const auto no = refusedOpens.find(id); no != refusedOpens.end()) return no->second;
            devices[index] = {++lastHandle, 0};
            isOpen[lastHandle] = true;
        }
        Device& device = devices[index];
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
        if (--devices[index].users == 0) {
            Silence(port);
            lines.push_back("close " + std::to_string(devices[index].handle));
            isOpen[devices[index].handle] = false;
            devices.erase(index);
        }
        if (port + 1 == ports.size())
            ports.pop_back();
        else
            ports[port].isFree = true;
    }
    std::uint32_t Send(std::uint32_t port, std::uint32_t message) {
        if (const std::uint32_t fault = Check(port)) return fault;
        if (const std::uint32_t refused = Deliver(ports[port].handle, message)) return refused;
        const std::uint32_t status = message & 0xF0;
        if (status == 0x90 || status == 0x80)
            ports[port].noteOn[message >> 8 & 127][message & 15] = status == 0x90;
        return 0;
    }
    std::uint32_t SendLong(std::uint32_t port, std::size_t length) {
        if (const std::uint32_t fault = Check(port)) return fault;
        lines.push_back("long " + std::to_string(ports[port].handle) + " " + std::to_string(length));
        return 0;
    }
    void Reset(std::uint32_t port) {
        if (Check(port) != 0) return;
        for (const std::uint32_t controller : {0x79B0U, 0x7BB0U})
            for (std::uint32_t channel = 0; channel < 16; ++channel)
                Deliver(ports[port].handle, controller | channel);
        lines.push_back("reset " + std::to_string(ports[port].handle));
    }
    void Silence(std::uint32_t port) {
        if (!IsValid(port)) return;
        for (std::uint32_t note = 0; note < 128; ++note)
            for (std::uint32_t channel = 0; channel < 16; ++channel)
                if (ports[port].noteOn[note][channel]) {
                    Deliver(ports[port].handle, 0x80 | channel | note << 8);
                    ports[port].noteOn[note][channel] = false;
                }
    }
    bool IsValid(std::uint32_t port) const { return !closed && port < ports.size(); }
    void Unload() {
        if (closed) return;
        for (std::uint32_t port = 0; port < ports.size(); ++port) Silence(port);
        for (const auto& [index, open] : devices) lines.push_back("close " + std::to_string(open.handle));
        devices.clear();
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
    std::uint32_t Deliver(std::uint64_t handle, std::uint32_t message) {
        char line[60];
        std::snprintf(line, sizeof line, "%s %llu %02x %02x %02x", isOpen[handle] ? "send" : "stale",
                      static_cast<unsigned long long>(handle), message & 255, message >> 8 & 255,
                      message >> 16 & 255);
        lines.emplace_back(line);
        if (!isOpen[handle]) return 5;
        const auto refused = refusedMessages.find(message);
        return refused != refusedMessages.end() ? refused->second : 0;
    }

    std::map<std::uint32_t, Device> devices;  // open ones, by index
    std::vector<Port> ports;
    std::uint64_t lastHandle = 0;
    std::map<std::uint64_t, bool> isOpen;  // by handle
    bool closed = false;
};
