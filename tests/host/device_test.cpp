// A shipped recording through the real program and the real module to a device of a real JACK server, which
// the test starts for itself.
#include <gtest/gtest.h>

#include <sstream>

#include "beginning.h"
#include "temp_folder.h"
#include "tests/platform/jack_server.h"

namespace {

// The note messages of an event list, as short messages.
std::vector<std::uint32_t> NotesOf(const std::string& csv) {
    std::vector<std::uint32_t> words;
    std::istringstream lines(csv);
    std::string line;
    std::getline(lines, line);  // the header
    while (std::getline(lines, line)) {
        double time = 0;
        long long sample = 0;
        unsigned status = 0, first = 0, second = 0;
        if (std::sscanf(line.c_str(), "%lf,%lld,%u,%u,%u", &time, &sample, &status, &first, &second) == 5 &&
            (status & 0xE0) == 0x80)
            words.push_back(status | first << 8 | second << 16);
    }
    return words;
}

}  // namespace

TEST(Device, HearsTheNotesThatTheHostHears) {
    const TempFolder folder;
    WriteBeginning(std::string(ORVA_RECORDINGS) + "/flute_melody.ogg", folder / "flute.wav", 4.0);
    JackServer server;
    JackReceiver receiver("synth");
    const std::string command = std::string(ORVA_HOST_PROGRAM) + " render " + (folder / "flute.wav") +
                                " --device synth:in --events " + (folder / "events.csv") + " > " +
                                (folder / "out");
    ASSERT_EQ(std::system(command.c_str()), 0);

    // The same messages; the host's are dated back by each band's delay, so only their number per word is
    // equal.
    std::vector<std::uint32_t> sent = NotesOf(ReadAll(folder / "events.csv"));
    ASSERT_GE(sent.size(), 8U);
    ASSERT_TRUE(receiver.Await(sent.size()));
    std::vector<std::uint32_t> received;
    for (std::size_t i = 0; i < receiver.Count(); ++i)
        if ((receiver.At(i) & 0xE0) == 0x80) received.push_back(receiver.At(i));
    std::sort(sent.begin(), sent.end());
    std::sort(received.begin(), received.end());
    EXPECT_EQ(received, sent);
}
