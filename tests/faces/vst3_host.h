#pragma once
#include "hosting/parameter_scale.h"
#include "parameters/parameters.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/gui/iplugview.h"
#include "pluginterfaces/gui/iplugviewcontentscalesupport.h"
#include "pluginterfaces/vst/ivstevents.h"
#include "pluginterfaces/vst/ivstmidicontrollers.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "tests/faces/face.h"
#include "vst3/factory.h"
#include "vst3/plugin.h"

namespace Steinberg::Vst {

// A VST 3 host with one instance; it lends a run loop, and takes as many events of a block as it has space
// for.
class Vst3Host : public ::Face {
public:
    explicit Vst3Host(double newRate, IPluginFactory& factory = *Vst3Factory()) : rate(newRate) {
        PClassInfo info;
        factory.getClassInfo(0, &info);
        IComponent* made = nullptr;
        EXPECT_EQ(factory.createInstance(info.cid, IComponent::iid, reinterpret_cast<void**>(&made)),
                  kResultOk);
        component = owned(made);
        processor = component;
        controller = component;
    }
    ~Vst3Host() override {
        component->terminate();
        EXPECT_EQ(callbacks.timer, nullptr) << "a timer is left";
    }

    bool Init() override { return component->initialize(nullptr) == kResultOk; }
    void SetActive(bool active) override {
        ProcessSetup setup = {kRealtime, kSample32, 1 << 20, rate};
        if (active) {
            EXPECT_EQ(processor->setupProcessing(setup), kResultOk);
        }
        EXPECT_EQ(component->setActive(active), kResultOk);
    }
    void Set(std::int32_t index, float value) override {
        changes.push_back({static_cast<uint32>(index), static_cast<double>(value)});
    }
    float Get(std::int32_t index) override {
        return static_cast<float>(controller->getParamNormalized(static_cast<uint32>(index)) *
                                  static_cast<double>(ParameterMaximum(index)));
    }
    void SetRate(double newRate) override { rate = newRate; }
    std::string Save() override {
        Stream stream;
        EXPECT_EQ(component->getState(&stream), kResultOk);
        return stream.bytes;
    }
    bool Load(const std::string& state) override {
        Stream stream;
        stream.bytes = state;
        return component->setState(&stream) == kResultOk;
    }
    bool OpenWindow(std::uint32_t parent) override {
        view = owned(controller->createView(ViewType::kEditor));
        view->setFrame(&callbacks);
        FUnknownPtr<IPlugViewContentScaleSupport> scaled(view);
        if (scale != 0 && scaled->setContentScaleFactor(static_cast<float>(scale)) != kResultTrue)
            return false;
        return view->attached(reinterpret_cast<void*>(std::uintptr_t{parent}),
                              kPlatformTypeX11EmbedWindowID) == kResultOk;
    }
    std::int32_t WindowWidth() override {
        ViewRect size;
        EXPECT_EQ(view->getSize(&size), kResultTrue);
        return size.getWidth();
    }
    void IdleWindow() override {
        if (callbacks.timer != nullptr) callbacks.timer->onTimer();
    }
    void CloseWindow() override {
        view->removed();
        view->setFrame(nullptr);
        view = nullptr;
    }

    IPtr<IComponent> component;
    FUnknownPtr<IAudioProcessor> processor;
    FUnknownPtr<IEditController> controller;
    IPtr<IPlugView> view;

protected:
    void Run(const float* in, float* out, std::uint32_t frames) override {
        float* inChannel = const_cast<float*>(in);
        AudioBusBuffers from, to;
        from.numChannels = to.numChannels = 1;
        from.channelBuffers32 = &inChannel;
        to.channelBuffers32 = &out;
        ProcessData data;
        data.symbolicSampleSize = kSample32;
        data.numSamples = static_cast<int32>(frames);
        data.numInputs = data.numOutputs = 1;
        data.inputs = &from;
        data.outputs = &to;
        data.inputParameterChanges = &parameterList;
        data.outputEvents = &eventList;
        EXPECT_EQ(processor->process(data), kResultOk);
        changes.clear();
    }

private:
    template <typename... Interfaces>
    using Implements = U::ImplementsNonDestroyable<U::Directly<Interfaces...>>;

