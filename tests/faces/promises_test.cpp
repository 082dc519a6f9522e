// What every face promises its host, as one table: a row a face, a test a promise.
#include "editor/window_size.h"
#include "parameters/parameters.h"
#include "tests/faces/clap_host.h"
#include "tests/faces/lv2_host.h"
#include "tests/faces/vst3_host.h"
#include "tests/support/devices.h"
#include "tests/support/linked_host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/parent_window.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"
#include "tests/support/watch.h"

namespace {

// The reference. Its events are dated as the others' are: inside the block.
class Vst2Face : public Face {
public:
    explicit Vst2Face(double rate) : host(static_cast<std::intptr_t>(rate)) {}

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
    LinkedHost host;
};

template <typename Made>
std::unique_ptr<Face> Make(double rate) {
    auto made = std::make_unique<Made>(rate);
    EXPECT_TRUE(made->Init());
    return made;
}

struct Row {
    const char* name;
    std::unique_ptr<Face> (*make)(double rate);
    friend void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }
};

class Faces : public testing::TestWithParam<Row> {
protected:
    static std::unique_ptr<Face> Active(std::unique_ptr<Face> (*make)(double), double rate = 44100) {
        std::unique_ptr<Face> face = make(rate);
        face->SetActive(true);
        return face;
    }
    std::unique_ptr<Face> Active(double rate = 44100) const { return Active(GetParam().make, rate); }
};

// LV2 has tests of its own for these.
using LaterFaces = Faces;

// Program changes, a loud velocity, a part without output, and a pause of the host's.
std::vector<Host::Event> EventsOf(Face& face, const Audio& music, std::size_t block) {
    face.Set(paramVelocity, 1);
    face.Set(paramInstrument, 40.0F / 127);
    face.Set(paramSendProgramChange, 1);
    EXPECT_TRUE(face.Play(music, block));
    face.SetActive(false);
    face.SetActive(true);
    face.Set(paramChannel, 3.0F / 15);
    EXPECT_TRUE(face.Play(music, block));
    face.Set(paramOutputToHost, 0);
    EXPECT_TRUE(face.Play(music, block));
    return face.events;
}

TEST_P(Faces, SendTheEventsOfVst2HoweverTheHostCutsTheAudio) {
    std::minstd_rand random(5);
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        const Audio music = RandomMusic(random, rate, 1.5);
        for (const std::size_t block : {17U, 441U, 1024U, 40000U}) {
            const auto expected = EventsOf(*Active(Make<Vst2Face>, rate), music, block);
            EXPECT_GT(expected.size(), 8U);
            EXPECT_EQ(EventsOf(*Active(rate), music, block), expected) << rate << " in " << block;
        }
    }
}

TEST_P(Faces, TakeAnyBlockInPlaceWithoutBuffersAndConstant) {
    const auto face = Active();
    const Audio tone = Tones({69}, 0.5);
    Audio audio = tone;
    face->Process(audio.data(), audio.data(), static_cast<std::uint32_t>(audio.size()));
    EXPECT_EQ(audio, tone);
    EXPECT_EQ(face->events.size(), 2U);  // the program and the note
    face->Process(nullptr, audio.data(), 100);
    EXPECT_EQ(Audio(audio.begin(), audio.begin() + 100), Audio(100, 0.0F));
    face->Process(tone.data(), nullptr, 100);
    face->Process(nullptr, nullptr, 100);
    face->Process(nullptr, nullptr, 0);
    EXPECT_TRUE(face->Play(Audio(1000, 0.25F), 100));
}

TEST_P(Faces, AllocateNothing) {
    const auto face = Active();
    Audio audio = Tones({60, 64, 67}, 1);
    std::uint64_t requested = 0;
    for (const std::uint32_t frames : {64U, 0U, 1000U, 20000U, 64U, 5000U}) {
        for (std::int32_t i = 0; i < parameterCount; ++i)
            if (i != paramDevice && i != paramDeviceEnabled) face->Set(i, frames % 128 == 0 ? 0.75F : 0.5F);
        const std::uint64_t before = Allocations::Requested();
        face->Process(audio.data(), audio.data(), frames);
        requested += Allocations::Requested() - before;
    }
    EXPECT_EQ(requested, 0U);
}

TEST_P(Faces, SaveTheirStateWhileTheyProcess) {
    const auto face = Active(), other = Active();
    for (std::int32_t i = 0; i < parameterCount; ++i)
        if (i != paramDeviceEnabled) face->Set(i, static_cast<float>(i % 16) / 15);
    face->Play(Audio(100), 100);
    const std::string state = face->Save();
    EXPECT_EQ(state.size(), 4U * 96U);
    std::atomic<bool> ends{false};
    std::thread audio([&] {
        while (!ends) face->Play(Tones({60}, 0.05), 64);
    });
    for (int i = 0; i < 200; ++i) EXPECT_EQ(face->Save(), state);
    ends = true;
    audio.join();
    EXPECT_TRUE(other->Load(state));
    EXPECT_EQ(other->Save(), state);
    for (std::int32_t i = 0; i < parameterCount; ++i) EXPECT_FLOAT_EQ(other->Get(i), face->Get(i)) << i;
    EXPECT_FALSE(other->Load(state.substr(1)));
    EXPECT_FALSE(other->Load(state + "x"));
    EXPECT_EQ(other->Save(), state);
}

