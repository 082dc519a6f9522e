#pragma once
#include "tests/support/display_server.h"
#include "tests/support/parent_window.h"

// A display of the process's own, started at the first request and ended with the process.
inline DisplayServer& OwnDisplay() {
    static DisplayServer server;
    return server;
}

// A host's window on it.
class HostWindow : public ParentWindow {
public:
    HostWindow() {
        OwnDisplay();
        Connect();
    }
};
