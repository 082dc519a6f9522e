// The plug-in's runs, as the bundle's file does them.
#include <random>

#include "tests/harmony/allocation_count.h"
#include "tests/lv2/lv2_host.h"
#include "tests/plugin/plugin_test.h"

namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

// Two seconds in which notes come and go, with a pause.
std::vector<float> Music() {
    std::vector<float> music;
    for (const std::vector<float>& part : {Sines({60, 64, 67}, 0.37), Sines({62, 65, 69}, 0.3), Silence(3000),
                                           Sines({57, 72, 76, 81}, 0.7), Silence(5000)})
        music.insert(music.end(), part.begin(), part.end());
    return music;
}

// The same cuts for both kinds of host. The first is longer than what is processed in one piece, with events
// in either; it ends within the second chord, since a piece of nothing but silence would end the notes.
std::vector<std::vector<float>> Parts(const std::vector<float>& audio) {
    std::minstd_rand random(1);
    std::vector<std::vector<float>> parts;
    for (std::size_t at = 0; at < audio.size();) {
        const std::size_t length =
            at == 0 ? 20000 : std::min<std::size_t>(1 + random() % 700, audio.size() - at);
        const auto from = audio.begin() + static_cast<std::ptrdiff_t>(at);
        parts.emplace_back(from, from + static_cast<std::ptrdiff_t>(length));
        at += length;
    }
    return parts;
}

// What the object says of its program while it is made, before there is a run to say it in.
const Lv2Event firstProgram{0, std::string("\xC0\x00", 2)};

// What a VST host is sent for a part, put into the part in order: the model for an LV2 host's sequence.
class VstModel {
public:
    VstModel() : plug(OpenPlugin(FakeHost::Callback)) {}

    std::vector<Lv2Event> Run(const std::vector<float>& part) {
        const std::int64_t begin = host.clock;
        const auto length = static_cast<std::int64_t>(part.size());
        plug.Play(host, part, static_cast<int>(length));
        std::vector<Lv2Event> events;
        for (const FakeHost::Event& event : host.TakenEvents())
            events.push_back({std::clamp<std::int64_t>(event.at - begin, 0, length - 1),
                              event.data.substr(0, event.data[0] == '\xC0' ? 2 : 3)});
        std::stable_sort(events.begin(), events.end(),
                         [](const Lv2Event& a, const Lv2Event& b) { return a.frame < b.frame; });
        return events;
    }
    FakeHost host;
    Plug plug;
};

TEST(Lv2Run, GivesTheNotesThatAVstHostGetsDatedInsideTheRun) {
    Lv2Host host(FileDescriptor());
    ASSERT_NE(host.handle, nullptr);
    host.Activate();
    VstModel model;
    std::size_t events = 0;
    for (const std::vector<float>& part : Parts(Music())) {
        EXPECT_THAT(host.Run({}), IsEmpty());  // a block of length 0 would count as silent and end all notes
        const std::vector<Lv2Event> expected = model.Run(part);
        EXPECT_EQ(host.Run(part), expected);
        EXPECT_EQ(host.out, part);
        events += expected.size();
    }
    EXPECT_GE(events, 20U);  // ten notes begin and end
}

TEST(Lv2Run, DeactivationEndsTheNotesAtTheNextRunsBegin) {
    Lv2Host host(FileDescriptor());
    host.Activate();
    EXPECT_THAT(host.Run(Sines({69}, 0.5)),
                ElementsAre(firstProgram, Field(&Lv2Event::data, std::string("\x90\x45\x64", 3))));
    host.Deactivate();
    host.Activate();
    EXPECT_THAT(host.Run({}), IsEmpty());
    EXPECT_THAT(host.Run(Silence(64)), ElementsAre(Lv2Event{0, std::string("\x80\x45\x00", 3)}));
}

