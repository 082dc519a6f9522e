// The real program, as a shell starts it: what it prints, what it leaves, and with which code it ends.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "run_host.h"
#include "test_audio.h"
#include "tests/support/midi_reader.h"

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
            WriteAudio(files.back(), HeldNote(middleC, 44100, 0.3, 1.0, 1.3), 44100);
        }
    }
    static void ExpectOneLine(const Ended& ended, const std::string& reason) {
        EXPECT_TRUE(ended.err.starts_with("orva-host: ") && Contains(ended.err, reason) &&
                    Lines(ended.err) == 1)
            << reason << " is not in one line: " << ended.err;
        EXPECT_FALSE(Contains(ended.err, "\x1B"));
    }
    // One bad file between two good ones: one line about it, and the others are done.
    void ExpectFailure(const std::string& bad, const std::string& reason) {
        const Ended ended = RunHost({"render", "--json", good, bad, good});
        EXPECT_EQ(ended.code, 1) << bad;
        ExpectOneLine(ended, bad + ": ");
        ExpectOneLine(ended, reason);
        EXPECT_EQ(Lines(ended.out), 3) << bad;  // its own line among them
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
    WriteAll(folder / "header.wav", ReadAll(good).substr(0, 30));
    fs::create_directories(folder / "empty/.hidden");
    WriteAudio(folder / "slow.wav", Audio(4000), 4000);
    WriteAudio(folder / "fast.wav", Audio(4000), 384000);
    const std::pair<const char*, const char*> faults[] = {{"missing.wav", "no such file"},
                                                          {"empty", "is a folder, with no recordings in it"},
                                                          {"notes.txt", "cannot be read as audio"},
                                                          {"header.wav", "cannot be read as audio"},
                                                          {"slow.wav", "4000 Hz"},
                                                          {"fast.wav", "384000 Hz"}};
    for (const auto& [name, reason] : faults) ExpectFailure(folder / name, reason);

    // A file that has lost its end, in each format that states its length.
    const std::pair<const char*, int> kinds[] = {{"a.wav", formatWav16},
                                                 {"a.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
                                                 {"a.au", SF_FORMAT_AU | SF_FORMAT_PCM_16},
                                                 {"a.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16},
                                                 {"a.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16},
                                                 {"a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                                                 {"a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                                                 {"a.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}};
    for (const auto& [name, format] : kinds) {
        WriteAudio(folder / name, HeldNote(middleC, 44100, 0.1, 2.9, 3.0), 44100, 1, format);
        EXPECT_EQ(RunHost({"render", folder / name}).code, 0) << name;
        fs::resize_file(folder / name, fs::file_size(folder / name) / 2);
        const Ended half = RunHost({"render", folder / name});
        EXPECT_EQ(half.code, 1) << name;
        EXPECT_TRUE(Contains(half.err, "is truncated")) << half.err;  // a decoder may warn, too
    }
    WriteAudio(folder / "nothing.wav", {}, 48000);
    EXPECT_EQ(NotesOf(folder / "nothing.wav").size(), 0U);
}

// Writers into pipes put a number near a limit of 32 bits where the length belongs.
TEST_F(Program, HearsAFileOrPipeOfUnknownLengthToItsEnd) {
    std::string sound = ReadAll(good);
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::uint32_t length : {0xFFFFFFFFU, 0x7FFFF000U, 0x80000000U}) {
        for (unsigned byte = 0; byte < 4; ++byte)
            sound[sound.find("data") + 4 + byte] = static_cast<char>(length >> (8 * byte));
        WriteAll(folder / "streamed.wav", sound);
        EXPECT_EQ(NotesOf(folder / "streamed.wav"), NotesOf(good));
        HostProcess host({"render", "--json", pipe});
        WriteAll(pipe, sound);
        EXPECT_EQ(host.Wait(), 0) << host.Err();
        EXPECT_EQ(Json::parse(host.Out())["notes"], NotesOf(good));
    }
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
        {1, {"render", good, "--events", folder / "no/folder.csv"}, "folder.csv"},
        {1, {"live", "--midi", "/no/such/folder/a.mid"}, "/no/such/folder/a.mid"},
        {1, {"render", folder / "two\nlines\x1B[2J.wav"}, "lines"},
        {1, {"render", "--list", folder / "no list"}, "no list"},
        {1, {"shot", "main", folder / "main.png"}, "there is no X display"},
        {2, {}, ""},
        {2, {"rendr", good}, "the nearest is render"},
        {2, {good}, "orva-host render "},
        {2, {"shot", "garden", folder / "main.png"}, ""},
        {2, {"render", good, "--block", "0"}, ""},
        {2, {"render", good, "--no-such-option"}, ""},
        {2, {"render", good, "--tempo", "nan"}, "not a number from 10 to 1000"},
        {2, {"render", good, "--shortest-note", "inf"}, "not a number"},
        {2, {"render", good, "--param", "Polyphony=loud"}, ""},
        {2, {"render", good, "--param", "Sensitivity=-50"}, "Sensitivity takes 0 to 1"},
        {2, {"render", good, "--param", "Velocity=nan"}, "out of range"},
        {2, {"render", good, "--param", "96=0.5"}, ""},
        {2, {"render", good, "--for", "kazoo"}, ""},
        {2, {"render", good, "--meter", "3/5"}, ""},
        {2, {"render", good, "--bar-one", "nan"}, ""},
        {2, {"render", good, good, "--events", folder / "out.csv"}, ""},
        {2, {"render", good, "--events", good}, ""},
        {2, {"render", good, "--resume"}, ""},
        {2, {"render", "-", "--list", "-"}, ""},
    };
    for (const auto& [code, arguments, reason] : rows) {
        const Ended ended = RunHost(arguments);
        EXPECT_EQ(ended.code, code) << testing::PrintToString(arguments);
        EXPECT_EQ(code == 2 ? ended.out : "", "");
        ExpectOneLine(ended, reason);
    }
    EXPECT_EQ(folder.Files(), before);  // nothing has been written
    EXPECT_EQ(RunHost({"render", "--help"}).code, 0);
    EXPECT_EQ(RunHost({"--version"}).out.substr(0, 10), "orva-host ");
    EXPECT_TRUE(Contains(RunHost({"render", "-"}, ReadAll(good)).err, "/dev/stdin"));
    ExpectOneLine(RunHost({"render", folder / "silence.wav"}), "nothing but silence");
}

TEST_F(Program, PassesItsSettingsOnToThePlugIn) {
    const auto first = [&](const Arguments& options, const char* what) -> double {
        return NotesOf(good, options).at(0)[what];
    };
    EXPECT_EQ(first({"--param", "velocity=0.5"}, "velocity"), 63);  // int(0.5 * 127)
    EXPECT_EQ(first({"--param", "2=1"}, "velocity"), 127);
    // One host takes no event dated before its block. With that host's name, the plug-in leaves out the delay
    // of the band by which it dates events back: three frames and 10 ms, and for each of the 47 bands between
    // middle C and the top 1.11565 / 84 / 0.02 ms, which makes 71.2 ms.
    EXPECT_NEAR(first({"--ear", "classic", "--host-vendor", "Ableton"}, "start") -
                    first({"--ear", "classic"}, "start"),
                0.0712, 0.0001);

    // What the plug-in shows may be typed: -30 dB lie three quarters of the way from 0 to -40 dB.
    EXPECT_EQ(NotesOf(good, {"--param", "Sensitivity=-30 dB"}),
              NotesOf(good, {"--param", "Sensitivity=0.75"}));
    EXPECT_EQ(first({"--param", "Velocity=90"}, "velocity"), 90);

    // A starting point shuts out what its instrument cannot play: C3 lies below a flute. It is parameter
    // 3 + 48 - 24 that opens its bar, and parameters have the last word.
    const std::string low = folder / "low.wav";
    WriteAudio(low, HeldNote(middleC / 2, 44100, 0.3, 1.0, 1.3), 44100);
    const auto hears = [&](const Arguments& settings) {
        return Contains(NotesOf(low, settings).dump(), "\"midi\":48");
    };
    EXPECT_FALSE(hears({"--for", "flute"}));
    EXPECT_TRUE(hears({"--param", "27=1", "--for", "flute"}));

    Audio right, opposite;  // the left channel is silent, or the right one upside down
    for (const float sample : HeldNote(middleC, 44100, 0.3, 1.0, 1.3)) {
        right.insert(right.end(), {0.0F, sample});
        opposite.insert(opposite.end(), {sample, -sample});
    }
    WriteAudio(folder / "right.wav", right, 44100, 2);
    WriteAudio(folder / "opposite.wav", opposite, 44100, 2);
    EXPECT_EQ(NotesOf(folder / "right.wav", {"--mix"}).at(0)["name"], "C4");
    ExpectOneLine(RunHost({"render", folder / "right.wav"}), "--mix");
    ExpectOneLine(RunHost({"render", "--mix", folder / "opposite.wav"}), "cancel");
    EXPECT_EQ(RunHost({"render", good}).err, "");
}

TEST_F(Program, HearsTheFilesOfListsAndOnlyThoseThatAreNotDone) {
    const std::string bad = folder / "bad.wav", two = files[1] + '\n' + files[2] + '\n';
    const FileNames all(files.begin(), files.end());
    WriteAll(folder / "list", two);
    EXPECT_EQ(Named(RunHost({"render", "--json", files[0], "--list", folder / "list"})), all);
    EXPECT_EQ(Named(RunHost({"render", "--json", files[0], "-"}, two)), all);
    EXPECT_EQ(RunHost({"render", "--json", "-"}).code, 0);  // none
    const auto failed = Json::parse(RunHost({"render", "--json", folder / "no\xff"}).out);
    EXPECT_TRUE(failed["file_bytes"].get<std::string>().ends_with("6e6fff"));  // any name can be read back

    WriteAll(bad, "no sound");
    const std::string list = files[0] + '\n' + bad + '\n' + two;
    const auto resume = [&] {
        const Ended ended = RunHost(
            {"render", "--list", "-", "--json", "--midi", "{dir}/{name}.mid", "--resume", "--jobs", "2"},
            list);
        EXPECT_EQ(ended.code, 1);
        ExpectOneLine(ended, bad);
        return ended;
    };
    EXPECT_EQ(Named(resume()), all);
    const Ended again = resume();  // the bad one once more, and nothing else
    EXPECT_EQ(Named(again), FileNames());
    EXPECT_EQ(Named(again, true), all);
    const std::string second = folder / "one/b c.mid", third = folder / "two/a.mid";
    fs::remove(second);
    fs::last_write_time(files[2], fs::last_write_time(third) + std::chrono::seconds(1));
    EXPECT_EQ(Named(resume()), (FileNames{files[1], files[2]}));
    EXPECT_TRUE(fs::exists(second));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "one"), {}), 4);  // no drafts
}

// Tables come in the order of the files, however many are at work and however short the later ones are.
TEST_F(Program, PrintsTablesInOrderAndWritesFilesBeside) {
    Arguments one = {"render", "--jobs", "1", good, folder / "missing.wav"};
    for (int semitone = 0; semitone < 6; ++semitone) {
        one.push_back(folder / (std::to_string(semitone) + ".wav"));
        WriteAudio(one.back(), HeldNote(NoteHertz(60 + semitone), 44100, 0.3, 1.0, 1.3 - 0.04 * semitone),
                   44100);
    }
    Arguments three = one;
    three[2] = "3";
    const Ended alone = RunHost(one), together = RunHost(three);
    EXPECT_EQ(alone.code, 1);
    EXPECT_EQ(alone.err, "orva-host: " + (folder / "missing.wav") + ": no such file\n");
    EXPECT_EQ(together.err, alone.err);
    EXPECT_TRUE(Contains(alone.out, "5.wav"));
    EXPECT_EQ(together.out, alone.out);

    const std::string out = folder / "out";  // the folders of a pattern are made
    EXPECT_EQ(RunHost({"render", good, files[2], "--events", out + "/{dir}/{name}.csv"}).code, 0);
    const std::string csv = ReadAll(out + "/" + (folder / "one/a.csv"));
    EXPECT_TRUE(Contains(csv, ",144,60,100,note on\n") && Contains(csv, ",128,60,0,note off\n")) << csv;
    EXPECT_EQ(ReadAll(out + "/" + (folder / "two/a.csv")), csv);
}

// A line of JSON is there as soon as its file is done: a recording that comes through a pipe ends only after
// the line of the one behind it has been read.
TEST_F(Program, PrintsLinesOfJsonAtOnce) {
    const std::string pipe = folder / "pipe.au", slow = folder / "slow.au";
    WriteAudio(slow, HeldNote(440, 44100, 0.2, 0.6, 0.8), 44100, 1, SF_FORMAT_AU | SF_FORMAT_PCM_16);
    const std::string sound = ReadAll(slow);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    HostProcess host({"render", "--json", "--jobs", "2", pipe, good});
    std::ofstream written(pipe);
    written << sound.substr(0, sound.size() / 2) << std::flush;
    EXPECT_TRUE(host.AwaitOut("\n"));
    EXPECT_TRUE(host.Out().starts_with("{\"file\":\"" + good));
    written << sound.substr(sound.size() / 2);
    written.close();
    EXPECT_EQ(host.Wait(), 0) << host.Err();
    EXPECT_EQ(Lines(host.Out()), 2);
}

// A sixteenth at 96 quarters a minute is 30 ticks; of 3/4 a bar is 360 ticks. The tune begins with its bar 1.
TEST_F(Program, WritesTheMeterAndBarOneWhereTheyAreGiven) {
    const struct {
        const char *meter, *barOne;
        std::vector<std::uint8_t> signature;  // beats, halvings of a whole note
        std::uint64_t first;                  // tick of the first note
    } rows[] = {{"3/4", "auto", {3, 2}, 0}, {"6/8", "0.625", {6, 3}, 0}, {"3/4", "1.25", {3, 2}, 240}};
    for (const auto& row : rows) {
        const Ended ended =
            RunHost({"render", ORVA_RECORDINGS "/flute_melody.ogg", "--quantise", "1/16", "--tempo", "96",
                     "--meter", row.meter, "--bar-one", row.barOne, "--midi", folder / "a.mid"});
        ASSERT_EQ(ended.code, 0) << ended.err;
        const std::string file = ReadAll(folder / "a.mid");
        const MidiReader read({file.begin(), file.end()});
        const auto& events = read.tracks.at(0);
        const auto signature = std::find_if(events.begin(), events.end(), [](const MidiEvent& event) {
            return event.status == 0xFF && event.data[0] == 0x58;
        });
        ASSERT_NE(signature, events.end());
        EXPECT_EQ(std::vector(signature->data.begin() + 1, signature->data.begin() + 3), row.signature);
        EXPECT_EQ(Voices(read.tracks, 1).at(0).tick, row.first) << row.meter << " " << row.barOne;
    }
}

TEST_F(Program, InfoShowsAllThatThePluginSaysAndWhatAnInstrumentSets) {
    const Json facts = Json::parse(RunHost({"info", "--json"}).out);
    const std::pair<const char*, Json> expected[] = {{"/name", "ORVA Audio To MIDI"},
                                                     {"/uniqueId", "ORV1"},
                                                     {"/category", "analysis"},
                                                     {"/inputs", 1},
                                                     {"/canDo/sendVstMidiEvent", 1},
                                                     {"/parameters/1/display", "-35 dB"},
                                                     {"/parameters/86/name", "Equalizer bar H 8"}};
    for (const auto& [path, value] : expected) EXPECT_EQ(facts.at(Json::json_pointer(path)), value) << path;
    ASSERT_EQ(facts["parameters"].size(), 96U);
    const std::string table = RunHost({"info"}).out;
    for (const Json& parameter : facts["parameters"])
        EXPECT_TRUE(Contains(table, parameter["name"].get<std::string>()));
    for (const std::string name : {"bass", "piano"})  // whose bars fall by 1 dB an octave
        EXPECT_EQ(RunHost({"info", "--for", name}).out, ReadAll(ORVA_GOLDEN "/" + name + ".txt"));
}

TEST(Completion, OffersCommandsOptionsAndInstruments) {
    const std::pair<std::string, const char*> rows[] = {{"re", "render\n"},
                                                        {"render --me", "--meter\n"},
                                                        {"info --js", "--json\n"},
                                                        {"live --for b", "bass\n"},
                                                        {"render a", "\n"}};  // files are the shell's
    for (const auto& [words, offered] : rows) {                               // the last one is being typed
        const std::string script = "bash -c 'source " ORVA_COMPLETION "; COMP_WORDS=(" ORVA_HOST_PROGRAM " " +
                                   words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _orva_host " +
                                   ORVA_HOST_PROGRAM "; echo ${COMPREPLY[*]}'";
        std::string text(256, '\0');
        FILE* const out = popen(script.c_str(), "r");
        text.resize(out != nullptr ? fread(text.data(), 1, text.size(), out) : 0);
        if (out != nullptr) pclose(out);
        EXPECT_EQ(text, offered) << words;
    }
}

}  // namespace
