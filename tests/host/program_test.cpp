// The real program, as a shell starts it: what it prints, what it leaves, and with which code it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "run_host.h"
#include "test_audio.h"

namespace {

using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::ResultOf;
using testing::StartsWith;

constexpr double middleC = 261.6256;  // Hz, equal temperament at A 440

class Program : public testing::Test {
protected:
    void SetUp() override { WriteAudio(good, HeldNote(middleC, 44100, 0.3, 1.0, 1.3), 44100); }

    // One bad file between two good ones: one line about it, and the others are done.
    void ExpectFailure(const std::string& bad, const std::string& reason) {
        const Ended ended = RunHost({"render", "--json", good, bad, good});
        EXPECT_EQ(ended.code, 1) << bad;
        EXPECT_THAT(ended.err, MatchesOneLine(bad + ": ", reason));
        EXPECT_EQ(Lines(ended.out), 2) << bad;
    }
    static testing::Matcher<std::string> MatchesOneLine(const std::string& begin, const std::string& reason) {
        return AllOf(StartsWith("orva-host: " + begin), HasSubstr(reason), ResultOf(Lines, 1));
    }

    // What is told of the recording in JSON.
    Json Told(const std::string& recording, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"render", "--json", recording});
        const Ended ended = RunHost(options);
        EXPECT_EQ(ended.code, 0) << ended.err;
        return Json::parse(ended.out);
    }

    TempFolder folder;
    std::string good = folder / "good.wav";  // middle C from 0.3 to 1.0 s
};

}  // namespace

TEST_F(Program, NamesTheFileAndTheReasonAndGoesOn) {
    WriteAll(folder / "notes.txt", "these are words, not audio");
    WriteAll(folder / "empty.wav", "");
    WriteAll(folder / "header.wav", ReadAll(good).substr(0, 30));
    WriteAudio(folder / "slow.wav", std::vector<float>(4000), 4000);
    WriteAudio(folder / "fast.wav", std::vector<float>(4000), 384000);
    ExpectFailure(folder / "missing.wav", "no such file");
    ExpectFailure(folder.path.string(), "folder");
    for (const char* const name : {"notes.txt", "empty.wav", "header.wav"})
        ExpectFailure(folder / name, "cannot be read as audio");
    ExpectFailure(folder / "slow.wav", "4000 Hz");
    ExpectFailure(folder / "fast.wav", "384000 Hz");
}

