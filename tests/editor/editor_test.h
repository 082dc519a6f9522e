#pragma once
#include "tests/editor/editor_host.h"
#include "tests/support/devices.h"
#include "tests/support/music.h"

// Where things are in the window, in its pixels. Pages begin 38 below its upper edge.
struct Place {
    int x, y;
};

// One plug-in in one host, on a display of the tests' own.
class EditorTest : public testing::Test {
protected:
    using Picture = std::vector<std::uint8_t>;

    static void SetUpTestSuite() { server = std::make_unique<DisplayServer>(); }
    static void TearDownTestSuite() { server.reset(); }

    EditorTest() {
        SubstituteMidiOut(&devices);
        host = std::make_unique<EditorHost>();
    }
    ~EditorTest() override {
        host.reset();  // gives its device back
        SubstituteMidiOut(nullptr);
    }

    // Opens at one of the pages, as the parameter numbers them.
    void Open(float page = 2) {
        host->plugin.setParameter(92, page);
        ASSERT_TRUE(host->Open());
        host->Settle();
        ground = host->Pixel(6, 318);
    }
    void Click(Place place) {
        host->Click(place.x, place.y);
        host->Settle();
    }
    void Drag(Place from, Place to) {
        host->MoveTo(from.x, from.y);
        host->Press();
        host->Settle();
        host->MoveTo(to.x, to.y);
        host->Settle();
        host->Release();
        host->Settle();
    }
    Picture Page() { return host->Pixels(0, 0, 267, 320); }
    bool MessageIsUp() { return host->Pixel(6, 318) != ground; }  // its veil darkens the window
    void EndMessage() {
        host->Key("Return");
        EXPECT_TRUE(host->Await([&] { return !MessageIsUp(); }));
    }
    // Hands over MIDI notes, or silence, in blocks as a host does.
    void Play(const std::vector<int>& notes, double seconds) {
        constexpr std::int32_t block = 441;  // samples, of 44100 a second
        for (int left = static_cast<int>(100 * seconds); left > 0; --left, played += block) {
            Audio in = Chord(notes, block, played), out(block);
            float* from = in.data();
            float* to = out.data();
            host->plugin.processReplacing(&from, &to, block);
        }
    }

    static inline std::unique_ptr<DisplayServer> server;
    FakeDevices devices;
    std::unique_ptr<EditorHost> host;
    std::uint32_t ground = 0;  // a pixel of the bare window

private:
    std::size_t played = 0;  // samples
};

constexpr Place mainButton = {45, 23}, equalizerButton = {117, 23}, optionsButton = {189, 23};
constexpr Place recordButton = {176, 285}, stopButton = {205, 285}, saveButton = {234, 285};
constexpr Place saveLogButton = {215, 291};
