// What holds for any plug-in of this interface: what its operations throw, and what its host answers.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/host.h"
#include "vst2/audio_effect_x.h"

namespace {

class Probe : public AudioEffectX {
public:
    explicit Probe(audioMasterCallback callback) : AudioEffectX(callback, 1, 4) {}
    ~Probe() override { ++deaths; }
    void open() override { throw 1; }  // NOLINT: one that is no standard exception
    void close() override { throw std::runtime_error("inside"); }
    void process(float**, float**, std::int32_t) override { throw 1; }                   // NOLINT
    void processReplacing(float**, float**, std::int32_t) override { throw 1; }          // NOLINT
    void processDoubleReplacing(double**, double**, std::int32_t) override { throw 1; }  // NOLINT
    void setParameter(std::int32_t, float) override { throw std::bad_alloc(); }
    float getParameter(std::int32_t) override { throw 1; }  // NOLINT
    static inline int deaths = 0;
};

class Dispatcher : public testing::Test {
protected:
    Probe& Open() {
        host.Close();
        host.Open([](audioMasterCallback callback) { return (new Probe(callback))->getAeffect(); });
        return host.Object<Probe>();
    }
    Host host;
};

TEST_F(Dispatcher, NoExceptionReachesTheHostAndClosingDeletesTheObjectAllTheSame) {
    Open();
    float sample = 0;
    double wide = 0;
    EXPECT_EQ(host.Call(effOpen), 0);
    for (const Way way : {Way::accumulating, Way::replacing}) host.Process(way, &sample, &sample, 1);
    host.Process(&wide, &wide, 1);
    host.Set(1, 4);
    EXPECT_EQ(host.Get(1), 0.0F);
    const int before = Probe::deaths;
    host.Close();
    EXPECT_EQ(Probe::deaths, before + 1);
}

TEST_F(Dispatcher, AHostsTextMayLackAnEnd) {
    host.unterminated = true;
    const std::string text = Open().getHostVendorString();
    EXPECT_EQ(text, std::string(text.size(), 'x'));
    EXPECT_GE(text.size(), 63U);
    EXPECT_LE(text.size(), 64U);
}

// The host answers each call with a call of its own, which would never come to an end.
TEST_F(Dispatcher, AHostThatAlwaysCallsBackIsAnsweredEightDeep) {
    Probe& probe = Open();
    int depth = 0;
    host.answers = [&](const Host::Request&, std::intptr_t&) {
        if (++depth < 100) probe.updateDisplay();
        return true;
    };
    probe.updateDisplay();
    EXPECT_EQ(depth, 8);
    host.answers = nullptr;
}

}  // namespace
