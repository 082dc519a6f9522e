// Plays music with every output on, and has the instructions of each block counted from outside: one dump of
// the counter a block, in the order of the blocks, which begins with the first that has signal.
//   block_costs BLOCKS
#include <valgrind/callgrind.h>

#include "tests/support/devices.h"
#include "tests/support/linked_host.h"
#include "tests/support/music.h"

int main(int count, char** words) {
    constexpr int rate = 48000;
    constexpr std::size_t block = 64;
    const std::size_t blocks = count > 1 ? static_cast<std::size_t>(std::atoll(words[1])) : 0;
    InstalledDevices devices;
    devices.keepsLines = false;
    LinkedHost host(rate);
    host.keepsEvents = false;
    if (blocks == 0) return 1;
    host.Set(paramPolyphony, 1);
    for (const auto output : {paramOutputToHost, paramDeviceEnabled, paramChordsEnabled}) host.Set(output, 1);
    host.plugin.startRecording();
    // A new chord of six notes with three partials each every 100 ms, which is how often a chord is named.
    std::minstd_rand random(1);
    Audio audio(blocks * block, 0.001F);
    for (std::size_t begin = 0; begin < audio.size(); begin += rate / 10)
        for (int note = 0; note < 6; ++note)
            AddStruck(audio, begin, rate / 10, NoteHertz(36 + static_cast<double>(random() % 60)), rate, 3,
                      0.05);
    float out[block] = {}, silence[block] = {};
    host.Process(Way::replacing, silence, out, block);  // makes room for a block
    CALLGRIND_START_INSTRUMENTATION;
    for (std::size_t i = 0; i < blocks; ++i) {
        CALLGRIND_ZERO_STATS;
        host.Process(Way::replacing, &audio[i * block], out, block);
        CALLGRIND_DUMP_STATS;
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    return 0;
}
