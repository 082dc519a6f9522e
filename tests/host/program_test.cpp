// The real program, as a shell starts it: what it prints, what it leaves, and with which code it ends.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "run_host.h"
#include "test_audio.h"
#include "tests/support/picture_file.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using FileNames = std::multiset<std::string>;

class Program : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"one/a.wav", "one/b c.wav", "two/a.wav"}) {
            files.push_back(folder / name);
            fs::create_directories(fs::path(files.back()).parent_path());
            WriteAudio(files.back(), OneNote(middleC, 44100, 0.3, 1.0, 1.3), 44100);
        }
    }
    static void ExpectOneLine(const Ended& ended, const std::string& reason) {
        EXPECT_TRUE(ended.err.starts_with("orva-host: ") && Contains(ended.err, reason) &&
                    ended.err.find('\n') == ended.err.size() - 1)
            << reason << " is not in one line: " << ended.err;
        EXPECT_FALSE(Contains(ended.err, "\x1B"));
    }
    Json NotesOf(const std::string& recording, Arguments options = {}) {
        options.insert(options.begin(), {"render", "--json", recording});
        const Ended ended = RunHost(options);
        EXPECT_EQ(ended.code, 0) << ended.err;
        return Json::parse(ended.out)["notes"];
    }
    // The files of the lines that were or were not skipped.
    static FileNames Named(const Ended& ended, bool skipped = false) {
        FileNames names;
        std::istringstream lines(ended.out);
        for (std::string line; std::getline(lines, line);) {
            const Json object = Json::parse(line);
            if (object.contains("skipped") == skipped && !object.contains("error"))
                names.insert(object["file"]);
        }
        return names;
    }

    TempFolder folder;
    Arguments files;                                // middle C from 0.3 to 1.0 s
    const std::string good = folder / "one/a.wav";  // the first of them
};

