// What we write, as programs that we did not write read it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <tuple>

#include "tests/midifile/midi_reader.h"
#include "tests/notes/temporary_file.h"

namespace {

// Track from 0, tick, 1 for on and 0 for off, channel from 1, pitch, velocity.
using Heard = std::tuple<unsigned, unsigned, unsigned, unsigned, unsigned, unsigned>;

struct Outcome {
    std::string text;
    int status;
};

// What a program prints, errors included; a program that is missing has a status of its own.
Outcome Run(const std::string& command) {
    Outcome outcome;
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");  // NOLINT(cert-env33-c): fixed commands
    if (pipe == nullptr) return {"", -1};
    std::array<char, 4096> piece{};
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        outcome.text.append(piece.data(), count);
    outcome.status = pclose(pipe);
    return outcome;
}

// "2, 240, Note_on_c, 0, 69, 100": tracks from 1, channels from 0.
std::vector<Heard> ReadByMidicsv(const std::string& text) {
    std::vector<Heard> heard;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        unsigned track = 0, tick = 0, channel = 0, pitch = 0, velocity = 0;
        char what[8] = {};
        if (std::sscanf(line.c_str(), "%u, %u, Note_%7[^_]_c, %u, %u, %u", &track, &tick, what, &channel,
                        &pitch, &velocity) == 6)
            heard.emplace_back(track - 1, tick, what == std::string("on"), channel + 1, pitch, velocity);
    }
    return heard;
}

// "Time=240  Note on, chan=1 pitch=69 vol=100", tracks between "Track start" and "Track end".
std::vector<Heard> ReadByMftext(const std::string& text) {
    std::vector<Heard> heard;
    std::istringstream lines(text);
    unsigned track = 0;
    for (std::string line; std::getline(lines, line);) {
        unsigned tick = 0, channel = 0, pitch = 0, velocity = 0;
        char what[8] = {};
        if (line.find("Track end") != std::string::npos) ++track;
        if (std::sscanf(line.c_str(), "Time=%u Note %7[^,], chan=%u pitch=%u vol=%u", &tick, what, &channel,
                        &pitch, &velocity) == 5)
            heard.emplace_back(track, tick, what == std::string("on"), channel, pitch, velocity);
    }
    return heard;
}

// A time well inside a MIDI tick at tempo 120, so that rounding has no say: 22050 / 240 = 91.875 to a tick.
std::uint32_t TimeOfTick(unsigned tick) {
    return static_cast<std::uint32_t>((tick + 0.5) * 91.875);
}

// A random score, and what is to be heard of it.
std::unique_ptr<TNotes> RandomScore(std::minstd_rand& random, std::vector<Heard>& expected) {
    auto score = std::make_unique<TNotes>();
    const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random()) % limit; };
    for (unsigned left = below(80); left > 0; --left) {
        const unsigned begin = below(100000), end = begin + 1 + below(3000);
        const unsigned pitch = below(128), velocity = 1 + below(127), layer = below(5),
                       channel = 1 + below(16);
        score->AddNote(TimeOfTick(begin), TimeOfTick(end), static_cast<std::uint8_t>(pitch - 24),
                       VelocityToLevel(static_cast<std::uint8_t>(velocity)),
                       static_cast<std::uint8_t>(below(128)), static_cast<std::uint8_t>(layer),
                       static_cast<std::uint8_t>(channel));
        expected.emplace_back(layer, begin, 1, channel, pitch, velocity);
        expected.emplace_back(layer, end, 0, channel, pitch, 0);
    }
    score->title = "A title, \"quoted\"";
    for (TLayerRecord& layer : score->layers) layer.name = "a track";
    std::sort(expected.begin(), expected.end());
    return score;
}

void ExpectHeard(const std::string& program, std::vector<Heard> (*read)(const std::string&)) {
    std::minstd_rand random(1);
    for (int round = 0; round < 60; ++round) {
        std::vector<Heard> expected;
        const auto score = RandomScore(random, expected);
        const TemporaryFile file(Exported(*score));
        const Outcome outcome = Run(program + " " + file.name);
        ASSERT_EQ(outcome.status, 0) << program << ": " << outcome.text;
        ASSERT_EQ(outcome.text.find("rror"), std::string::npos) << outcome.text;
        std::vector<Heard> heard = read(outcome.text);
        std::sort(heard.begin(), heard.end());
        ASSERT_EQ(heard, expected) << program << ", round " << round;
    }
}

}  // namespace

TEST(ForeignReaders, MidicsvReadsEveryNote) {
    ExpectHeard("midicsv", ReadByMidicsv);
}

TEST(ForeignReaders, MftextReadsEveryNote) {
    ExpectHeard("mftext", ReadByMftext);
}
