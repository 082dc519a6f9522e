#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include "tests/plugin/fake_host.h"
#include "vst2/audio_effect_x.h"

namespace {

using testing::ElementsAre;
constexpr std::int32_t intMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t intMin = std::numeric_limits<std::int32_t>::min();

std::string Number(double value) {
    return " " + std::to_string(static_cast<int>(value));
}

// Remembers which operations were reached, and does there what a test wants done.
class Probe : public AudioEffectX {
public:
    explicit Probe(bool* isGone = nullptr, audioMasterCallback host = FakeHost::Callback)
        : AudioEffectX(host, 1, 4), gone(isGone) {
        setEditor(&window);
    }
    ~Probe() override {
        if (gone != nullptr) *gone = true;
    }
    using AudioEffect::setEditor;

    void Told(const std::string& what) {
        told.push_back(what);
        if (inside) inside();
    }

    void open() override { Told("open"); }
    void close() override { Told("close"); }
    void suspend() override { Told("suspend"); }
    void resume() override { Told("resume"); }
    void setSampleRate(float rate) override { Told("rate" + Number(rate)); }
    void setBlockSize(std::int32_t size) override { Told("size" + Number(size)); }
    void process(float**, float**, std::int32_t n) override { Told("process" + Number(n)); }
    void processReplacing(float**, float**, std::int32_t n) override { Told("replace" + Number(n)); }
    void processDoubleReplacing(double**, double**, std::int32_t n) override { Told("double" + Number(n)); }
    void setParameter(std::int32_t i, float value) override { Told("set" + Number(i) + Number(value)); }
    float getParameter(std::int32_t) override { return Told("get"), 7.0F; }
    void setProgramName(const char* name) override { Told(std::string("name ") + name); }
    void getParameterName(std::int32_t index, char* text) override {
        Told("name of" + Number(index));
        text[0] = 'P';
        text[1] = '\0';
    }
    std::int32_t canDo(const char* text) override { return Told(std::string("canDo ") + text), -1; }
    bool canParameterBeAutomated(std::int32_t index) override { return index == 2; }
    bool string2parameter(std::int32_t index, const char* text) override {
        return Told("typed" + Number(index) + " " + (text != nullptr ? text : "null")), text != nullptr;
    }
    std::int32_t getVendorVersion() override { return 99; }
    VstPlugCategory getPlugCategory() override { return kPlugCategAnalysis; }
    bool setProcessPrecision(std::int32_t precision) override { return precision == kVstProcessPrecision64; }

    struct Window : AEffEditor {
        explicit Window(Probe& windowOwner) : owner(windowOwner) {}
        bool getRect(ERect** rect) override { return *rect = &area, owner.Told("rect"), true; }
        bool open(void* parent) override { return owner.Told("edit"), parent == this; }
        void close() override { owner.Told("leave"); }
        bool isOpen() const override { return false; }
        void idle() override { owner.Told("idle"); }
        bool onKeyDown(const VstKeyCode& key) override {
            return owner.Told("key" + Number(key.character) + Number(key.virt) + Number(key.modifier)), true;
        }
        Probe& owner;
        ERect area;
    };

    std::vector<std::string> told;
    std::function<void()> inside;
    Window window{*this};

private:
    bool* gone;
};

class Dispatcher : public testing::Test {
protected:
    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) {
        return effect.dispatcher(&effect, opcode, index, value, ptr, opt);
    }
    // Every way in but effClose.
    void CallEverything() {
        char text[64] = "text";
        for (std::int32_t opcode = 0; opcode < 80; ++opcode)
            if (opcode != effClose) Call(opcode, 0, 0, text);
        effect.process(&effect, nullptr, nullptr, 1);
        effect.processReplacing(&effect, nullptr, nullptr, 2);
        effect.processDoubleReplacing(&effect, nullptr, nullptr, 3);
        effect.setParameter(&effect, 1, 4);
        effect.getParameter(&effect, 1);
    }

    FakeHost host;
    Probe probe;
    AEffect& effect = *probe.getAeffect();
};

