#include "hosting/session_instance.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "hosting/parameter_scale.h"

SessionInstance::SessionInstance(ISessionListener& newListener) : listener(newListener) {
    ParameterSteps(0);  // counts them, so that later calls do not allocate
    Make();
}

void SessionInstance::Make() {
    IInstanceListener& itsListener = *this;
    auto made = std::make_unique<HostedInstance>(rate, itsListener);
    made->Object().UsePreferredHearing();
    if (scale > 0) made->Object().SetScale(scale);
    for (Relaxed<float>& value : requested) value = 0;
    hosted = std::move(made);
}

void SessionInstance::SetRate(double newRate) {
    if (newRate == rate) return;
    rate = newRate;
    const State before = Save();
    if (wasActive || windowIsOpen)
        Object().SetRate(rate);
    else
        Make();
    Restore(before);
}

void SessionInstance::SetActive(bool active) {
    if (active == isActive) return;
    isActive = active;
    wasActive = true;
    if (active)
        hosted->Resume();
    else
        hosted->Suspend();
}

double SessionInstance::Scaled(std::int32_t index, float value) const {
    return static_cast<double>(value) / static_cast<double>(ParameterMaximum(index));
}
float SessionInstance::Unscaled(std::int32_t index, double scaled) const {
    return static_cast<float>(scaled * static_cast<double>(ParameterMaximum(index)));
}

void SessionInstance::Set(std::int32_t index, float value) {
    if (index < 0 || index >= parameterCount || !std::isfinite(value)) return;
    if (value == Parameter(index)) return;
    if (DeviceWorker::Takes(index)) Requested(index) = value;
    hosted->SetFromHost(index, value);
}

float SessionInstance::Parameter(std::int32_t index) {
    return DeviceWorker::Takes(index) ? Requested(index).load() : Object().Parameter(index);
}

void SessionInstance::ParameterEdited(std::int32_t index, float value) {
    if (DeviceWorker::Takes(index)) Requested(index) = value;
    listener.ChangedInside(index, value);
}

SessionInstance::State SessionInstance::Save() {
    State state;
    for (std::size_t i = 0; i < state.size(); ++i) {
        const auto bits = std::bit_cast<std::uint32_t>(Parameter(static_cast<std::int32_t>(i / 4)));
        state[i] = static_cast<std::uint8_t>(bits >> 8 * (i % 4));
    }
    return state;
}

bool SessionInstance::Restore(const State& state) {
    std::array<std::uint32_t, parameterCount> bits{};
    for (std::size_t i = 0; i < state.size(); ++i) bits[i / 4] |= std::uint32_t{state[i]} << 8 * (i % 4);
    const auto value = [](std::uint32_t word) { return std::bit_cast<float>(word); };
    if (!std::all_of(bits.begin(), bits.end(), [&](auto word) { return std::isfinite(value(word)); }))
        return false;
    for (std::int32_t i = 0; i < parameterCount; ++i) Set(i, value(bits[static_cast<std::size_t>(i)]));
    return true;
}

bool SessionInstance::SetScale(double newScale) {
    if (!Object().SetScale(newScale)) return false;
    scale = newScale;
    return true;
}

bool SessionInstance::OpenWindow(std::uint32_t parent) {
    if (!windowIsOpen) windowIsOpen = Object().OpenEditor(parent);
    return windowIsOpen;
}

void SessionInstance::CloseWindow() {
    if (windowIsOpen) Object().CloseEditor();
    windowIsOpen = false;
}
