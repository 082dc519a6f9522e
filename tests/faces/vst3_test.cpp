// VST 3's own: the file, what is out of order and two channels.
#include <dlfcn.h>

#include "tests/faces/vst3_host.h"
#include "tests/support/music.h"

namespace Steinberg::Vst {
namespace {

TEST(Vst3, TheFileHasOnePlugInThatLivesAgainAfterItsEnd) {
    void* const file = dlopen(ORVA_VST3, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr) << dlerror();
    ASSERT_TRUE(reinterpret_cast<bool (*)(void*)>(dlsym(file, "ModuleEntry"))(file));
    auto& factory = *reinterpret_cast<IPluginFactory* (*)()>(dlsym(file, "GetPluginFactory"))();
    EXPECT_EQ(factory.countClasses(), 1);
    {
        Vst3Host host(44100, factory);
        EXPECT_NE(host.component->setActive(1), kResultOk);
        EXPECT_FALSE(host.Load(std::string(384, '\0')));
        EXPECT_EQ(host.controller->createView(ViewType::kEditor), nullptr);
        for (int life = 0; life < 2; ++life) {
            EXPECT_TRUE(host.Init());
            EXPECT_FALSE(host.Init());
            host.SetActive(true);
            EXPECT_TRUE(host.Play(Tones({60}, 0.3), 512));
            EXPECT_EQ(host.component->terminate(), kResultOk);
            ProcessData block;
            EXPECT_NE(host.processor->process(block), kResultOk);
        }
        EXPECT_EQ(host.events.size(), 4U);
    }
    EXPECT_TRUE(reinterpret_cast<bool (*)()>(dlsym(file, "ModuleExit"))());
}

TEST(Vst3, AHostThatInsistsGetsTheAudioOnTwoChannelsOfSinglesOrDoubles) {
    Vst3Host host(44100);
    ASSERT_TRUE(host.Init());
    SpeakerArrangement mono = SpeakerArr::kMono, stereo = SpeakerArr::kStereo;
    EXPECT_NE(host.processor->setBusArrangements(&stereo, 1, &stereo, 1), kResultTrue);
    EXPECT_EQ(host.processor->setBusArrangements(&mono, 1, &stereo, 1), kResultTrue);
    host.SetActive(true);
    double in[3] = {0.25, -1, 1e-9}, left[3] = {}, right[3] = {};
    double *ins[] = {in}, *outs[] = {left, right};
    AudioBusBuffers from, to;
    from.numChannels = 1;
    to.numChannels = 2;
    from.channelBuffers64 = ins;
    to.channelBuffers64 = outs;
    ProcessData block;
    block.symbolicSampleSize = kSample64;
    block.numSamples = 3;
    block.numInputs = block.numOutputs = 1;
    block.inputs = &from;
    block.outputs = &to;
    EXPECT_EQ(host.processor->process(block), kResultOk);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(left[i] == in[i] && right[i] == in[i]);
    EXPECT_EQ(to.silenceFlags, 0U);
    from.numChannels = to.numChannels = 0;
    left[0] = 7;
    EXPECT_EQ(host.processor->process(block), kResultOk);
    EXPECT_EQ(left[0], 7);  // a bus of no channels has none to write
}

}  // namespace
}  // namespace Steinberg::Vst
