#pragma once
#include <optional>
#include <string>
#include <vector>

#include "plugin/gui_plugin.h"
#include "tests/delivery/midi_device_layer.h"
#include "torture/model/plugin.h"
#include "torture/row.h"

// Devices that a case invents: those of `names` open, others do not.
class InventedDevices : public FakeLayer {
public:
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        if (id >= names.size() && id != 0xFFFFFFFF) refusedOpens[id] = MMSYSERR_BADDEVICEID;
        return FakeLayer::midiOutOpen(handle, id);
    }
    std::vector<std::string> TakenLines();  // without the looks at the list
};

// Two facts about the host are asked once per process and kept, so that all cases of one batch have one kind.
ModelHostKind KindOfBatch(const Trial& trial, std::uint64_t batch);

// The plug-in and the Model in the same host, called in the same way. Whatever the two answer, say to the
// host, to the devices or to the user, and at CompareState all that they hold, must be the same; otherwise
// the case fails with the first difference. One at a time in a process.
class SideBySide : private IMessageBox {
public:
    SideBySide(Trial& caseTrial, const ModelHostKind& kind);
    ~SideBySide() override;
    SideBySide(const SideBySide&) = delete;
    SideBySide& operator=(const SideBySide&) = delete;

    // With a text, a buffer that begins with it is handed over, and compared as a whole afterwards.
    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       const std::optional<std::string>& text = {}, float opt = 0);
    std::string Text(std::int32_t opcode, std::int32_t index = 0);  // what the call leaves in a buffer
    void Set(std::int32_t index, float value);
    void SetFromEditor(std::int32_t index, float value);
    void Get(std::int32_t index);
    enum Door { adding, replacing, doubles };
    void Play(const std::vector<float>& block, Door door = replacing);
    void PlayFrames(std::int32_t frames);  // of silence, by null inputs
    void Record(bool on);
    void CompareState();
    void RefuseOpens(std::uint32_t device, std::uint32_t code);  // 0: opens again

    AEffect* Effect() const { return effect; }

    ModelPlugin model;
    std::uint64_t notes = 0;  // note ons that both sent
    bool callsBack = false;   // the host answers a change in the editor by setting that parameter

private:
    static std::intptr_t Callback(AEffect*, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                  void* ptr, float opt);
    std::intptr_t Answer(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr, float opt);
    void Show(const std::string& text, const std::string& caption) override;
    void CompareSaid(const std::string& after);
    template <typename T>
    void Same(const T& met, const T& expected, const std::string& what) const;

    Trial& trial;
    const ModelHostKind kind;
    InventedDevices layer;
    std::vector<ModelHostCall> calls;
    std::vector<std::string> boxes;
    AEffect* effect = nullptr;
    CORVAguivst* object = nullptr;
};

// A block of music: some of the notes that the detector hears, or noise, or nothing.
std::vector<float> SomeAudio(Trial& trial, std::size_t samples, float sampleRate);
