// Builds in which nothing is watched: the rows that need it are for others.
#include "torture/watch.h"

#if !ORVA_WATCHES

void (*InsideCall::told)(const char* name) = nullptr;
InsideCall::InsideCall() = default;
InsideCall::~InsideCall() = default;
void InsideCall::AllowLocksIn(const void*, std::size_t) {}
bool InsideCall::WatchSystemCalls() {
    return false;
}
void LockHolds::Measure() {}
LockHolds::Figures LockHolds::Measured() {
    return {};
}
LockHolds::Pause::Pause() : since(0) {}
LockHolds::Pause::~Pause() = default;
std::uint64_t Allocations::Asked() {
    return 0;
}
std::int64_t Allocations::Live() {
    return 0;
}
void Allocations::Fail(std::uint64_t, bool) {}
bool Allocations::Failed() {
    return false;
}
void Allocations::Succeed() {}

#endif
