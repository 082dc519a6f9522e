#pragma once
#include <memory>
#include <string>
#include <vector>

#include "engine/real_time_detector.h"
#include "tests/model/recorder.h"

// What matters of a host.
struct ModelHostKind {
    bool is24 = true;  // speaks version 2400 exactly
    bool isAbleton = false;
    float sampleRate = 44100;  // as it answers at construction
};

// The plug-in object once more, as its host sees it: every answer, every call to the host, to a device and to
// the user, the notes, and the take. The detector is the product's own with its plain loops: what is restated
// is the path behind it. Rates from 100 Hz to below 2^31 Hz; no editor window, no chords.
class ModelPlugin {
public:
    explicit ModelPlugin(const ModelHostKind& host);
    ModelPlugin(const ModelPlugin&) = delete;
    ModelPlugin& operator=(const ModelPlugin&) = delete;
    void Close();  // the end of the plug-in

    std::intptr_t Dispatch(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                           float opt);
    void SetParameter(std::int32_t index, float value);
    void SetParameterFromEditor(std::int32_t index, float value);
    float GetParameter(std::int32_t index) const;
    template <typename Sample>  // null is silence; below 0 is a block of length 0
    void Process(const Sample* in, std::int32_t frames);
    void StartRecording();
    void StopRecording();

    std::vector<ModelHostCall> calls;  // in their order; what only asks is left out
    std::vector<std::string> boxes;    // caption and text of each message to the user
    ModelPorts devices;

    struct Handler : INoteHandler {
        explicit Handler(ModelRecorder& notified) : recorder(notified) {}
        void Attach(INoteDetector*) override {}
        void OnFrame() override { recorder.OnFrame(); }
        ModelRecorder& recorder;
    };
    TRealTimeTS107 detector;
    ModelRecorder recorder;
    ModelRecording recording;
    std::uint64_t totalSamples = 0, silentSamples = 0;
    bool stopped = true, outputsIdle = true, recordingOn = false;
    float sampleRate;
    std::string programName = "Default";

private:
    void DeliverBlock(const std::vector<short>& block, std::size_t count);
    void StartDetection();
    void StopDetection();
    void Suspend();
    void Resume();
    void StopSteps();
    void StopOutputs();
    void SetSampleRate(float rate);
    bool StringToParameter(std::int32_t index, const char* text);
    std::string Name(std::int32_t index) const;
    std::string Display(float value, std::int32_t index) const;
    void ApplyDevice(float value);
    bool OpenDevice(float value);
    void CloseDevice();
    void SayToHost(std::int32_t opcode, std::int32_t number = 0) { calls.push_back({opcode, number, 0, {}}); }

    const ModelHostKind kind;
    Handler handler{recorder};
    ModelHostOut hostOut;
    std::unique_ptr<ModelDeviceOut> deviceOut;
    std::uint32_t devicePort = 0;
    float values[96] = {};  // 89, 91 and 93 hold 0 or 1
    bool firstBlock = true, hostAsked = false, inEditorChange = false;
};
