// What holds for any plug-in of this interface: what its operations throw, keys, and what its host answers.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/plugin/fake_host.h"
#include "vst2/audio_effect_x.h"

namespace {

class Probe : public AudioEffectX {
public:
    explicit Probe(bool* isGone = nullptr) : AudioEffectX(FakeHost::Callback, 1, 4), gone(isGone) {}
    ~Probe() override {
        if (gone != nullptr) *gone = true;
    }
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

private:
    void Throw() {
        if (++thrown % 2 == 0) throw 1;  // NOLINT: one that is no standard exception
        throw std::runtime_error("inside");
    }
    bool* gone;
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
    FakeHost host;
};

TEST_F(Dispatcher, NoExceptionReachesTheHost) {
    Probe probe;
    AEffect* const effect = probe.getAeffect();
    char text[64] = "text";
    EXPECT_EQ(effect->dispatcher(effect, effOpen, 0, 0, nullptr, 0), 0);
    EXPECT_EQ(effect->dispatcher(effect, effCanDo, 0, 0, text, 0), 0);
    effect->process(effect, nullptr, nullptr, 1);
    effect->processReplacing(effect, nullptr, nullptr, 1);
    effect->processDoubleReplacing(effect, nullptr, nullptr, 1);
    effect->setParameter(effect, 1, 4);
    EXPECT_EQ(effect->getParameter(effect, 1), 0.0F);
    EXPECT_EQ(probe.thrown, 7);
}

TEST_F(Dispatcher, ClosingDeletesTheObjectWhateverItThrows) {
    bool gone = false;
    AEffect* const effect = (new Probe(&gone))->getAeffect();
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    EXPECT_TRUE(gone);
}

TEST_F(Dispatcher, AKeyReachesTheEditorAsItIsWhereThereIsOne) {
    KeyTaker editor;
    Probe probe;
    AEffect* const effect = probe.getAeffect();
    EXPECT_EQ(effect->dispatcher(effect, effEditKeyDown, 'x', VKEY_F1, nullptr, 2), 0);
    probe.setEditor(&editor);
    EXPECT_EQ(effect->dispatcher(effect, effEditKeyDown, 'x', VKEY_F1, nullptr, 2), 1);
    EXPECT_EQ(editor.taken.character, 'x');
    EXPECT_EQ(editor.taken.virt, VKEY_F1);
    EXPECT_EQ(editor.taken.modifier, 2);
}

TEST_F(Dispatcher, TheHostIsAskedForItsRateOnce) {
    EXPECT_EQ(Probe().getSampleRate(), 44100.0F);
    EXPECT_EQ(host.Count(audioMasterGetSampleRate), 1);
    host.sampleRate = 96000;
    EXPECT_EQ(Probe().getSampleRate(), 96000.0F);
    host.sampleRate = -1;  // which is none
    EXPECT_EQ(Probe().getSampleRate(), 44100.0F);
}

TEST_F(Dispatcher, AHostsTextWithoutAnEndEndsBehindItsRoom) {
    host.unterminated = true;
    const std::string text = Probe().getHostVendorString();
    EXPECT_EQ(text, std::string(text.size(), 'x'));
    EXPECT_GE(text.size(), 63U);
    EXPECT_LE(text.size(), 64U);
}

}  // namespace
