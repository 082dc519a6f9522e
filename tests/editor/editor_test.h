#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "tests/editor/editor_host.h"

// One plug-in in one host, on a display of the tests' own.
class EditorTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server = std::make_unique<DisplayServer>(); }
    static void TearDownTestSuite() { server.reset(); }

    EditorTest() : host(std::make_unique<EditorHost>()) {}

    // Tones that the plug-in hears as notes: sines in blocks, as a host hands them over.
    void Play(std::initializer_list<double> hertz, double seconds) {
        constexpr double rate = 44100;
        constexpr int block = 441;
        std::vector<float> in(block), out(block);
        const int blocks = static_cast<int>(seconds * rate) / block;
        for (int b = 0; b < blocks; ++b) {
            for (int i = 0; i < block; ++i) {
                double sum = 0;
                for (const double tone : hertz)
                    sum += 0.2 * std::sin(2 * std::numbers::pi * tone * (played + i) / rate);
                in[static_cast<std::size_t>(i)] = static_cast<float>(sum);
            }
            float* from = in.data();
            float* to = out.data();
            host->plugin.processReplacing(&from, &to, block);
            played += block;
        }
    }

    static inline std::unique_ptr<DisplayServer> server;
    std::unique_ptr<EditorHost> host;

private:
    int played = 0;  // samples
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