TEST_P(Faces, LiveAThousandLivesAndTwoAtATime) {
    const Audio music = Tones({60, 67}, 0.3);
    const auto alone = Active();
    alone->Play(music, 512);
    const auto threads = [] {
        const std::filesystem::directory_iterator all("/proc/self/task");
        return std::distance(begin(all), end(all));
    };
    const auto before = threads();
    for (std::uint64_t life = 0; life < Scaled(1000); ++life)
        GetParam().make(life % 2 == 0 ? 44100 : 48000)->SetActive(true);
    EXPECT_EQ(threads(), before);
    const auto one = Active(), two = Active();
    Audio out(music.size());
    for (std::uint32_t at = 0; at + 512 <= music.size(); at += 512)
        for (const auto& face : {one.get(), two.get()}) face->Process(&music[at], &out[at], 512);
    EXPECT_EQ(one->events, alone->events);
    EXPECT_EQ(two->events, alone->events);
}

TEST_P(Faces, GiveAFullHostTheRestInTheNextBlock) {
    const auto face = Active();
    Audio chord = Tones({60, 64, 67}, 0.5);
    std::fill_n(chord.begin(), 4410, 0.0F);  // so that no event is at the block's own begin
    face->space = 0;
    face->Process(chord.data(), nullptr, static_cast<std::uint32_t>(chord.size()));
    for (std::size_t all = 0; face->space = 1, all < 4; ++all) {  // the program and three notes
        EXPECT_EQ(face->events.size(), all);
        face->Process(nullptr, nullptr, 64);
    }
    ASSERT_EQ(face->events.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {  // at the begin of its block, and no end before its note
        EXPECT_EQ(face->events[i].at, static_cast<std::int64_t>(chord.size() + 64 * i));
        EXPECT_EQ(face->events[i].data[0], i == 0 ? '\xC0' : '\x90');
    }
}

TEST_P(LaterFaces, KeepObjectAndEqualizerAtAnotherRate) {
    const auto face = Active(44100);
    face->Set(paramFirstBar + 45, 0);  // A 440 Hz, note 69, is silenced
    for (const double rate : {44100.0, 48000.0}) {
        face->SetActive(false);
        face->SetRate(rate);
        face->SetActive(true);
        EXPECT_TRUE(face->Play(Tones({69, 76}, 0.5, rate), 512));
    }
    std::string sent;
    for (const Host::Event& event : face->events) sent += event.data.substr(0, 2);
    EXPECT_EQ(sent, std::string("\xC0\0", 2) + "\x90\x4C\x80\x4C\x90\x4C");  // the program once
}

TEST_P(LaterFaces, KeepTheRequestForADeviceThatIsNotAvailableButForWhatTheWindowShows) {
    InstalledDevices layer;
    Messages messages;
    layer.refusedOpens[0] = MMSYSERR_ALLOCATED;
    std::atomic<bool> requested{false};
    layer.during = [&](const std::string&) { requested = true; };
    {
        HostWindow desktop;
        const auto face = Active();
        const auto request = [&](float value) {
            face->Set(paramDeviceEnabled, value);
            face->Process(nullptr, nullptr, 64);
        };
        request(1);
        EXPECT_TRUE(AwaitThat([&] { return requested.load(); }));
        EXPECT_EQ(face->Get(paramDeviceEnabled), 1.0F);  // as the project is to be saved
        ASSERT_TRUE(face->OpenWindow(desktop.parent));
        request(0);
        request(1);
        EXPECT_TRUE(AwaitThat([&] { return face->IdleWindow(), face->Get(paramDeviceEnabled) == 0.0F; }));
        face->CloseWindow();
    }
}

TEST_P(Faces, OpenTheirWindowAgainAndAgain) {
    HostWindow desktop;
    const auto face = Active();
    for (std::uint64_t i = 0; i < Scaled(200); ++i) {
        ASSERT_TRUE(face->OpenWindow(desktop.parent)) << i;
        EXPECT_EQ(desktop.Children().size(), 1U);
        face->IdleWindow();
        face->CloseWindow();
        EXPECT_TRUE(desktop.Children().empty());
    }
}

TEST_P(Faces, OpenTheirWindowAtTheHostsScaleUnlessTheUserHasChosen) {
    const TempFolder settings;
    setenv("XDG_CONFIG_HOME", settings.path.c_str(), 1);
    HostWindow desktop;
    const auto face = Active();
    const auto width = [&](double scale) {
        face->scale = scale;
        EXPECT_TRUE(face->OpenWindow(desktop.parent));
        const std::int32_t shown = face->WindowWidth();
        face->CloseWindow();
        return shown;
    };
    const std::int32_t own = width(1);
    EXPECT_EQ(width(2.5), 2 * own);
    EXPECT_TRUE(face->OpenWindow(desktop.parent));
    PreferWindowSize(300);  // open windows follow, and the host's with them
    EXPECT_TRUE(AwaitThat([&] { return face->IdleWindow(), face->WindowWidth() == 3 * own; }));
    EXPECT_EQ(face->hostWidth, 3 * own);
    face->CloseWindow();
    EXPECT_EQ(width(1), 3 * own);
    unsetenv("XDG_CONFIG_HOME");
}

const auto name = [](const auto& row) { return std::string(row.param.name); };
const Row clap{"CLAP", Make<ClapHost>}, vst3{"VST3", Make<Steinberg::Vst::Vst3Host>};
INSTANTIATE_TEST_SUITE_P(Of, Faces, testing::Values(Row{"LV2", Make<Lv2Host>}, clap, vst3), name);
INSTANTIATE_TEST_SUITE_P(Of, LaterFaces, testing::Values(clap, vst3), name);

}  // namespace
