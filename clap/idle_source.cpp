#include "clap/idle_source.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>

namespace {

constexpr std::uint32_t period = 20;  // ms; the mouse is followed at this pace

}  // namespace

bool IdleSource::Connect(const clap_host_t& newHost) {
    host = &newHost;
    timers = static_cast<const clap_host_timer_support_t*>(host->get_extension(host, CLAP_EXT_TIMER_SUPPORT));
    descriptors = static_cast<const clap_host_posix_fd_support_t*>(
        host->get_extension(host, CLAP_EXT_POSIX_FD_SUPPORT));
    return timers != nullptr || descriptors != nullptr;
}

bool IdleSource::Begin() {
    if (timer != CLAP_INVALID_ID || descriptor >= 0) return true;
    if (timers != nullptr && timers->register_timer(host, period, &timer)) return true;
    timer = CLAP_INVALID_ID;
    if (descriptors == nullptr) return false;
    descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    const timespec step = {0, 1'000'000L * period};
    const itimerspec times = {step, step};
    if (descriptor >= 0 && timerfd_settime(descriptor, 0, &times, nullptr) == 0 &&
        descriptors->register_fd(host, descriptor, CLAP_POSIX_FD_READ))
        return true;
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
    return false;
}

void IdleSource::End() {
    if (timer != CLAP_INVALID_ID) timers->unregister_timer(host, timer);
    timer = CLAP_INVALID_ID;
    if (descriptor < 0) return;
    descriptors->unregister_fd(host, descriptor);
    close(descriptor);
    descriptor = -1;
}

void IdleSource::Acknowledge() const {
    std::uint64_t times = 0;
    if (descriptor >= 0) static_cast<void>(read(descriptor, &times, sizeof times) == sizeof times);
}