TEST(Lv2Run, PortsReachTheNotes) {
    Lv2Host host(FileDescriptor());
    host.control[paramVelocity] = 0.5F;  // int(0.5 x 127) = 63
    host.control[paramChannel] = 1;      // the sixteenth
    host.control[paramInstrument] = 1;
    host.control[paramSendProgramChange] = 1;  // tells the program at once: 127, in two bytes
    const auto events = host.Run(Sines({69}, 0.5));
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.back().data, std::string("\x9F\x45\x3F", 3));
    EXPECT_THAT(events, testing::Contains(Lv2Event{0, std::string("\xCF\x7F", 2)}));
    host.control[paramOutputToHost] = 0;
    EXPECT_THAT(host.Run(Sines({69}, 0.1)), ElementsAre(Lv2Event{0, std::string("\x8F\x45\x00", 3)}));
    EXPECT_THAT(host.Run(Sines({72}, 0.5)), IsEmpty());
}

TEST(Lv2Run, TakesBuffersInPlaceAndPortsThatAreNotConnected) {
    Lv2Host host(FileDescriptor());
    std::vector<float> audio = Sines({69}, 0.5);
    const std::vector<float> before = audio;
    host.descriptor->connect_port(host.handle, portAudioIn, audio.data());
    host.descriptor->connect_port(host.handle, portAudioOut, audio.data());
    EXPECT_THAT(host.RunConnected(static_cast<std::uint32_t>(audio.size())), SizeIs(2));
    EXPECT_EQ(audio, before);

    for (std::uint32_t port = 0; port < portCount + 1; ++port)
        host.descriptor->connect_port(host.handle, port, nullptr);
    host.descriptor->run(host.handle, 512);  // silence: the note ends, and nobody hears it
    host.descriptor->run(host.handle, 0);
    EXPECT_EQ(audio, before);
}

TEST(Lv2Run, NeedsNumbersForItsTypesAndStandsAnyRate) {
    EXPECT_EQ(Lv2Host(FileDescriptor(), Lv2Host::noMap).handle, nullptr);
    EXPECT_EQ(Lv2Host(FileDescriptor(), Lv2Host::emptyMap).handle, nullptr);
    const LV2_Descriptor* plugin = FileDescriptor();
    EXPECT_EQ(plugin->instantiate(plugin, 44100, "", nullptr), nullptr);
    for (const double rate : {0.0, -1.0, 8000.0, 192000.0, 1e30, std::nan("")}) {
        Lv2Host host(plugin, Lv2Host::everything, rate);
        ASSERT_NE(host.handle, nullptr) << rate;
        host.Run(Sines({69}, 0.05));
        EXPECT_EQ(host.out, Sines({69}, 0.05)) << rate;
    }
}

TEST(Lv2Run, TheFileHasOnePlugInAndOneWindow) {
    const auto entry = reinterpret_cast<LV2_Descriptor_Function>(dlsym(Lv2File(), "lv2_descriptor"));
    const auto windows = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(Lv2File(), "lv2ui_descriptor"));
    ASSERT_TRUE(entry != nullptr && windows != nullptr);
    EXPECT_NE(entry(0), nullptr);
    EXPECT_EQ(entry(1), nullptr);
    EXPECT_NE(windows(0), nullptr);
    EXPECT_EQ(windows(1), nullptr);
    EXPECT_EQ(entry(0)->extension_data("anything else"), nullptr);
    EXPECT_EQ(windows(0)->extension_data("anything else"), nullptr);
}

// Hard-real-time: from the first run on, whatever its length, whatever ports change.
TEST(Lv2Run, AllocatesNothing) {
    Lv2Host host;  // linked here, where allocations are counted
    host.Activate();
    std::vector<float> audio = Sines({60, 64, 67}, 1.0);
    host.descriptor->connect_port(host.handle, portAudioIn, audio.data());
    host.descriptor->connect_port(host.handle, portAudioOut, audio.data());
    std::size_t asked = 0;
    for (const std::uint32_t frames : {64U, 0U, 1000U, 20000U, 5000U}) {
        for (float& value : host.control) value = 1.0F - value;
        const std::size_t before = AllocationsOfThisThread();
        host.descriptor->run(host.handle, frames);
        asked += AllocationsOfThisThread() - before;
    }
    EXPECT_EQ(asked, 0U);
}

}  // namespace
