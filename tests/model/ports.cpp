#include "tests/model/ports.h"

#include <algorithm>
#include <cstdio>

std::uint32_t ModelPorts::Open(std::uint32_t& port, std::uint32_t index) {
    if (closed) return 1;
    if (devices.count(index) == 0) {
        const std::uint32_t id = mapper ? index - 1 : index;  // the mapper itself is device 0xFFFFFFFF
        lines.push_back("open " + (id == 0xFFFFFFFF ? "mapper" : std::to_string(id)));
        if (id >= deviceCount && id != 0xFFFFFFFF) refusedOpens[id] = 2;
        if (const auto refused = refusedOpens.find(id); refused != refusedOpens.end()) return refused->second;
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

void ModelPorts::Close(std::uint32_t port) {
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

std::uint32_t ModelPorts::Check(std::uint32_t port) const {
    if (!IsValid(port)) return 1;
    return ports[port].isFree ? 5 : 0;
}

std::uint32_t ModelPorts::Deliver(std::uint64_t handle, std::uint32_t message) {
    char line[60];
    std::snprintf(line, sizeof line, "%s %llu %02x %02x %02x", isOpen[handle] ? "send" : "stale",
                  static_cast<unsigned long long>(handle), message & 255, message >> 8 & 255,
                  message >> 16 & 255);
    lines.emplace_back(line);
    if (!isOpen[handle]) return 5;
    const auto refused = refusedMessages.find(message);
    return refused != refusedMessages.end() ? refused->second : 0;
}

std::uint32_t ModelPorts::Send(std::uint32_t port, std::uint32_t message) {
    if (const std::uint32_t fault = Check(port)) return fault;
    if (const std::uint32_t refused = Deliver(ports[port].handle, message)) return refused;
    const std::uint32_t status = message & 0xF0;
    if (status == 0x90 || status == 0x80)
        ports[port].noteOn[message >> 8 & 127][message & 15] = status == 0x90;
    return 0;
}

std::uint32_t ModelPorts::SendLong(std::uint32_t port, std::size_t length) {
    if (const std::uint32_t fault = Check(port)) return fault;
    lines.push_back("long " + std::to_string(ports[port].handle) + " " + std::to_string(length));
    return 0;
}

void ModelPorts::Reset(std::uint32_t port) {
    if (Check(port) != 0) return;
    for (const std::uint32_t controller : {0x79B0U, 0x7BB0U})
        for (std::uint32_t channel = 0; channel < 16; ++channel)
            Deliver(ports[port].handle, controller | channel);
    lines.push_back("reset " + std::to_string(ports[port].handle));
}

void ModelPorts::Silence(std::uint32_t port) {
    if (!IsValid(port)) return;
    for (std::uint32_t note = 0; note < 128; ++note)
        for (std::uint32_t channel = 0; channel < 16; ++channel)
            if (ports[port].noteOn[note][channel]) {
                Deliver(ports[port].handle, 0x80 | channel | note << 8);
                ports[port].noteOn[note][channel] = false;
            }
}

void ModelPorts::Unload() {
    if (closed) return;
    for (std::uint32_t port = 0; port < ports.size(); ++port) Silence(port);
    for (const auto& [index, device] : devices) lines.push_back("close " + std::to_string(device.handle));
    devices.clear();
    closed = true;
}
