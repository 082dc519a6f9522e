#pragma once
#include <bitset>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

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
    std::uint32_t Open(std::uint32_t& port, std::uint32_t index);
    void Close(std::uint32_t port);
    std::uint32_t Send(std::uint32_t port, std::uint32_t message);
    std::uint32_t SendLong(std::uint32_t port, std::size_t length);
    void Reset(std::uint32_t port);
    void Silence(std::uint32_t port);
    bool IsValid(std::uint32_t port) const { return !closed && port < ports.size(); }
    void Unload();

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
    std::uint32_t Check(std::uint32_t port) const;
    std::uint32_t Deliver(std::uint64_t handle, std::uint32_t message);

    std::map<std::uint32_t, Device> devices;  // open ones, by index
    std::vector<Port> ports;
    std::uint64_t lastHandle = 0;
    std::map<std::uint64_t, bool> isOpen;  // by handle
    bool closed = false;
};
