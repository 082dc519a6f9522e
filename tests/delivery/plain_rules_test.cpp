// The recorder and its outputs against the rules once more, as plain as can be: single-threaded, with every
// band looked at on every occasion.
#include <algorithm>
#include <array>
#include <random>

#include "tests/delivery/fakes.h"

namespace {

struct PlainRules {
    static constexpr int bands = 84;
    struct Out {
        char name;
        bool attached = false, running = false, silenced = true;
        int sounding = 0;
    };

    std::array<bool, bands> on{}, enabled{}, playing{};
    std::array<Out, 3> outs{{{'a'}, {'b'}, {'c'}}};
    std::vector<Out*> attached, autoStart;  // in order of attachment
    int transpose = 0, channel = 0, velocity = 100, program = 0;
    bool active = true, sendProgram = false, startOnFirst = false, firstSeen = false;
    std::int64_t time = 0;
    Log log;

    bool Sounds(std::size_t band) const { return on[band] && enabled[band]; }
    void Tell(Out& out, char what, std::size_t number) {
        log.push_back(out.name + (what + std::to_string(number)));
        if (what != '!') out.sounding += what == '+' ? 1 : -1;
    }
    void Broadcast() {
        for (Out* out : attached) Tell(*out, '!', ProgramMessage());
    }
    unsigned ProgramMessage() const {
        return 0xC0U | (static_cast<unsigned>(channel) & 15U) | (static_cast<unsigned>(program) & 127U) << 8;
    }
    std::pair<unsigned, unsigned> Messages(int band) const {
        const int note = transpose - 45 + 69 + band;
        if (note < 0 || note > 127) return {0, 0};
        const unsigned low = (static_cast<unsigned>(channel) & 15U) | static_cast<unsigned>(note) << 8;
        return {low | 0x90U | (static_cast<unsigned>(velocity) & 127U) << 16, low | 0x80U};
    }

    void Frame() {
        if (!active) return;
        time += 441;
        if (startOnFirst && !firstSeen && std::count(on.begin(), on.end(), true) > 0) {
            firstSeen = true;
            for (Out* out : autoStart) Start(*out);
        }
        for (Out* out : attached) {
            if (!out->running) continue;
            for (std::size_t b = 0; b < bands; ++b)
                if (Sounds(b) != playing[b]) Tell(*out, playing[b] ? '-' : '+', b);
            out->silenced = false;
        }
        for (std::size_t b = 0; b < bands; ++b) playing[b] = Sounds(b);
    }
    void Start(Out& out) {
        out.sounding = 0;
        for (std::size_t b = 0; b < bands; ++b)
            if (active && !out.running && Sounds(b)) Tell(out, '+', b);
        out.running = true;
    }
    void Silence(Out& out) {
        if (!out.running || out.silenced) return;
        for (std::size_t b = 0; b < bands; ++b)
            if (playing[b]) Tell(out, '-', b);
        out.silenced = true;
    }
    void Stop(Out& out) {
        Silence(out);
        out.running = false;
    }
    void AllNotesOff() {
        for (Out* out : attached) Silence(*out);
        playing = {};
    }
    void Change(bool evenIfSame, int newTranspose, int newChannel, int newVelocity, bool broadcasts) {
        if (!evenIfSame && newTranspose == transpose && newChannel == channel && newVelocity == velocity)
            return;
        AllNotesOff();
        transpose = newTranspose, channel = newChannel, velocity = newVelocity;
        if (broadcasts) Broadcast();
    }
    void Add(Out& out) {
        if (out.attached) return;
        out.attached = true;
        if (sendProgram) Tell(out, '!', ProgramMessage());
        attached.push_back(&out);
    }
    void Remove(Out& out) {
        out.attached = false;
        std::erase(attached, &out);
        std::erase(autoStart, &out);
    }
};

class PlainRulesTest : public RecorderTest {
protected:
    PlainRulesTest() { rules.enabled.fill(true); }
    ~PlainRulesTest() override {
        for (FakeOut& out : outs) recorder.RemoveOutput(&out);
    }
    void Step();
    int Pick(std::initializer_list<int> values) { return values.begin()[random() % values.size()]; }

