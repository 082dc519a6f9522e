#pragma once
#include <array>
#include <cstdint>
#include <memory>

#include "base/relaxed.h"
#include "hosting/hosted_instance.h"
#include "parameters/parameters.h"

// Whom a session's instance notifies: a parameter is in ChangesForHost that the host has not set. [any], but
// never [audio].
class ISessionListener {
public:
    virtual void ChangedInside(std::int32_t index, float value) = 0;

protected:
    ~ISessionListener() = default;
};

// An instance as a host's session keeps it: the host announces the rate some time after construction, and
// saves and restores a state, which is the 96 values.
//
// The object takes some of its settings from the rate that it is made with. So until it has been active, and
// while its window is closed, another rate makes another object with the same values, which has sent nothing
// yet; from then on the object stays, since a new one would send its program again.
//
// Threads: [ui], but for what an operation says. Errors: construction and SetRate throw what HostedObject
// does.
class SessionInstance final : private IInstanceListener {
public:
    using State = std::array<std::uint8_t, parameterCount * sizeof(float)>;  // each value, low byte first

    explicit SessionInstance(ISessionListener& newListener);

    HostedInstance& Hosted() { return *hosted; }
    HostedObject& Object() { return hosted->Object(); }

    void SetRate(double newRate);  // Hz; while it is not active
    void SetActive(bool active);
    bool IsActive() const { return isActive; }

    float Parameter(std::int32_t index);                      // [any]
    double Scaled(std::int32_t index, float value) const;     // [any] to 0 to 1
    float Unscaled(std::int32_t index, double scaled) const;  // [any]
    // [any] From the host; a value that the object has already changes nothing.
    void Set(std::int32_t index, float value);
    State Save();                      // [any]
    bool Restore(const State& state);  // [any] false, and nothing is changed, where a value is no number

    bool SetScale(double scale);            // as HostedObject's
    bool OpenWindow(std::uint32_t parent);  // a window's number
    void CloseWindow();
    bool WindowIsOpen() const { return windowIsOpen; }
    void IdleWindow() {
        if (windowIsOpen) Object().IdleEditor();
    }

private:
    void Make();
    void ParameterEdited(std::int32_t index, float value) override;
    bool WantsFallBacks() override { return windowIsOpen; }
    void FellBack(std::int32_t index, float value) override { ParameterEdited(index, value); }
    Relaxed<float>& Requested(std::int32_t index) { return requested[index - paramDevice]; }

    ISessionListener& listener;
    double rate = 44100;  // Hz, until the host has said
    double scale = 0;     // of the display; 0 until the host has said
    bool isActive = false, wasActive = false;
    Relaxed<bool> windowIsOpen = false;
    Relaxed<float> requested[2];             // parameters 88 and 89; begin as the object's do
    std::unique_ptr<HostedInstance> hosted;  // last: it may have a thread that calls back
};
