#pragma once
#include <memory>
#include <mutex>

#include "editor/run_loop.h"

struct xcb_connection_t;

// The toolkit keeps state for the whole process: its factories, one connection to the display, one run loop.
// It knows no threads. So every entry of every editor holds this lock; hosts that keep all windows on one
// thread never wait for it.
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

    static EditorRunLoop& Loop();
    static xcb_connection_t* Connection();
    static bool
    ConnectionLost();  // the display went away; nothing can be drawn until all editors have closed

private:
    ToolkitSession() = default;
    static void End();
};