TEST_F(Dispatcher, HandsEachCallToItsOperation) {
    char text[64] = "text";
    Call(effOpen);
    Call(effSetSampleRate, 0, 0, nullptr, 48000);
    Call(effSetBlockSize, 0, 512);
    Call(effMainsChanged, 0, 1);
    Call(effMainsChanged, 0, 0);
    Call(effSetProgramName, 0, 0, text);
    EXPECT_EQ(Call(effCanDo, 0, 0, text), -1);
    EXPECT_EQ(Call(effString2Parameter, 3, 0, text), 1);
    EXPECT_THAT(probe.told, ElementsAre("open", "rate 48000", "size 512", "resume", "suspend", "name text",
                                        "canDo text", "typed 3 text"));
    probe.told.clear();
    effect.process(&effect, nullptr, nullptr, 1);
    effect.processReplacing(&effect, nullptr, nullptr, 2);
    effect.processDoubleReplacing(&effect, nullptr, nullptr, 3);
    effect.setParameter(&effect, 1, 4);
    EXPECT_EQ(effect.getParameter(&effect, 1), 7.0F);
    EXPECT_THAT(probe.told, ElementsAre("process 1", "replace 2", "double 3", "set 1 4", "get"));
    probe.setParameterAutomated(3, 2.0F);
    EXPECT_EQ(probe.told.back(), "set 3 2");
    EXPECT_EQ(host.Count(audioMasterAutomate), 1);
    EXPECT_EQ(host.lastIndex, 3);
    EXPECT_EQ(host.lastOpt, 2.0F);
    Call(effGetParamName, 2, 0, text);
    EXPECT_STREQ(text, "P");
    EXPECT_EQ(Call(effCanBeAutomated, 2), 1);
    EXPECT_EQ(Call(effCanBeAutomated, 1), 0);
    EXPECT_EQ(Call(effGetVendorVersion), 99);
    EXPECT_EQ(Call(effGetPlugCategory), 3);
    EXPECT_EQ(Call(effGetVstVersion), 2400);
    EXPECT_EQ(Call(effSetProcessPrecision, 0, 1), 1);
    EXPECT_EQ(Call(effSetProcessPrecision, 0, 0), 0);
    EXPECT_EQ(Call(effIdentify), FourCharacters('N', 'v', 'E', 'f'));
    EXPECT_EQ(Call(effGetChunk, 0, 0, text), 0);
    EXPECT_EQ(Call(effSetChunk, 0, 4, text), 0);
}

TEST_F(Dispatcher, TheEditorIsReachedOnlyWhileThereIsOne) {
    ERect* rect = nullptr;
    EXPECT_TRUE(effect.flags & effFlagsHasEditor);
    EXPECT_EQ(Call(effEditGetRect, 0, 0, &rect), 1);
    EXPECT_EQ(rect, &probe.window.area);
    EXPECT_EQ(Call(effEditOpen, 0, 0, &probe.window), 1);
    EXPECT_EQ(Call(effEditOpen, 0, 0, this), 0);
    Call(effEditIdle);
    Call(effEditClose);
    EXPECT_EQ(Call(effEditKeyDown, 'x', VKEY_F1, nullptr, 2), 1);
    EXPECT_THAT(probe.told, ElementsAre("rect", "edit", "edit", "idle", "leave", "key 120 40 2"));

    probe.setEditor(nullptr);
    EXPECT_FALSE(effect.flags & effFlagsHasEditor);
    EXPECT_EQ(Call(effEditGetRect, 0, 0, &rect), 0);
    EXPECT_EQ(Call(effEditOpen, 0, 0, &probe.window), 0);
    EXPECT_EQ(Call(effEditKeyDown, 'x'), 0);
    Call(effEditIdle);
    Call(effEditClose);
}

TEST_F(Dispatcher, UnknownOpcodesAnswerZero) {
    char text[64] = {};
    for (const std::int32_t opcode : {-1, 80, 255, 100000, intMax, intMin})
        EXPECT_EQ(Call(opcode, 1, 1, text, 1), 0) << opcode;
    EXPECT_TRUE(probe.told.empty());
}

