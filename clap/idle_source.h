#pragma once
#include "clap/interface.h"

// Has the host call an open window's idle: by a timer of the host's, or else by a timer of ours that the host
// polls among its descriptors.
//
// Threads: [main].
class IdleSource {
public:
    ~IdleSource() { End(); }

    bool Connect(const clap_host_t& newHost);  // false: the host has neither
    bool Begin();                              // does nothing while it runs
    void End();
    void Acknowledge() const;  // the descriptor was ready

private:
    const clap_host_t* host = nullptr;
    const clap_host_timer_support_t* timers = nullptr;
    const clap_host_posix_fd_support_t* descriptors = nullptr;
    clap_id timer = CLAP_INVALID_ID;
    int descriptor = -1;
};
