#include "tools/host/end_signal.h"

#include <signal.h>

#include <cstdlib>
#include <initializer_list>

namespace {

volatile sig_atomic_t received = 0;

}  // namespace

void CatchEndSignals() {
    struct sigaction end = {};
    end.sa_handler = [](int signal) { received = signal; };
    end.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &end, nullptr);
    struct sigaction nothing = {};
    nothing.sa_handler = [](int) {};
    nothing.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &nothing, nullptr);
}

int EndSignal() {
    return received;
}

void EndBySignal() {
    (void)::signal(received, SIG_DFL);
    (void)raise(received);
    std::_Exit(128 + received);  // blocked, say
}