TEST_F(Program, NoticesAFileThatHasLostItsEnd) {
    const std::vector<float> sound = HeldNote(middleC, 44100, 0.1, 2.9, 3.0);
    const std::vector<std::pair<std::string, int>> kinds = {{"a.wav", formatWav16},
                                                            {"a.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
                                                            {"a.au", SF_FORMAT_AU | SF_FORMAT_PCM_16},
                                                            {"a.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16},
                                                            {"a.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16},
                                                            {"a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                                                            {"a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS}};
    for (const auto& [name, format] : kinds) {
        WriteAudio(folder / name, sound, 44100, 1, format);
        EXPECT_EQ(RunHost({"render", folder / name}).code, 0) << name;
        std::filesystem::resize_file(folder / name, std::filesystem::file_size(folder / name) / 2);
        ExpectFailure(folder / name, "is truncated");
    }
}

// Who writes into a pipe cannot fill in the length afterwards, and states the greatest one.
TEST_F(Program, TakesAStreamedFileForWhole) {
    std::string bytes = ReadAll(good);
    bytes.replace(4, 4, "\xFF\xFF\xFF\xFF");
    bytes.replace(40, 4, "\xFF\xFF\xFF\xFF");  // of the data chunk, behind 40 bytes of header
    WriteAll(folder / "streamed.wav", bytes);
    EXPECT_EQ(Told(folder / "streamed.wav")["notes"], Told(good)["notes"]);
}

TEST_F(Program, ARecordingOfNoLengthHasNoNotes) {
    const std::string nothing = folder / "nothing.wav";
    WriteAudio(nothing, {}, 48000);
    EXPECT_EQ(RunHost({"render", "--json", nothing}).out,
              "{\"file\":\"" + nothing + "\",\"rate\":48000,\"seconds\":0.0,\"notes\":[],\"chords\":[]}\n");
}

TEST_F(Program, WhatCannotBeDoneIsToldInOneLine) {
    WriteAll(folder / "text.so", "not a module");
    const std::string display = "there is no X display";
    const std::vector<std::pair<std::vector<std::string>, std::string>> faults = {
        {{"render", good, "--plugin", folder / "missing.so"}, "missing.so: "},
        {{"render", good, "--plugin", folder / "text.so"}, "text.so: "},
        {{"render", good, "--events", folder / "no/folder.csv"}, "folder.csv"},
        {{"render", folder / "two\nlines\x1B[2J.wav"}, "lines"},
        {{"edit"}, display},
        {{"shot", "main", folder / "main.png"}, display},
    };
    for (const auto& [arguments, reason] : faults) {
        const Ended ended = RunHost(arguments);
        EXPECT_EQ(ended.code, 1) << reason;
        EXPECT_THAT(ended.err, AllOf(MatchesOneLine("", reason), Not(HasSubstr("\x1B"))));
    }
}

TEST_F(Program, RefusesACommandLineThatMakesNoSense) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"sing"},
        {"render"},
        {"render", good, "--block", "0"},
        {"render", good, "--block", "many"},
        {"render", good, "--jobs", "-1"},
        {"render", good, "--no-such-option"},
        {"render", good, "--param", "Polyphony"},
        {"render", good, "--param", "Polyphony=loud"},
        {"render", good, "--param", "Polyphony=nan"},
        {"render", good, "--param", "Loudness=0.5"},
        {"render", good, "--param", "96=0.5"},
        {"render", good, "--param", "-1=0.5"},
        {"render", good, "--for", "kazoo"},
        {"render", good, good, "--events", folder / "out.csv"},
        {"render", good, "--events", good},
        {"render", good, "--resume"},
        {"render", "-", "--list", "-"},
        {"info", "--plugin"},
        {"shot", "garden", folder / "main.png"},
    };
    for (const std::vector<std::string>& arguments : wrong) {
        const Ended ended = RunHost(arguments);
        const std::string shown = testing::PrintToString(arguments);
        EXPECT_EQ(ended.code, 2) << shown;
        EXPECT_EQ(ended.out, "") << shown;
        EXPECT_THAT(ended.err, MatchesOneLine("", "")) << shown;
    }
    EXPECT_EQ(folder.Files(), 1U);  // nothing has been written
    EXPECT_EQ(RunHost({"--help"}).code, 0);
    EXPECT_EQ(RunHost({"render", "--help"}).code, 0);
}

TEST_F(Program, ParametersAreSetByNameOrIndex) {
    const auto velocity = [&](const char* setting) -> int {
        return Told(good, {"--param", setting})["notes"].at(0)["velocity"];
    };
    EXPECT_EQ(velocity("velocity=0.5"), 63);  // int(0.5 * 127)
    EXPECT_EQ(velocity("2=1"), 127);
    EXPECT_EQ(velocity("2=0.1"), 12);
}

// C3 lies below a flute. It is parameter 3 + 48 - 24 that opens its bar.
TEST_F(Program, AStartingPointShutsOutWhatItsInstrumentCannotPlayButParametersHaveTheLastWord) {
    const std::string low = folder / "low.wav";
    WriteAudio(low, HeldNote(middleC / 2, 44100, 0.3, 1.0, 1.3), 44100);
    const auto hears = [&](const std::vector<std::string>& settings) {
        return Told(low, settings)["notes"].dump().find("\"midi\":48") != std::string::npos;
    };
    EXPECT_TRUE(hears({}));
    EXPECT_TRUE(hears({"--for", "bass"}));
    EXPECT_FALSE(hears({"--for", "flute"}));
    EXPECT_TRUE(hears({"--for", "flute", "--param", "27=1"}));
    EXPECT_TRUE(hears({"--param", "27=1", "--for", "flute"}));
}

