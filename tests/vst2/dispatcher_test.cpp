// What holds for any plug-in of this interface: what its operations throw, keys, and what its host answers.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/host.h"
#include "vst2/audio_effect_x.h"

namespace {

class Probe : public AudioEffectX {
public:
    explicit Probe(audioMasterCallback callback) : AudioEffectX(callback, 1, 4) {}
    ~Probe() override { ++deaths; }
    void open() override { Throw(); }
    void close() override { Throw(); }
    void process(float**, float**, std::int32_t) override { Throw(); }
    void processReplacing(float**, float**, std::int32_t) override { Throw(); }
    void processDoubleReplacing(double**, double**, std::int32_t) override { Throw(); }
    void setParameter(std::int32_t, float) override { Throw(); }
    float getParameter(std::int32_t) override { return Throw(), 7.0F; }
    std::int32_t canDo(const char*) override { return Throw(), 1; }
    using AudioEffect::setEditor;

    int thrown = 0;
    static inline int deaths = 0;

private:
    void Throw() {
        if (++thrown % 2 == 0) throw 1;  // NOLINT: one that is no standard exception
        throw std::runtime_error("inside");
    }
};

struct KeyTaker : AEffEditor {
    bool getRect(ERect**) override { return false; }
    bool open(void*) override { return false; }
    void close() override {}
    bool isOpen() const override { return false; }
    void idle() override {}
    bool onKeyDown(const VstKeyCode& key) override { return taken = key, true; }
    VstKeyCode taken{};
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
    Probe& probe = Open();
    float sample = 0;
    double wide = 0;
    char text[64] = "text";
    EXPECT_EQ(host.Call(effOpen), 0);
    EXPECT_EQ(host.Call(effCanDo, 0, 0, text), 0);
    for (const Way way : {Way::accumulating, Way::replacing}) host.Process(way, &sample, &sample, 1);
    host.Process(&wide, &wide, 1);
    host.Set(1, 4);
    EXPECT_EQ(host.Get(1), 0.0F);
    EXPECT_EQ(probe.thrown, 7);
    const int before = Probe::deaths;
    host.Close();
    EXPECT_EQ(Probe::deaths, before + 1);
}

TEST_F(Dispatcher, AKeyReachesTheEditorAsItIsWhereThereIsOne) {
    KeyTaker editor;
    Probe& probe = Open();
    EXPECT_EQ(host.Call(effEditKeyDown, 'x', VKEY_F1, nullptr, 2), 0);
    probe.setEditor(&editor);
    EXPECT_EQ(host.effect->flags & effFlagsHasEditor, effFlagsHasEditor);
    EXPECT_EQ(host.Call(effEditKeyDown, 'x', VKEY_F1, nullptr, 2), 1);
    EXPECT_EQ(editor.taken.character, 'x');
    EXPECT_EQ(editor.taken.virt, VKEY_F1);
    EXPECT_EQ(editor.taken.modifier, 2);
    EXPECT_EQ(host.Call(effKeysRequired), 1);  // that is: none are
    probe.setEditor(nullptr);
    EXPECT_EQ(host.effect->flags & effFlagsHasEditor, 0);
}

TEST_F(Dispatcher, TheHostIsAskedForItsRateOnceAndForTextsThatMayLackAnEnd) {
    EXPECT_EQ(Open().getSampleRate(), 44100.0F);
    EXPECT_EQ(host.Count(audioMasterGetSampleRate), 1);
    host.sampleRate = 96000;
    EXPECT_EQ(Open().getSampleRate(), 96000.0F);
    host.sampleRate = -1;  // which is none
    EXPECT_EQ(Open().getSampleRate(), 44100.0F);
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
