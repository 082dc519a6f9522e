#pragma once
#include <memory>
#include <mutex>

// The toolkit keeps state for the whole process: its factories, and under X11 one
// connection to the display and one run loop.
// It knows no threads. So every entry of every editor holds this lock; hosts that keep all windows on one
// thread never wait for it. An editor that opens or serves its user calls the host, which may then wait for a
// lock that another of its threads holds while it calls an editor. So only opening and closing wait here: an
// idle call, a key or a question for the size that finds the lock taken does nothing.
std::recursive_mutex& ToolkitLock();

// The process's share in the toolkit, held by each open editor. The first one starts it, the last one leaves
// nothing of it running: no connection, no timer, no device of the drawing library, which would not survive a
// second connection.
//
// Threads: [ui], under ToolkitLock().
class ToolkitSession {
public:
    // None when there is no display to be reached.
    static std::unique_ptr<ToolkitSession> Begin();
    ~ToolkitSession();
    ToolkitSession(const ToolkitSession&) = delete;
    ToolkitSession& operator=(const ToolkitSession&) = delete;

    // One round of the toolkit's event loop; nothing where its events come with the host's own.
    static void Pump();
    static void PumpTimers();  // the same, with its timers at least, for a wait within a call of the host
    // The display went away; nothing can be drawn until all editors have closed.
    static bool ConnectionLost();

private:
    ToolkitSession() = default;
    static void End();
};
