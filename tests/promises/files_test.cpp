// What is written is read again by another maker's program; what cannot be written is seen.
#include <sys/resource.h>

#include "tests/support/linked_host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

// What begins in a file or a take: channel, pitch, velocity, and the tick of a MIDI file, 240 a second.
using Onset = std::tuple<unsigned, unsigned, unsigned, double>;

// Those of the take and of the file, as another maker's program reads it, in one order.
std::vector<Onset> OnsetsOf(const std::vector<TRecordEvent>& take, double rate) {
    constexpr double scoreRate = 22050;  // Hz; a score, in between, has whole ticks of it
    std::vector<Onset> onsets;
    for (const TRecordEvent& event : take)
        if ((event.message & 0xF0) == 0x90)
            onsets.emplace_back(
                event.message & 15, event.message >> 8 & 127, event.message >> 16 & 127,
                std::floor(static_cast<double>(event.time) * scoreRate / rate) / scoreRate * 240);
    std::sort(onsets.begin(), onsets.end());
    return onsets;
}
std::vector<Onset> OnsetsOf(const std::string& path, std::size_t& ends) {
    EXPECT_EQ(Run({"midicsv", path, path + ".csv"}), 0);
    std::ifstream file(path + ".csv");
    std::vector<Onset> onsets;
    for (std::string line; std::getline(file, line);) {
        std::erase(line, ',');
        std::istringstream words(line);
        unsigned track = 0, tick = 0, channel = 0, pitch = 0, velocity = 0;
        std::string kind;
        words >> track >> tick >> kind >> channel >> pitch >> velocity;
        if (kind == "Note_on_c") onsets.emplace_back(channel, pitch, velocity, tick);
        if (kind == "Note_off_c") ++ends;
    }
    std::sort(onsets.begin(), onsets.end());
    return onsets;
}

TEST(Files, ASavedTakeIsReadByOthersNoteForNote) {
    RunTrials({40, 10}, [](Trial& trial) {
        const TempFolder folder;
        const std::string path = folder / "take.mid";
        constexpr std::int32_t rates[] = {22050, 44100, 48000, 96000};
        const std::int32_t rate = rates[trial.Below(4)];
        LinkedHost host(rate);
        host.Set(paramSendProgramChange, static_cast<float>(trial.Below(2)));
        CORVAguivst& object = host.plugin;
        object.startRecording();
        host.Play(RandomMusic(trial.random, rate, 3), 1 + trial.Below(2000));
        object.stopRecording();
        ASSERT_TRUE(object.saveRecording(path));
        std::size_t ends = 0;
        const std::vector<Onset> due = OnsetsOf(RecordingOf(object).GetTake(), rate),
                                 read = OnsetsOf(path, ends);
        ASSERT_GT(due.size(), 1U);
        ASSERT_EQ(read.size(), due.size());
        ASSERT_EQ(ends, due.size());
        for (std::size_t i = 0; i < due.size(); ++i) {
            const auto& [channel, pitch, velocity, tick] = due[i];
            const auto& [readChannel, readPitch, readVelocity, readTick] = read[i];
            ASSERT_EQ(std::tie(channel, pitch, velocity), std::tie(readChannel, readPitch, readVelocity));
            ASSERT_NEAR(readTick, tick, 1);
        }
    });
}

// The system lets no file grow past a limit, as on a full disk.
TEST(Files, AFullDiskIsSeenAtWhateverByte) {
    RunTrials({20, 5}, [](Trial& trial) {
        const TempFolder folder;
        LinkedHost host;
        Messages messages;
        CORVAguivst& object = host.plugin;
        object.startRecording();
        host.Play(RandomMusic(trial.random, 44100, 2));
        object.stopRecording();
        ASSERT_TRUE(object.saveRecording(folder / "take.mid"));
        const std::size_t size = ReadAll(folder / "take.mid").size();
        const std::size_t limit = trial.OneIn(2) ? trial.Below(size + 20) : size - trial.Below(2);
        const rlimit small{limit, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
        const bool saved = object.saveRecording(folder / "again.mid");
        const rlimit usual{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &usual);
        EXPECT_EQ(saved, size <= limit) << size << " bytes where " << limit << " fit";
        for (const std::string& path : {std::string("/dev/full"), folder.path.string(), folder / "none/file",
                                        std::string(1 << 16, 'p'), std::string()})
            EXPECT_FALSE(object.saveRecording(path)) << path.substr(0, 50);
    });
}

}  // namespace
