// The plug-in's faces, each in a host of its format.
#include "module/plugin_entry.h"
#include "parameters/parameters.h"
#include "tests/faces/clap_host.h"
#include "tests/faces/lv2_host.h"
#include "tests/faces/vst3_host.h"

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

}  // namespace

std::unique_ptr<Face> MakeVst2(double rate) {
    return std::make_unique<Vst2Face>(rate);
}
std::unique_ptr<Face> MakeLv2(double rate) {
    return std::make_unique<Lv2Host>(rate);
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
