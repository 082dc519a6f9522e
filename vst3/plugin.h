#pragma once
#include <array>
#include <memory>

#include "hosting/echo_wait.h"
#include "hosting/session_instance.h"
#include "pluginterfaces/base/funknownimpl.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"

// One instance of the VST 3 plug-in: component, processor and controller in one, as its host holds it.
//
// A change from the window has reached the object already and goes to the host from the window's timer. What
// the host hands over of that parameter until it has handed back this value, or for half a second of audio,
// is older and does not count.
//
// Threads: process [audio]; all others [ui]. Before initialize and after terminate all calls are refused.
class Vst3Plugin final : public Steinberg::U::Implements<Steinberg::U::Directly<
                             Steinberg::Vst::IComponent, Steinberg::Vst::IAudioProcessor,
                             Steinberg::Vst::IEditController, Steinberg::Vst::IProcessContextRequirements>>,
                         private ISessionListener {
public:
    using tresult = Steinberg::tresult;
    using ParamID = Steinberg::Vst::ParamID;
    using ParamValue = Steinberg::Vst::ParamValue;

    tresult PLUGIN_API queryInterface(const Steinberg::TUID id, void** object) override;

    // --- component and controller ---
    tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    tresult PLUGIN_API terminate() override;
    tresult PLUGIN_API getControllerClassId(Steinberg::TUID id) override;
    tresult PLUGIN_API setIoMode(Steinberg::Vst::IoMode mode) override;
    Steinberg::int32 PLUGIN_API getBusCount(Steinberg::Vst::MediaType type,
                                            Steinberg::Vst::BusDirection direction) override;
    tresult PLUGIN_API getBusInfo(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection direction,
                                  Steinberg::int32 index, Steinberg::Vst::BusInfo& info) override;
    tresult PLUGIN_API getRoutingInfo(Steinberg::Vst::RoutingInfo& in,
                                      Steinberg::Vst::RoutingInfo& out) override;
    tresult PLUGIN_API activateBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection direction,
                                   Steinberg::int32 index, Steinberg::TBool state) override;
    tresult PLUGIN_API setActive(Steinberg::TBool state) override;
    // The state of component and controller is the same one.
    tresult PLUGIN_API setState(Steinberg::IBStream* stream) override;
    tresult PLUGIN_API getState(Steinberg::IBStream* stream) override;

    // --- processor ---
    tresult PLUGIN_API setBusArrangements(Steinberg::Vst::SpeakerArrangement* ins, Steinberg::int32 inCount,
                                          Steinberg::Vst::SpeakerArrangement* outs,
                                          Steinberg::int32 outCount) override;
    tresult PLUGIN_API getBusArrangement(Steinberg::Vst::BusDirection direction, Steinberg::int32 index,
                                         Steinberg::Vst::SpeakerArrangement& arrangement) override;
    tresult PLUGIN_API canProcessSampleSize(Steinberg::int32 size) override;
    Steinberg::uint32 PLUGIN_API getLatencySamples() override { return 0; }
    tresult PLUGIN_API setupProcessing(Steinberg::Vst::ProcessSetup& setup) override;
    tresult PLUGIN_API setProcessing(Steinberg::TBool state) override;
    tresult PLUGIN_API process(Steinberg::Vst::ProcessData& data) override;
    Steinberg::uint32 PLUGIN_API getTailSamples() override { return Steinberg::Vst::kNoTail; }
    Steinberg::uint32 PLUGIN_API getProcessContextRequirements() override { return 0; }

    // --- parameters ---
    tresult PLUGIN_API setComponentState(Steinberg::IBStream* stream) override;
    Steinberg::int32 PLUGIN_API getParameterCount() override { return parameterCount; }
    tresult PLUGIN_API getParameterInfo(Steinberg::int32 index, Steinberg::Vst::ParameterInfo& info) override;
    tresult PLUGIN_API getParamStringByValue(ParamID id, ParamValue value,
                                             Steinberg::Vst::String128 text) override;
    tresult PLUGIN_API getParamValueByString(ParamID id, Steinberg::Vst::TChar* text,
                                             ParamValue& value) override;
    ParamValue PLUGIN_API normalizedParamToPlain(ParamID id, ParamValue value) override;
    ParamValue PLUGIN_API plainParamToNormalized(ParamID id, ParamValue value) override;
    ParamValue PLUGIN_API getParamNormalized(ParamID id) override;
    tresult PLUGIN_API setParamNormalized(ParamID id, ParamValue value) override;
    tresult PLUGIN_API setComponentHandler(Steinberg::Vst::IComponentHandler* newHandler) override;
    Steinberg::IPlugView* PLUGIN_API createView(Steinberg::FIDString name) override;

    // --- for the view ---
    SessionInstance* Session() { return session.get(); }  // null outside of initialize and terminate
    Steinberg::FUnknown* Host() const { return host; }    // the same, where it gives itself
    void ReportEdits();                                   // of the window, to the host

private:
    void ChangedInside(std::int32_t index, float value) override { edits.post(index, value); }
    void TakeParameters(Steinberg::Vst::IParameterChanges* changes);
    template <typename Sample>
    void Pass(Steinberg::Vst::ProcessData& data, Sample** Steinberg::Vst::AudioBusBuffers::*channels);

    std::unique_ptr<SessionInstance> session;
    Steinberg::IPtr<Steinberg::FUnknown> host;
    Steinberg::IPtr<Steinberg::Vst::IComponentHandler> handler;
    bool stereoOut = false;
    double rate = 44100;     // Hz
    std::int64_t clock = 0;  // samples processed; of the audio thread, as the next
    std::array<EchoWait, parameterCount> echoes;
    Mailbox edits;  // of the window, for the echoes
};

// Steinberg::Vst::String128, cut to fit.
void CopyWide(Steinberg::Vst::TChar* field, const std::string& text);
