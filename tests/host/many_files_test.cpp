// The real program over many files: lists, a bad file among them, and a run that takes up an earlier one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "run_host.h"
#include "test_audio.h"
#include "tools/host/file_list.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class ManyFiles : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"one/a.wav", "one/b c.wav", "two/a.wav"}) {
            files.push_back(folder / name);
            fs::create_directories(fs::path(files.back()).parent_path());
            WriteAudio(files.back(), HeldNote(440, 44100, 0.2, 0.6, 0.8), 44100);
        }
    }
    std::string Output(std::size_t file) const {
        return fs::path(files[file]).replace_extension(".mid").string();
    }
    // The files of the lines that have or have not been skipped.
    static std::multiset<std::string> Named(const Ended& ended, bool skipped) {
        std::multiset<std::string> names;
        std::istringstream lines(ended.out);
        for (std::string line; std::getline(lines, line);) {
            const Json object = Json::parse(line);
            if (object.contains("skipped") == skipped) names.insert(object["file"]);
        }
        return names;
    }

    const std::vector<std::string> resume = {"render",           "--list",   "-",      "--json", "--midi",
                                             "{dir}/{name}.mid", "--resume", "--jobs", "2"};
    TempFolder folder;
    std::vector<std::string> files;
};

}  // namespace

TEST(FileList, HasANameALineOrUpToEachZeroByte) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(SplitFileList("a.wav\n\n b c.wav\nd.wav"), (Names{"a.wav", " b c.wav", "d.wav"}));
    EXPECT_EQ(SplitFileList(std::string("a\nb.wav\0c.wav\0", 14)), (Names{"a\nb.wav", "c.wav"}));
    EXPECT_EQ(SplitFileList(""), Names{});
    EXPECT_THROW(ReadFileList("/no/such/list"), std::runtime_error);
    EXPECT_THROW(ReadFileList("/"), std::runtime_error);
}

TEST_F(ManyFiles, AreNamedByAListBesideTheCommandLine) {
    const std::string two = files[1] + '\n' + files[2] + '\n';
    WriteAll(folder / "list", two);
    const std::multiset<std::string> all(files.begin(), files.end());
    EXPECT_EQ(Named(RunHost({"render", "--json", files[0], "--list", folder / "list"}), false), all);
    EXPECT_EQ(Named(RunHost({"render", "--json", files[0], "--list", "-"}, two), false), all);
    EXPECT_EQ(Named(RunHost({"render", "--json", files[0], "-"}, two), false), all);
    const Ended nothing = RunHost({"render", "--json", "-"}, "");
    EXPECT_EQ(nothing.code, 0) << nothing.err;
    EXPECT_EQ(nothing.out, "");
    EXPECT_EQ(RunHost({"render", "--list", folder / "no list"}).code, 1);
}

TEST_F(ManyFiles, AreDoneButForTheBadOneAndAgainWhereSomethingIsMissing) {
    const std::string bad = folder / "bad.wav";
    WriteAll(bad, "no sound");
    const std::string list = files[0] + '\n' + bad + '\n' + files[1] + '\n' + files[2] + '\n';
    const std::multiset<std::string> none, all(files.begin(), files.end());

    const Ended first = RunHost(resume, list);
    EXPECT_EQ(first.code, 1);
    EXPECT_THAT(first.err, HasSubstr(bad));
    EXPECT_EQ(Lines(first.err), 1);
    EXPECT_EQ(Named(first, false), all);

    // The bad one is tried again, and nothing else.
    const Ended second = RunHost(resume, list);
    EXPECT_EQ(second.code, 1);
    EXPECT_EQ(second.err, first.err);
    EXPECT_EQ(Named(second, false), none);
    EXPECT_EQ(Named(second, true), all);

    fs::remove(Output(1));
    fs::last_write_time(files[2], fs::last_write_time(Output(2)) + std::chrono::seconds(1));
    const Ended third = RunHost(resume, list);
    EXPECT_EQ(Named(third, false), (std::multiset<std::string>{files[1], files[2]}));
    EXPECT_EQ(Named(third, true), std::multiset<std::string>{files[0]});
    EXPECT_TRUE(fs::exists(Output(1)));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path / "one"), {}), 4);  // no drafts
}

// A line is there as soon as its file is done: a recording that comes through a pipe ends only after the line
// of the one behind it has been read.
TEST_F(ManyFiles, ALineDoesNotWaitForAnEarlierFile) {
    const std::string pipe = folder / "pipe.au";
    WriteAudio(folder / "slow.au", HeldNote(440, 44100, 0.2, 0.6, 0.8), 44100, 1,
               SF_FORMAT_AU | SF_FORMAT_PCM_16);
    const std::string sound = ReadAll(folder / "slow.au");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    HostProcess host({"render", "--json", "--jobs", "2", pipe, files[0]});
    std::ofstream slow(pipe);
    slow << sound.substr(0, sound.size() / 2) << std::flush;
    EXPECT_TRUE(host.AwaitOut("\n"));
    EXPECT_THAT(host.Out(), StartsWith("{\"file\":\"" + files[0]));
    slow << sound.substr(sound.size() / 2);
    slow.close();
    EXPECT_EQ(host.Wait(), 0) << host.Err();
    EXPECT_EQ(Lines(host.Out()), 2);
}

TEST_F(ManyFiles, APatternMakesItsFolders) {
    const std::string out = folder / "out";
    EXPECT_EQ(RunHost({"render", files[0], files[2], "--midi", out + "/{dir}/{name}.mid"}).code, 0);
    for (const std::size_t file : {0, 2}) EXPECT_TRUE(fs::exists(out + "/" + Output(file)));
}
