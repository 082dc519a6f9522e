#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "desktop/message_box.h"
#include "harmony/chords_listener.h"
#include "parameters/parameters.h"
#include "plugin/device_switch.h"
#include "plugin/editor_interface.h"
#include "plugin/plugin_object.h"

class TRTRecording;

// The plug-in object with all that a user sees: the editor, the equalizer bars, the output to a MIDI device,
// the recording, the chord listener, and parameters 3 to 95. It keeps the further outputs open through short
// silences, which CORVA_vst alone does not:
//
//   stopped  outputsIdle   meaning
//   true     true          at rest: after construction, suspend, three seconds of silence
//   false    false         running: notes flow
//   true     false         paused by a shorter silence: the output to the host is stopped, the others stay
//
// Threads: as CORVA_vst. Parameters are words of their own. The operations of the editor are [ui].
// Ownership: the recorder owns the outputs that are attached when it dies; the device output is deleted when
// it is switched off; the editor goes before everything else.
class CORVAguivst : public CORVA_vst, private IChordOwner, private IDeviceSwitchOwner {
public:
    // Without a factory the module has no editor and claims none.
    explicit CORVAguivst(audioMasterCallback host, EditorFactory makeEditor = nullptr);
    ~CORVAguivst() override;

    // Parameters, for the host [any].
    void setParameter(std::int32_t index, float value) override;
    float getParameter(std::int32_t index) override;
    void getParameterValueDisplay(float value, std::int32_t index, char* text) override;
    bool canParameterBeAutomated(std::int32_t index) override { return IsAutomatable(index); }

    // A change that starts in the editor: applied, and reported to the host, whose echo is not applied again.
    // [ui]
    virtual void setParameterFromEditor(std::int32_t index, float value);

    // Start and stop, as above.
    void startDetection() override;  // [audio]
    void stopDetection() override;   // [audio]
    std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                             float opt) override;

    // --- for the editor, [ui] ---
    void startRecording();  // discards the last take
    void stopRecording();
    double takeSeconds() const;                   // since the take began
    std::uint32_t takeNotes() const;              // that have begun in it
    bool nothingRecorded();                       // the take is empty, or no note comes of it
    bool saveRecording(const std::string& path);  // as a MIDI file; false when it could not be written whole
    // One display byte a band: 255 for a band that is on, else its level against a running average, 0 to 254.
    void buildLevels(std::vector<unsigned char>& levels);
    std::string currentChordText();
    void topUpRecording();  // with memory; called at each idle and dispatcher call

    // Follows the user's preferred hearing from now on, and has the editor offer it. For whoever makes the
    // object in a host that has no control of its own for the ear; before the first block.
    void usePreferredHearing();
    bool prefersHearing() const { return hearingIsPreferred; }
    // The same for the dates of notes, where this object's events reach the host as they are.
    void usePreferredNoteDates();
    bool prefersNoteDates() const { return datesArePreferred; }

    Relaxed<bool> recordingOn = false;        // the recording takes notes; changes under the recorder's lock
    Relaxed<float> equalizerBars[bandCount];  // raw values of parameters 3 to 86
    Relaxed<float> instrumentValue = 0.0F;    // raw values of parameters 87, 90, 92, 94, 95
    Relaxed<float> channelValue = 0.0F;
    Relaxed<float> activePageValue = 0.0F;
    Relaxed<float> chordsDelayValue = 0.0F;
    Relaxed<float> sendProgramChangeValue = 0.0F;
    Relaxed<bool> outputsIdle = true;     // the device, recording and chord outputs are stopped
    Relaxed<bool> chordsEnabled = false;  // parameter 93: the editor is notified of chords
    MessageBox messages;                  // shown in the editor's window while that is open
    DeviceSwitch device;                  // parameters 88 and 89

protected:
    void suspendSteps() override;

private:
    void applyParameter(std::int32_t index, float value);
    void applyChannel(float value);
    void applyOutputToHost(bool on);
    void applyChordsDelay(float value);
    void applySendProgramChange(float value);
    void notifyEditor(std::int32_t index, float value);
    void stopOutputs();

    float GetSampleRate() const override { return getSampleRate(); }
    void ChordChanged() override;
    void DeviceFellBack(std::int32_t index, float value) override { notifyEditor(index, value); }
    void DeviceOpened() override;

    bool hearingIsPreferred = false;            // fixed once the object is made
    bool datesArePreferred = false;             // the same
    TRTRecording* recording = nullptr;          // owned by the recorder; always attached
    TChordsListener* chordsListener = nullptr;  // the same
    std::unique_ptr<IPluginEditor> editorObject;
    Relaxed<std::thread::id> inEditorChange;  // the thread whose change is on its way to the host; else none
};
