// What holds for any plug-in of this interface: what its operations throw, and what its host answers.
#include "tests/support/host.h"
#include "vst2/audio_effect_x.h"

namespace {

struct Probe : AudioEffectX {
    explicit Probe(audioMasterCallback callback) : AudioEffectX(callback, 1, 4) {}
    ~Probe() override { ++deaths; }
    void open() override { throw 1; }  // NOLINT: one that is no standard exception
    void close() override { throw std::bad_alloc(); }
    void process(float**, float**, std::int32_t) override { throw 1; }                   // NOLINT
    void processReplacing(float**, float**, std::int32_t) override { throw 1; }          // NOLINT
    void processDoubleReplacing(double**, double**, std::int32_t) override { throw 1; }  // NOLINT
    float getParameter(std::int32_t) override { throw 1; }                               // NOLINT
    static inline int deaths = 0;
};

TEST(Dispatcher, SurvivesWhatAnObjectThrowsAndWhatAHostAnswers) {
    Host host;
    host.Open([](audioMasterCallback callback) { return (new Probe(callback))->getAeffect(); });
    EXPECT_EQ(host.Call(effOpen), 0);
    float sample = 0;
    double wide = 0;
    for (const Way way : {Way::accumulating, Way::replacing}) host.Process(way, &sample, &sample, 1);
    host.Process(Way::doubleReplacing, &wide, &wide, 1);
    EXPECT_EQ(host.Get(1), 0.0F);
    host.answers = [](const Host::Request& request, std::intptr_t& answer) {  // without a terminator
        return std::memset(request.ptr, 'x', 64), answer = 1, true;
    };
    const std::string text = host.Object<Probe>().getHostVendorString();
    EXPECT_EQ(text, std::string(text.size(), 'x'));
    EXPECT_GE(text.size(), 63U);
    EXPECT_LE(text.size(), 64U);
    int depth = 0;
    host.answers = [&](const Host::Request&, std::intptr_t&) {  // each call with one of its own, without end
        if (++depth < 100) host.Object<Probe>().updateDisplay();
        return true;
    };
    host.Object<Probe>().updateDisplay();
    EXPECT_EQ(depth, 8);
    host.answers = nullptr;
    host.Close();
    EXPECT_EQ(Probe::deaths, 1);
}

}  // namespace