// One host takes no event dated before its block. Told that it is that host, the plug-in leaves out the delay
// of the band by which it dates events back: three frames and 10 ms, and for each of the 47 bands between
// middle C and the top 1.11565 / 84 / 0.02 ms, which makes 71.2 ms.
TEST_F(Program, TellsThePluginWhichHostItIs) {
    const auto start = [&](const char* vendor) -> double {
        return Told(good, {"--host-vendor", vendor})["notes"].at(0)["start"];
    };
    EXPECT_NEAR(start("Ableton") - start("ORVA"), 0.0712, 0.0001);
}

TEST_F(Program, TheFirstChannelIsHeardOrTheMix) {
    const std::vector<float> note = HeldNote(middleC, 44100, 0.3, 1.0, 1.3);
    std::vector<float> right;  // the left channel is silent
    for (const float sample : note) right.insert(right.end(), {0.0F, sample});
    WriteAudio(folder / "right.wav", right, 44100, 2);
    EXPECT_EQ(Told(folder / "right.wav")["notes"].size(), 0U);
    const Json mix = Told(folder / "right.wav", {"--mix"})["notes"];
    ASSERT_EQ(mix.size(), 1U);
    EXPECT_EQ(mix[0]["name"], "C4");
}

TEST_F(Program, EventsAreWrittenBesideTheTable) {
    std::filesystem::copy_file(good, folder / "other.wav");
    std::filesystem::create_directory(folder / "events");
    const Ended ended = RunHost({"render", good, folder / "other.wav", "--events", folder / "events"});
    EXPECT_EQ(ended.code, 0) << ended.err;
    const std::string csv = ReadAll(folder / "events/good.csv");
    EXPECT_THAT(csv, StartsWith("time,sample,status,data1,data2,kind\n"));
    EXPECT_THAT(csv, HasSubstr(",144,60,100,note on\n"));
    EXPECT_THAT(csv, HasSubstr(",128,60,0,note off\n"));
    EXPECT_EQ(ReadAll(folder / "events/other.csv"), csv);
}

// Tables come in the order of the files, however many are at work and however short the later ones are.
TEST_F(Program, SeveralJobsPrintTheSame) {
    std::vector<std::string> one = {"render", "--jobs", "1", good, folder / "missing.wav"};
    for (int semitone = 0; semitone < 6; ++semitone) {
        one.push_back(folder / (std::to_string(semitone) + ".wav"));
        WriteAudio(one.back(),
                   HeldNote(middleC * std::exp2(semitone / 12.0), 44100, 0.3, 1.0, 1.3 - 0.04 * semitone),
                   44100);
    }
    std::vector<std::string> three = one;
    three[2] = "3";
    const Ended alone = RunHost(one), together = RunHost(three);
    EXPECT_EQ(alone.code, 1);
    EXPECT_EQ(alone.err, "orva-host: " + (folder / "missing.wav") + ": no such file\n");
    EXPECT_EQ(together.err, alone.err);
    EXPECT_THAT(alone.out, HasSubstr("5.wav"));
    EXPECT_EQ(together.out, alone.out);
}

TEST_F(Program, InfoTellsAllThatThePluginSays) {
    const Json facts = Json::parse(RunHost({"info", "--json"}).out);
    EXPECT_EQ(facts["name"], "ORVA Audio To MIDI");
    EXPECT_EQ(facts["vendor"], "ORVASOFT");
    EXPECT_EQ(facts["uniqueId"], "ORV1");
    EXPECT_EQ(facts["category"], "analysis");
    EXPECT_EQ(facts["inputs"], 1);
    EXPECT_EQ(facts["outputs"], 1);
    EXPECT_EQ(facts["canDo"]["sendVstMidiEvent"], 1);
    ASSERT_EQ(facts["parameters"].size(), 96U);
    EXPECT_EQ(facts["parameters"][2]["label"], "MIDI Velocity");
    EXPECT_EQ(facts["parameters"][1]["display"], "-35 dB");
    EXPECT_EQ(facts["parameters"][86]["name"], "Equalizer bar H 8");

    const std::string table = RunHost({"info"}).out;
    for (const Json& parameter : facts["parameters"])
        EXPECT_THAT(table, HasSubstr(parameter["name"].get<std::string>()));
}