    struct Stream : Implements<IBStream> {
        tresult PLUGIN_API read(void* to, int32 size, int32* got) override {
            *got = static_cast<int32>(bytes.copy(static_cast<char*>(to), static_cast<std::size_t>(size), at));
            at += static_cast<std::size_t>(*got);
            return kResultOk;
        }
        tresult PLUGIN_API write(void* from, int32 size, int32* put) override {
            bytes.append(static_cast<char*>(from), static_cast<std::size_t>(size));
            *put = size;
            return kResultOk;
        }
        tresult PLUGIN_API seek(int64, int32, int64*) override { return kResultFalse; }
        tresult PLUGIN_API tell(int64*) override { return kResultFalse; }
        std::string bytes;
        std::size_t at = 0;
    };
    struct Change {
        uint32 id;
        double value;
    };
    // All changes of a block, each a queue of one point, which is this object at that change.
    struct ParameterList : Implements<IParameterChanges, IParamValueQueue> {
        explicit ParameterList(Vst3Host& newHost) : host(newHost) {}
        int32 PLUGIN_API getParameterCount() override { return static_cast<int32>(host.changes.size()); }
        IParamValueQueue* PLUGIN_API getParameterData(int32 i) override { return at = i, this; }
        IParamValueQueue* PLUGIN_API addParameterData(const uint32&, int32&) override { return nullptr; }
        const Change& Now() const { return host.changes[static_cast<std::size_t>(at)]; }
        uint32 PLUGIN_API getParameterId() override { return Now().id; }
        int32 PLUGIN_API getPointCount() override { return 1; }
        tresult PLUGIN_API getPoint(int32, int32& offset, double& value) override {
            offset = 0;
            const auto index = static_cast<std::int32_t>(Now().id);
            value = Now().value / static_cast<double>(ParameterMaximum(index));
            return kResultOk;
        }
        tresult PLUGIN_API addPoint(int32, double, int32&) override { return kResultFalse; }
        Vst3Host& host;
        int32 at = 0;
    };
    struct EventList : Implements<IEventList> {
        explicit EventList(Vst3Host& newHost) : host(newHost) {}
        int32 PLUGIN_API getEventCount() override { return 0; }
        tresult PLUGIN_API getEvent(int32, Event&) override { return kResultFalse; }
        tresult PLUGIN_API addEvent(Event& event) override { return host.Take(event); }
        Vst3Host& host;
    };
    struct Callbacks : Implements<IPlugFrame, Linux::IRunLoop> {
        explicit Callbacks(Vst3Host& newHost) : host(newHost) {}
        tresult PLUGIN_API resizeView(IPlugView* view, ViewRect* size) override {
            host.hostWidth = size->getWidth();
            return view->onSize(size);
        }
        tresult PLUGIN_API registerEventHandler(Linux::IEventHandler*, int) override { return kResultFalse; }
        tresult PLUGIN_API unregisterEventHandler(Linux::IEventHandler*) override { return kResultFalse; }
        tresult PLUGIN_API registerTimer(Linux::ITimerHandler* handler, uint64) override {
            return timer = handler, kResultOk;
        }
        tresult PLUGIN_API unregisterTimer(Linux::ITimerHandler*) override {
            return timer = nullptr, kResultOk;
        }
        Linux::ITimerHandler* timer = nullptr;
        Vst3Host& host;
    };

    // As the MIDI message that it stands for.
    tresult Take(const Event& event) {
        if (!HasSpace()) return kResultFalse;
        using E = Event;
        const auto keep = [&](int status, int first, int second) {
            Keep(event.sampleOffset,
                 {static_cast<char>(status), static_cast<char>(first), static_cast<char>(second)});
        };
        if (event.type == E::kNoteOnEvent)
            keep(0x90 | event.noteOn.channel, event.noteOn.pitch,
                 static_cast<int>(event.noteOn.velocity * 127 + 0.5F));
        else if (event.type == E::kNoteOffEvent)
            keep(0x80 | event.noteOff.channel, event.noteOff.pitch, 0);
        else if (event.type == E::kLegacyMIDICCOutEvent &&
                 event.midiCCOut.controlNumber == kCtrlProgramChange)
            keep(0xC0 | event.midiCCOut.channel, event.midiCCOut.value, 0);
        else
            ADD_FAILURE() << "an event of type " << event.type;
        return kResultOk;
    }

    double rate;
    std::vector<Change> changes;
    ParameterList parameterList{*this};
    EventList eventList{*this};
    Callbacks callbacks{*this};
};

}  // namespace Steinberg::Vst
