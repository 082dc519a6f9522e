// orva-host as somebody uses it who has not read the manual, or has odd files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "run_host.h"
#include "test_audio.h"
#include "tools/host/file_list.h"
#include "tools/host/printable.h"

namespace {

class Stranger : public testing::Test {
protected:
    void SetUp() override { WriteAudio(good, HeldNote(261.6256, 44100, 0.3, 1.0, 1.3), 44100); }

    TempFolder folder;
    std::string good = folder / "good.wav";  // middle C from 0.3 to 1.0 s
};

}  // namespace

TEST_F(Stranger, IsShownWhatWasMeant) {
    struct Row {
        std::vector<std::string> words;
        const char* answer;
    };
    const Row rows[] = {
        {{"rendr", good}, "the nearest is render"},
        {{good}, "orva-host render "},
        {{"render", good, "--tempo", "nan"}, "not a number from 10 to 1000"},
        {{"render", good, "--shortest-note", "inf"}, "not a number"},
        {{"render", good, "--param", "Sensitivity=-50"}, "Sensitivity takes 0 to 1"},
        {{"render", good, "--param", "Velocity=nan"}, "out of range"},
        {{"live", "--midi", "/no/such/folder/a.mid"}, "/no/such/folder/a.mid"},
    };
    for (const Row& row : rows) {
        const Ended ended = RunHost(row.words);
        EXPECT_NE(ended.code, 0) << row.answer;
        EXPECT_NE(ended.err.find(row.answer), std::string::npos) << ended.err;
        EXPECT_EQ(Lines(ended.err), 1) << ended.err;
    }
    EXPECT_EQ(RunHost({"--version"}).out.substr(0, 10), "orva-host ");
}

// -30 dB lie three quarters of the way from 0 to -40 dB.
TEST_F(Stranger, MayTypeWhatThePlugInShows) {
    const std::string set = RunHost({"render", "--json", good, "--param", "Sensitivity=0.75"}).out;
    EXPECT_EQ(RunHost({"render", "--json", good, "--param", "Sensitivity=-30 dB"}).out, set);
    const auto loud =
        nlohmann::json::parse(RunHost({"render", "--json", good, "--param", "Velocity=90"}).out);
    EXPECT_EQ(loud["notes"].at(0)["velocity"], 90);
}

// Writers into pipes put a number near a limit of 32 bits where the length belongs.
TEST_F(Stranger, HearsAPipeOfUnknownLengthToItsEnd) {
    std::string sound = ReadAll(good);
    const std::string whole = RunHost({"render", "--json", "/dev/stdin"}, sound).out;
    const std::string pipe = folder / "pipe";
    for (const std::uint32_t length : {0xFFFFFFFFU, 0x7FFFF000U, 0x80000000U}) {
        for (unsigned byte = 0; byte < 4; ++byte)
            sound[sound.find("data") + 4 + byte] = static_cast<char>(length >> (8 * byte));
        std::remove(pipe.c_str());
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        HostProcess host({"render", "--json", pipe});
        WriteAll(pipe, sound);
        EXPECT_EQ(host.Wait(), 0) << host.Err();
        EXPECT_EQ(nlohmann::json::parse(host.Out())["notes"], nlohmann::json::parse(whole)["notes"]);
    }
}

// The first frame of an MP3 says how long the whole is.
TEST_F(Stranger, IsShownThatAnMp3IsHalf) {
    WriteAudio(folder / "a.mp3", HeldNote(440, 44100, 0.1, 3.9, 4), 44100, 1,
               SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III);
    const std::string whole = ReadAll(folder / "a.mp3");
    WriteAll(folder / "half.mp3", whole.substr(0, whole.size() / 2));
    EXPECT_EQ(RunHost({"render", folder / "a.mp3"}).code, 0);
    const Ended half = RunHost({"render", folder / "half.mp3"});
    EXPECT_EQ(half.code, 1);
    EXPECT_NE(half.err.find("is truncated"), std::string::npos) << half.err;
}

TEST_F(Stranger, IsShownWhyNothingWasHeard) {
    std::vector<float> left(44100, 0.0F), both, opposite;
    for (const float sample : HeldNote(440, 44100, 0, 1, 1)) {
        both.insert(both.end(), {0.0F, sample});
        opposite.insert(opposite.end(), {sample, -sample});
    }
    WriteAudio(folder / "silence.wav", left, 44100);
    WriteAudio(folder / "right.wav", both, 44100, 2);
    WriteAudio(folder / "opposite.wav", opposite, 44100, 2);
    const auto errors = [&](const std::vector<std::string>& words) { return RunHost(words).err; };
    EXPECT_NE(errors({"render", folder / "silence.wav"}).find("nothing but silence"), std::string::npos);
    EXPECT_NE(errors({"render", folder / "right.wav"}).find("--mix"), std::string::npos);
    EXPECT_NE(errors({"render", "--mix", folder / "opposite.wav"}).find("cancel"), std::string::npos);
    EXPECT_EQ(errors({"render", good}), "");
}

TEST_F(Stranger, HasFilesWithAnyNames) {
    EXPECT_EQ(Printable("a\x1b[2Jb\n\xc2\x9b\xff \xc3\xa9\\"), "a\\x1b[2Jb\\x0a\\xc2\\x9b\\xff \xc3\xa9\\");
    EXPECT_EQ(Printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");  // a surrogate
    const auto failed = nlohmann::json::parse(RunHost({"render", "--json", folder / "no\xff"}).out);
    EXPECT_EQ(failed["error"], "no such file");
    EXPECT_EQ(
        failed["file_bytes"].get<std::string>().substr(failed["file_bytes"].get<std::string>().size() - 6),
        "6e6fff");
    using Names = std::vector<std::string>;
    EXPECT_EQ(SplitFileList("\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:1\r\na.wav\r\n"), Names{"a.wav"});
    EXPECT_EQ(SplitFileList("#1.wav\r\n"), Names{"#1.wav"});
    EXPECT_NE(RunHost({"render", "-"}, ReadAll(good)).err.find("/dev/stdin"), std::string::npos);
}