TEST_F(Dispatcher, NullPointersAndWildIndicesAreSurvived) {
    for (std::int32_t opcode = 0; opcode < 80; ++opcode)
        for (const std::int32_t index : {0, -1, intMax, intMin})
            if (opcode != effClose) Call(opcode, index, index, nullptr, 0);
    for (const std::int32_t needsText :
         {effSetProgramName, effGetProgramName, effGetParamName, effGetParamLabel, effGetParamDisplay,
          effEditGetRect, effGetEffectName, effGetVendorString, effGetProductString, effCanDo, effSetChunk})
        EXPECT_EQ(Call(needsText), 0) << needsText;
    EXPECT_EQ(effect.dispatcher(nullptr, effOpen, 0, 0, nullptr, 0), 0);
}

TEST_F(Dispatcher, NoExceptionReachesTheHost) {
    probe.inside = [] { throw std::runtime_error("inside"); };
    CallEverything();
    EXPECT_EQ(Call(effCanDo, 0, 0, const_cast<char*>("x")), 0);
    EXPECT_EQ(effect.getParameter(&effect, 0), 0.0F);
    probe.inside = [] { throw 1; };  // NOLINT: not even one that is no standard exception
    CallEverything();
}

TEST_F(Dispatcher, ClosingDeletesTheObjectWhateverItThrows) {
    for (const bool throws : {false, true}) {
        bool gone = false;
        auto* const closing = new Probe(&gone);
        if (throws) closing->inside = [] { throw std::runtime_error("close"); };
        AEffect* const record = closing->getAeffect();
        record->dispatcher(record, effClose, 0, 0, nullptr, 0);
        EXPECT_TRUE(gone);
    }
}

#if defined(__SSE2__)
TEST_F(Dispatcher, TheHostsFloatControlWordIsAsItWas) {
    const unsigned before = _mm_getcsr();
    int reached = 0;
    probe.inside = [&] {
        ++reached;
        _mm_setcsr(0xFFC0);  // flush to zero, denormals are zero, towards zero; no sticky flag
    };
    for (const unsigned rounding : {0x0000U, 0x2000U, 0x4000U, 0x6000U}) {
        const unsigned word = 0x1F80U | rounding | 0x20U;  // all masked, inexact seen
        _mm_setcsr(word);
        CallEverything();
        const unsigned after = _mm_getcsr();
        _mm_setcsr(before);
        EXPECT_EQ(after, word);
    }
    EXPECT_GE(reached, 4 * 15);
}
#endif

TEST_F(Dispatcher, TheHostIsAskedForItsRateOnce) {
    EXPECT_EQ(host.Count(audioMasterGetSampleRate), 1);
    EXPECT_EQ(probe.getSampleRate(), 44100.0F);
    host.sampleRate = 96000;
    EXPECT_EQ(Probe().getSampleRate(), 96000.0F);
    for (const std::intptr_t unusable : {0, -1}) {  // scanners answer so
        host.sampleRate = unusable;
        EXPECT_EQ(Probe().getSampleRate(), 44100.0F);
    }
}

TEST_F(Dispatcher, HostTextsAreTakenAsTheyComeAndEndSomewhere) {
    EXPECT_EQ(probe.getHostVendorString(), "Maker");
    EXPECT_EQ(probe.getHostProductString(), "[Unknown]");  // the host fills in nothing
    EXPECT_EQ(probe.getHostVendorVersion(), 1234);
    host.unterminated = true;
    const std::string text = probe.getHostVendorString();
    EXPECT_EQ(text, std::string(text.size(), 'x'));
    EXPECT_GE(text.size(), 63U);
    EXPECT_LE(text.size(), 64U);
}

TEST_F(Dispatcher, WithoutAHostEveryQuestionHasAnAnswer) {
    Probe alone(nullptr, nullptr);
    VstEvents events;
    EXPECT_EQ(alone.getSampleRate(), 44100.0F);
    EXPECT_EQ(alone.getHostVendorString(), "[Unknown]");
    EXPECT_EQ(alone.canHostDo("sizeWindow"), 0);
    EXPECT_FALSE(alone.sendVstEventsToHost(&events));
    EXPECT_FALSE(alone.updateDisplay());
    alone.wantEvents();
}

}  // namespace
