#include "tools/host/velocity.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

void FollowLevels(Take& take) {
    float loudest = 0;
    for (const TimedEvent& event : take.events) loudest = std::max(loudest, event.level);
    if (!(loudest > 0)) return;
    std::map<std::pair<int, int>, TimedEvent*> sounding;  // by channel and pitch
    for (TimedEvent& event : take.events) {
        const int kind = event.bytes[0] & 0xF0;
        const std::pair<int, int> note = {event.bytes[0] & 0x0F, event.bytes[1]};
        if (kind == 0x90) sounding[note] = &event;
        if (kind != 0x80 || sounding.count(note) == 0) continue;
        std::uint8_t& velocity = sounding.at(note)->bytes[2];
        const double share = std::pow(event.level / loudest, 0.25);
        if (velocity > 0)  // 0 would end a note
            velocity = static_cast<std::uint8_t>(std::clamp(static_cast<int>(velocity * share), 1, 127));
        sounding.erase(note);
    }
}
