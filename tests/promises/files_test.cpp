// What is written is read again by another maker's program; what cannot be written is seen.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <csignal>
#include <map>
#include <tuple>

#include "delivery/note_out.h"
#include "delivery/rt_recording.h"
#include "desktop/user_store.h"
#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/model/side_by_side.h"
#include "tests/support/host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

// Channel and pitch from 0; times in ticks of a MIDI file, 240 a second, which a take has parts of.
struct Heard {
    unsigned channel, pitch;
    double begin, end;
    unsigned velocity;
    bool operator<(const Heard& other) const {
        return std::tie(channel, pitch, begin) < std::tie(other.channel, other.pitch, other.begin);
    }
};

// Pairs each on with the next off of its channel and pitch. A note on over a sounding one ends that.
class Pairing {
public:
    void Add(double tick, unsigned status, unsigned pitch, unsigned velocity) {
        const unsigned channel = status & 15U, kind = status >> 4 & 15U;
        if (kind != 8 && kind != 9) return;
        if (auto ended = open.extract({channel, pitch})) {
            ended.mapped().end = tick;
            notes.push_back(ended.mapped());
        }
        if (kind == 9 && velocity > 0) open[{channel, pitch}] = {channel, pitch, tick, 0, velocity};
    }
    std::vector<Heard> Notes() {
        EXPECT_TRUE(open.empty()) << "an on without an off";
        std::sort(notes.begin(), notes.end());
        return notes;
    }

private:
    std::map<std::pair<unsigned, unsigned>, Heard> open;
    std::vector<Heard> notes;
};

std::vector<Heard> NotesOf(std::vector<TRecordEvent> take, double rate) {
    constexpr double scoreRate = 22050;  // Hz; a score, in between, has whole ticks of it
    std::stable_sort(take.begin(), take.end(), [](const TRecordEvent& a, const TRecordEvent& b) {
        const auto on = [](const TRecordEvent& event) { return (event.message & 0xF0) == 0x90; };
        return a.time != b.time ? a.time < b.time : on(a) < on(b);
    });
    Pairing pairing;
    for (const TRecordEvent& event : take)
        pairing.Add(std::floor(static_cast<double>(event.time) * scoreRate / rate) / scoreRate * 240,
                    event.message & 0xFF, event.message >> 8 & 0x7F, event.message >> 16 & 0x7F);
    return pairing.Notes();
}

std::vector<Heard> ReadByMidicsv(const std::string& path) {
    std::FILE* const pipe = popen(("midicsv '" + path + "' 2>&1").c_str(), "r");
    char line[256];
    Pairing pairing;
    while (pipe != nullptr && std::fgets(line, sizeof line, pipe) != nullptr) {
        unsigned track = 0, tick = 0, channel = 0, pitch = 0, velocity = 0;
        char what[8] = {};
        if (std::sscanf(line, "%u, %u, Note_%7[^_]_c, %u, %u, %u", &track, &tick, what, &channel, &pitch,
                        &velocity) == 6)
            pairing.Add(tick, (what == std::string("on") ? 0x90U : 0x80U) | channel, pitch, velocity);
    }
    EXPECT_EQ(pipe == nullptr ? -1 : pclose(pipe), 0) << "midicsv";
    return pairing.Notes();
}

TEST(Files, ASavedTakeIsReadByOthersNoteForNote) {
    RunTrials({40, 10}, [](Trial& trial) {
        const TempFolder folder;
        const std::string path = folder / "take.mid";
        constexpr std::int32_t rates[] = {22050, 44100, 48000, 96000};
        const std::int32_t rate = rates[trial.Below(4)];
        Host host(rate);
        ASSERT_TRUE(host.Open(OpenPlugin));
        host.Set(paramSendProgramChange, static_cast<float>(trial.Below(2)));
        auto& object = host.Object<CORVAguivst>();
        object.startRecording();
        host.Play(RandomMusic(trial.random, rate, 3), 1 + trial.Below(2000));
        object.stopRecording();
        ASSERT_TRUE(object.saveRecording(path));
        const std::vector<Heard> due = NotesOf(SideBySide::TakeOf(object).GetTake(), rate);
        const std::vector<Heard> heard = ReadByMidicsv(path);
        ASSERT_EQ(heard.size(), due.size());
        ASSERT_GT(due.size(), 1U);
        for (std::size_t i = 0; i < due.size(); ++i)
            ASSERT_TRUE(heard[i].channel == due[i].channel && heard[i].pitch == due[i].pitch &&
                        heard[i].velocity == due[i].velocity &&
                        std::fabs(heard[i].begin - due[i].begin) <= 1 &&
                        std::fabs(heard[i].end - due[i].end) <= 1)
                << "note " << i << ": " << heard[i].pitch << " from " << heard[i].begin << " to "
                << heard[i].end << "; due " << due[i].pitch << " from " << due[i].begin << " to "
                << due[i].end;
    });
}

// The system lets no file grow past a limit, as on a full disk.
TEST(Files, AFullDiskIsSeenAtWhateverByte) {
    RunTrials({20, 5}, [](Trial& trial) {
        const TempFolder folder;
        setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
        Host host;
        Messages messages;
        ASSERT_TRUE(host.Open(OpenPlugin));
        auto& object = host.Object<CORVAguivst>();
        object.startRecording();
        host.Play(RandomMusic(trial.random, 44100, 2));
        object.stopRecording();
        ASSERT_TRUE(object.saveRecording(folder / "take.mid"));
        const std::size_t size = ReadAll(folder / "take.mid").size();
        const std::string old(255, 'o'), text(trial.Below(256), 'n');
        ASSERT_TRUE(writeRegistryString("Name", old));

        const std::size_t limit = trial.OneIn(2) ? trial.Below(size + 20) : size - trial.Below(2);
        const rlimit small{limit, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
        const bool saved = object.saveRecording(folder / "again.mid");
        const bool stored = writeRegistryString("Name", text);
        const std::string read = readRegistryString("Name");
        const rlimit usual{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &usual);
        EXPECT_EQ(saved, size <= limit) << size << " bytes where " << limit << " fit";
        EXPECT_EQ(stored, text.size() <= limit);
        EXPECT_EQ(read, stored ? text : old) << "neither the old text nor the new";
        for (const std::string& path : {std::string("/dev/full"), folder.path.string(), folder / "none/file",
                                        std::string(1 << 16, 'p'), std::string()})
            EXPECT_FALSE(object.saveRecording(path)) << path.substr(0, 50);
    });
}

}  // namespace
