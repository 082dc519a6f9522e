// The plug-in's faces, each in a host of its format.
#include <cstring>

#include "module/plugin_entry.h"
#include "parameters/parameters.h"
#include "tests/faces/clap_host.h"
#include "tests/faces/face.h"
#include "tests/faces/vst3_host.h"
#include "tests/lv2/lv2_host.h"

namespace {

// The reference. Its events are dated as the others' are: inside the block.
class Vst2Face : public Face {
public:
    explicit Vst2Face(double rate) : host(static_cast<std::intptr_t>(rate)) { host.Open(OpenPlugin); }

    void SetActive(bool active) override {
        host.Call(effMainsChanged, 0, active ? 1 : 0);
        Gather(0, 1);
    }
    void Set(std::int32_t index, float value) override { host.Set(index, value); }
    float Get(std::int32_t index) override { return host.Get(index); }

private:
    void Run(const float* in, float* out, std::uint32_t frames) override {
        host.Process(Way::replacing, const_cast<float*>(in), out, static_cast<std::int32_t>(frames));
        Gather(host.clock - frames, frames);
    }
    void Gather(std::int64_t begin, std::int64_t frames) {
        std::vector<Host::Event> sent = host.TakenEvents();
        for (Host::Event& event : sent) event.at = std::clamp<std::int64_t>(event.at - begin, 0, frames - 1);
        std::stable_sort(sent.begin(), sent.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
        for (const Host::Event& event : sent) Keep(event.at, event.data);
    }
    Host host;
};

class Lv2Face : public Face {
public:
    explicit Lv2Face(double rate) : host(PluginDescriptor(), rate) {}

    void SetActive(bool active) override { active ? host.Activate() : host.Deactivate(); }
    void Set(std::int32_t index, float value) override { host.control[index] = value; }
    float Get(std::int32_t index) override { return host.control[index]; }
    std::string Save() override {  // an LV2 host saves the ports
        return {reinterpret_cast<const char*>(host.control), sizeof host.control};
    }
    bool Load(const std::string& state) override {
        if (state.size() == sizeof host.control) std::memcpy(host.control, state.data(), state.size());
        return state.size() == sizeof host.control;
    }

private:
    void Run(const float* in, float* out, std::uint32_t frames) override {
        host.descriptor->connect_port(host.handle, portAudioIn, const_cast<float*>(in));
        host.descriptor->connect_port(host.handle, portAudioOut, out);
        for (const auto& [frame, data] : host.RunConnected(frames)) Keep(frame, data);
        host.Work();
    }
    Lv2Host host;
};

}  // namespace

std::unique_ptr<Face> MakeVst2(double rate) {
    return std::make_unique<Vst2Face>(rate);
}
std::unique_ptr<Face> MakeLv2(double rate) {
    return std::make_unique<Lv2Face>(rate);
}
std::unique_ptr<Face> MakeClap(double rate) {
    auto made = std::make_unique<ClapHost>(rate);
    EXPECT_TRUE(made->Init());
    return made;
}
std::unique_ptr<Face> MakeVst3(double rate) {
    auto made = std::make_unique<Steinberg::Vst::Vst3Host>(rate);
    EXPECT_TRUE(made->Init());
    return made;
}