    PlainRules rules;
    FakeOut outs[3] = {{'a', log}, {'b', log}, {'c', log}};
    std::minstd_rand random{1};
};

void PlainRulesTest::Step() {
    const std::size_t which = random() % 3, band = random() % 84;
    FakeOut& out = outs[which];
    PlainRules::Out& plain = rules.outs[which];
    const bool flag = random() % 2 == 0;
    const int t = Pick({-30, 0, 60}), c = Pick({0, 1, 17}), v = Pick({1, 100, 228}), p = Pick({0, 5, 200});
    switch (random() % 32) {
        case 0: recorder.AllNotesOff(), rules.AllNotesOff(); break;
        case 1: recorder.enabled[band] = rules.enabled[band] = flag; break;
        case 2:
            recorder.ChangeTranspose(t), rules.Change(false, t, rules.channel, rules.velocity, false);
            break;
        case 3:
            recorder.ChangeVelocity(v), rules.Change(false, rules.transpose, rules.channel, v, false);
            break;
        case 4:
            if (c != rules.channel) rules.Change(true, rules.transpose, c, rules.velocity, true);
            recorder.ChangeChannel(c);
            break;
        case 5: recorder.ChangeMapping(t, c, v), rules.Change(false, t, c, v, false); break;
        case 6: recorder.SetTranspose(t), rules.Change(true, t, rules.channel, rules.velocity, false); break;
        case 7: recorder.SetVelocity(v), rules.Change(true, rules.transpose, rules.channel, v, false); break;
        case 8: recorder.SetChannel(c), rules.Change(true, rules.transpose, c, rules.velocity, true); break;
        case 9: recorder.SetMapping(t, c, v), rules.Change(true, t, c, v, false); break;
        case 10:
            recorder.SetProgram(p);
            if (std::exchange(rules.program, p) != p && rules.sendProgram) rules.Broadcast();
            break;
        case 11:
            recorder.SetSendProgramChange(flag);
            rules.sendProgram = flag;
            if (flag) rules.Broadcast();
            break;
        case 12: recorder.Activate(0), rules.active = true; break;
        case 13:
            if (random() % 4 == 0) recorder.Deactivate(), rules.active = false;
            break;
        case 14:
            recorder.SetStartOnFirstNote(flag);
            rules.startOnFirst = flag, rules.firstSeen = false;
            break;
        case 15: recorder.AddOutput(&out), rules.Add(plain); break;
        case 16:
            if (plain.attached) break;
            recorder.AddAutoStartOutput(&out);
            rules.autoStart.push_back(&plain), rules.Add(plain);
            break;
        case 17:
            if (!plain.attached || random() % 4 != 0) break;
            out.Stop(), rules.Stop(plain);  // as callers must
            recorder.RemoveOutput(&out), rules.Remove(plain);
            break;
        case 18:
        case 19:
            if (plain.attached) out.Start(), rules.Start(plain);
            break;
        case 20:
            if (plain.attached) out.Stop(), rules.Stop(plain);
            break;
        case 21:
            if (plain.attached) out.Silence(), rules.Silence(plain);
            break;
        default:
            detector.Set(static_cast<int>(band), rules.on[band] = !rules.on[band]);
            recorder.OnFrame(), rules.Frame();
    }
}

TEST_F(PlainRulesTest, RandomOperationsGiveTheSameEventsInTheSameOrder) {
    std::size_t events = 0;
    for (int step = 0; step < 100000; ++step) {
        Step();
        events += rules.log.size();
        ASSERT_EQ(Taken(), std::exchange(rules.log, {})) << "step " << step;
        ASSERT_EQ(recorder.GetTime(), rules.time) << "step " << step;
        for (int i = 0; i < 3; ++i)
            ASSERT_EQ(outs[i].soundingCount, rules.outs[static_cast<std::size_t>(i)].sounding);
        const int band = step % 84;
        ASSERT_EQ(recorder.playing[band], rules.playing[static_cast<std::size_t>(band)]);
        const std::pair<unsigned, unsigned> messages(recorder.messages[band].onMessage,
                                                     recorder.messages[band].offMessage);
        ASSERT_EQ(messages, rules.Messages(band)) << "step " << step;
    }
    EXPECT_GT(events, 100000U);  // there was something to compare
}

}  // namespace
