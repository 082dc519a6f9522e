#pragma once
#include <atomic>
#include <cstdint>
#include <map>

#include "base/mutex.h"
#include "base/relaxed.h"
#include "devices/midi_out_devices.h"

// A way to a device, for one output.
struct TMidiPort {
    Relaxed<MidiOutHandle> handle;          // copied from the open device
    Relaxed<std::uint32_t> deviceIndex;     // of the device list
    Relaxed<std::uint32_t> isFree;          // non-zero: nobody uses it, and an open may take it
    Relaxed<std::uint8_t> noteOn[16][128];  // by channel, then note: switched on through here and not yet off
};

// The ports of all instances in the process, and the devices behind them. A device is opened by its first
// port, counted, and closed by its last.
//
// Results are those of the device layer (devices/midi_out_devices.h); the table itself gives
// MMSYSERR_ERROR for a closed table or a port number out of range, MMSYSERR_INVALHANDLE for a free port, and
// MMSYSERR_NOMEM where it cannot grow. A layer that throws counts as having given MMSYSERR_ERROR.
//
// Threads: SendShort [audio], others [any]. Ports never move and are not given back, so a send needs no lock
// and its work does not depend on the number of ports. A lock makes one of all openings and closings after
// the other; it is not held while a message is sent.
class MidiPortTable {
public:
    static constexpr std::uint32_t maxPorts = 4096;

    MidiPortTable() = default;
    ~MidiPortTable();  // Unload; nobody may be using the table
    MidiPortTable(const MidiPortTable&) = delete;
    MidiPortTable& operator=(const MidiPortTable&) = delete;

    std::uint32_t OpenPort(std::uint32_t& port, std::uint32_t index);  // on failure nothing has changed
    // Gives the port back. The last user of a device ends the notes of this port and closes it; a port that
    // leaves others on its device must have ended its notes before. Ports that are free: nothing.
    void ClosePort(std::uint32_t port);
    std::uint32_t SendShort(std::uint32_t port, std::uint32_t message);
    std::uint32_t SendLong(std::uint32_t port, const MidiLongMessage& message);
    void ResetPort(std::uint32_t port);    // all controllers and notes of all channels
    void SilencePort(std::uint32_t port);  // a note off for each note left on, on a free port too
    bool IsPortValid(std::uint32_t port) const { return tableClosed == 0 && port < portCount.load(); }
    // The end of the program: from now on nothing is sent, and every device is given back once its notes are
    // off.
    void Unload();

    Relaxed<bool> ignoreProgramChange = false;  // drops program changes on their way; nothing sets it

private:
    struct OpenDevice {
        MidiOutHandle handle = 0;
        std::uint32_t useCount = 0;  // ports
        std::uint32_t closing = 0;   // ports whose notes are being ended, which keep it open
    };

    TMidiPort* At(std::uint32_t port) const;      // null: out of range
    TMidiPort* Usable(std::uint32_t port) const;  // null: out of range, or the table is closed
    std::uint32_t FindFree() REQUIRES(lock);
    void FreePort(std::uint32_t port) REQUIRES(lock);

    std::atomic<TMidiPort*> ports[maxPorts] = {};  // made as needed, under lock
    std::atomic<std::uint32_t> portCount{0};       // ports below it are in use or free; changes under lock
    Relaxed<std::uint32_t> tableClosed = 0;        // set at unload, under lock
    Mutex lock;
    std::map<std::uint32_t, OpenDevice> openDevices GUARDED_BY(lock);  // by device index
};

// The process's table. It is made when the program is loaded. When the process ends, its devices are closed;
// its memory stays, for threads that are still sending then.
std::uint32_t OpenPort(std::uint32_t& port, std::uint32_t index);
void ClosePort(std::uint32_t port);
std::uint32_t SendShort(std::uint32_t port, std::uint32_t message);
std::uint32_t SendLong(std::uint32_t port, const MidiLongMessage& message);
void ResetPort(std::uint32_t port);
void SilencePort(std::uint32_t port);
bool IsPortValid(std::uint32_t port);