TEST_F(Program, NamesTheFileAndTheReasonAndGoesOn) {
    WriteAll(folder / "notes.txt", "these are words, not audio");
    fs::create_directories(folder / "empty/.hidden");
    WriteAudio(folder / "fast.wav", Audio(4000), 384000);
    WriteAudio(folder / "half.ogg", Noise(44100, 3), 44100, 1, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    WriteAll(folder / "half.wav", ReadAll(good).substr(0, 50000));
    fs::resize_file(folder / "half.ogg", fs::file_size(folder / "half.ogg") / 2);
    const std::pair<const char*, const char*> faults[] = {{"missing.wav", "no such file"},
                                                          {"empty", "is a folder, with no recordings in it"},
                                                          {"notes.txt", "cannot be read as audio"},
                                                          {"fast.wav", "384000 Hz"},
                                                          {"half.wav", "is truncated"},
                                                          {"half.ogg", "is truncated"}};
    for (const auto& [name, reason] : faults) {  // one line about it, and the others are done
        const Ended ended = RunHost({"render", "--json", good, folder / name, good});
        EXPECT_EQ(ended.code, 1) << name;
        ExpectOneLine(ended, (folder / name) + ": ");
        ExpectOneLine(ended, reason);
        EXPECT_EQ(Named(ended).count(good), 2U) << name;
    }
}

TEST_F(Program, ShowsOnATerminalHowFarAllFilesHaveCome) {
    setenv("TERM", "xterm", 1);
    const std::string sound = ORVA_RECORDINGS "/bass_line.ogg ";
    const Arguments words = {ORVA_HOST_PROGRAM " render " + sound + sound + "> /dev/null", folder / "screen"};
    EXPECT_EQ(Process("script -qec \"$1\" \"$2\" > /dev/null", words).Wait(), 0);
    EXPECT_THAT(ReadAll(folder / "screen"), testing::ContainsRegex(" 50%.*100%\r\033\\[K"));
}

// Writers into pipes put a number near a limit of 32 bits where the length belongs.
TEST_F(Program, HearsAPipeOfUnknownLengthToItsEnd) {
    std::string sound = ReadAll(good);
    sound.replace(sound.find("data") + 4, 4, "\xFF\xFF\xFF\xFF");
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    HostProcess host({"render", "--json", pipe});
    WriteAll(pipe, sound);
    EXPECT_EQ(host.Wait(), 0) << host.Err();
    EXPECT_EQ(Json::parse(host.Out())["notes"], NotesOf(good));
}

TEST_F(Program, ReportsWhatCannotBeDoneAndRefusesWrongUsageInOneLine) {
    WriteAll(folder / "text.so", "not a module");
    WriteAudio(folder / "silence.wav", Audio(44100), 44100);
    const std::size_t before = folder.Files();
    const struct {
        int code;
        Arguments arguments;
        const char* reason;
    } rows[] = {
        {1, {"render", good, "--plugin", folder / "text.so"}, "text.so: "},
        {1, {"render", folder / "two\nlines\x1B[2J.wav"}, "lines"},
        {1, {"render", "--list", good}, "one/a.wav: is sound"},
        {1, {"shot", "main", folder / "main.png"}, "there is no X display"},
        {2, {"rendr", good}, "the nearest is render"},
        {2, {"render", good, "--tempo", "nan"}, "not a number from 10 to 1000"},
        {2, {"render", good, "--param", "Sensitivity=-50"}, "Sensitivity takes 0 to 1"},
        {2, {"render", good, "--events", good}, ""},
    };
    for (const auto& [code, arguments, reason] : rows) {
        const Ended ended = RunHost(arguments);
        EXPECT_EQ(ended.code, code) << testing::PrintToString(arguments);
        EXPECT_EQ(code == 2 ? ended.out : "", "");
        ExpectOneLine(ended, reason);
    }
    EXPECT_EQ(folder.Files(), before);  // nothing has been written
    ExpectOneLine(RunHost({"render", folder / "silence.wav"}), "nothing but silence");
}

TEST_F(Program, ShowsWhatThePlugInReportsOfItself) {
    const std::string shown = RunHost({"info", "--plugin", ORVA_MODULE}).out;
    for (const std::string line :
         {"version       1, the vendor's 5632", "interface     VST 2.4", "channels      1 in, 1 out",
          "flags         has a window, replacing process, double precision", "can do        sendVstMidiEvent",
          "file          " ORVA_MODULE,
          "     95  Send Program Change     Send Program Change         0  false                   no"})
        EXPECT_TRUE(Contains(shown, '\n' + line + '\n')) << line;
}

TEST_F(Program, PassesItsSettingsOnToThePlugIn) {
    EXPECT_EQ(NotesOf(good, {"--param", "velocity=0.5"}).at(0)["velocity"], 63);  // int(0.5 * 127)
    // A starting point shuts out what its instrument cannot play: C3 lies below a flute. It is parameter
    // 3 + 48 - 24 that opens its bar, and parameters have the last word.
    const std::string low = folder / "low.wav", C3 = "\"midi\":48";
    WriteAudio(low, OneNote(middleC / 2, 44100, 0.3, 1.0, 1.3), 44100);
    EXPECT_FALSE(Contains(NotesOf(low, {"--for", "flute"}).dump(), C3));
    EXPECT_TRUE(Contains(NotesOf(low, {"--param", "27=1", "--for", "flute"}).dump(), C3));
    EXPECT_FALSE(Contains(NotesOf(low, {"--preset", ORVA_PRESETS "/Flute.fxp"}).dump(), C3));
    EXPECT_TRUE(Contains(NotesOf(low, {"--preset", ORVA_PRESETS "/Voice.fxp"}).dump(), C3));
    ExpectOneLine(RunHost({"render", low, "--preset", low}), "not a preset of this plug-in");

    // 46 dB down it lies below the floor of -35 dB; brought nearer to full level it is heard.
    const std::string faint = folder / "faint.wav";
    Audio soft = OneNote(middleC, 44100, 0.3, 1.0, 1.3);
    for (float& sample : soft) sample /= 200;
    WriteAudio(faint, soft, 44100);
    EXPECT_TRUE(NotesOf(faint, {"--ear", "classic"}).empty());
    EXPECT_EQ(NotesOf(faint, {"--ear", "classic", "--level", "auto"}).at(0)["name"], "C4");

    // Amplitude 1/4 is power 1/16, whose fourth root is 1/2: the softer note has half the velocity.
    const Audio loud = OneNote(middleC, 44100, 0.3, 0.8, 1.5);
    Audio both = loud, right;  // right: its left channel is silent
    for (const float sample : loud) both.push_back(sample / 4);
    WriteAudio(folder / "both.wav", both, 44100);
    EXPECT_EQ(NotesOf(folder / "both.wav").at(0)["velocity"], 100);
    EXPECT_NEAR(int{NotesOf(folder / "both.wav").at(1)["velocity"]}, 50, 2);
    for (const float sample : loud) right.insert(right.end(), {0.0F, sample});
    WriteAudio(folder / "right.wav", right, 44100, 2);
    EXPECT_EQ(NotesOf(folder / "right.wav", {"--mix"}).at(0)["name"], "C4");
    ExpectOneLine(RunHost({"render", folder / "right.wav"}), "--mix");
}

TEST_F(Program, HearsTheFilesOfListsAndOnlyThoseThatAreNotDone) {
    const std::string bad = folder / "bad.wav", two = files[1] + '\n' + files[2] + '\n',
                      out = folder / "out/";
    const FileNames all(files.begin(), files.end());
    WriteAll(folder / "list", "\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:1\r\n" + two);
    EXPECT_EQ(Named(RunHost({"render", "--json", files[0], "--list", folder / "list"})), all);

    WriteAll(bad, "no sound");
    const std::string list = files[0] + '\n' + bad + '\n' + two;
    const auto resume = [&] {
        const Ended ended = RunHost({"render", "--list", "-", "--json", "--midi", out + "{dir}/{name}.mid",
                                     "--resume", "--jobs", "2"},
                                    list);
        EXPECT_EQ(ended.code, 1);
        ExpectOneLine(ended, bad);
        return ended;
    };
    EXPECT_EQ(Named(resume()), all);
    const Ended again = resume();  // the bad one once more, and nothing else
    EXPECT_EQ(Named(again), FileNames());
    EXPECT_EQ(Named(again, true), all);
    const std::string second = out + (folder / "one/b c.mid"), third = out + (folder / "two/a.mid");
    fs::remove(second);
    fs::last_write_time(files[2], fs::last_write_time(third) + std::chrono::seconds(1));
    EXPECT_EQ(Named(resume()), (FileNames{files[1], files[2]}));
    EXPECT_TRUE(fs::exists(second));
}

TEST_F(Program, DrawsTheNotesOverThoseThatWerePlayed) {
    const std::string music = ORVA_RECORDINGS "/piano_chords";
    setenv("LSAN_OPTIONS", "detect_leaks=0", 1);  // the font library keeps its configuration
    EXPECT_EQ(
        RunHost({"render", music + ".ogg", "--picture", folder / "notes.png", "--played", music + ".mid"})
            .code,
        0);
    unsetenv("LSAN_OPTIONS");
    constexpr int letters = 5000;  // which are the system's, and may be other ones
    EXPECT_LT(PixelsOff(PixelsOf(folder / "notes.png"), PixelsOf(ORVA_DOCUMENTS "/piano_chords.png")),
              letters)
        << "docs/make-pictures makes it anew";
}

}  // namespace
