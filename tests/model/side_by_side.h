#pragma once
#include <optional>
#include <string>
#include <vector>

#include "plugin/gui_plugin.h"
#include "tests/model/plugin.h"
#include "tests/support/devices.h"
#include "tests/support/host.h"
#include "tests/support/messages.h"
#include "tests/support/trial.h"

// Two facts about the host are asked once per process and kept, so that all cases of one batch have one kind.
ModelHostKind KindOfBatch(const Trial& trial, std::uint64_t batch);

// The plug-in and the model in the same host, called in the same way. Whatever the two answer, say to the
// host, to the devices or to the user, and at CompareState all that they hold, must be the same; otherwise
// the case fails with the first difference. One at a time in a process.
class SideBySide {
public:
    SideBySide(Trial& caseTrial, const ModelHostKind& kind);
    ~SideBySide();
    SideBySide(const SideBySide&) = delete;
    SideBySide& operator=(const SideBySide&) = delete;

    // With a text, a buffer that begins with it is handed over, and compared as a whole afterwards.
    void Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
              const std::optional<std::string>& text = {}, float opt = 0);
    void Set(std::int32_t index, float value);
    void SetFromEditor(std::int32_t index, float value);
    void Get(std::int32_t index);
    void Play(const std::vector<float>& block, Way way = Way::replacing, bool inPlace = false);
    void PlayFrames(std::int32_t frames);  // of silence, by null pointers
    void Record(bool on);
    void JumpTo(std::uint64_t samples);  // as if so many had been played
    void CompareState();
    void RefuseOpens(std::uint32_t device, std::uint32_t code);  // 0: opens again

    ModelPlugin model;
    Host host;
    CORVAguivst* object = nullptr;
    std::uint64_t notes = 0;  // note ons that both sent
    bool callsBack = false;   // the host answers a change in the editor by setting that parameter

private:
    bool Answer(const Host::Request& request, std::intptr_t& answer);
    void CompareSaid(const std::string& after);
    template <typename T>
    void Same(const T& seen, const T& expected, const std::string& what) const;

    Trial& trial;
    const ModelHostKind kind;
    FakeDevices devices;
    Messages messages;
    std::vector<ModelHostCall> calls;
};

// Whether three bytes may stand on a wire, or are none at all.
bool IsLegal(std::uint32_t message);
// Music that the detector hears, noise, or nothing.
std::vector<float> SomeAudio(Trial& trial, std::size_t samples, float sampleRate);
