#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "tests/editor/editor_host.h"
#include "tests/support/tones.h"

// One plug-in in one host, on a display of the tests' own.
class EditorTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server = std::make_unique<DisplayServer>(); }
    static void TearDownTestSuite() { server.reset(); }

    EditorTest() : host(std::make_unique<EditorHost>()) {}

    // Hands over MIDI notes, or silence, in blocks as a host does.
    void Play(const std::vector<int>& notes, double seconds) {
        constexpr std::int32_t block = 441;  // samples, of 44100 a second
        for (int left = static_cast<int>(100 * seconds); left > 0; --left, played += block) {
            std::vector<float> in = Chord(notes, block, played), out(block);
            float* from = in.data();
            float* to = out.data();
            host->plugin.processReplacing(&from, &to, block);
        }
    }

    static inline std::unique_ptr<DisplayServer> server;
    std::unique_ptr<EditorHost> host;

private:
    std::size_t played = 0;  // samples
};

// Where things are in the window, in its pixels. Pages begin 38 below its upper edge.
struct Place {
    int x, y;
};
constexpr Place mainButton = {45, 23}, equalizerButton = {117, 23}, optionsButton = {189, 23},
                aboutButton = {261, 23}, helpButton = {363, 23};
constexpr Place recordButton = {176, 285}, stopButton = {205, 285}, saveButton = {234, 285};
constexpr Place nameLabel = {200, 71}, versionLabel = {200, 91};
constexpr Place barsOff = {30, 279}, barsHalf = {130, 279}, barsFull = {235, 279};
constexpr Place saveLogButton = {215, 291}, registerButton = {45, 291};
constexpr Place chordPlate = {280, 60};  // within the chord's label, where no letter reaches
