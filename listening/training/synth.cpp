// A synthesiser of instruments thrown with dice, one for each channel, so that the net hears more kinds of
// sound than sound fonts have: struck strings and bars, bowed and blown tones, organs, frequency modulation,
// filtered waves.
//
//   listening_synth SEED SECONDS < NOTES > SAMPLES
//
// NOTES: a line each, `start end pitch velocity channel cents`. SAMPLES: 32-bit float, mono, 44.1 kHz.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>
#include <vector>

namespace {

constexpr double rate = 44100, turn = 6.283185307179586;
constexpr int step = 64;  // samples between two looks at pitch and loudness
enum class Kind { struck, sustained, organ, modulated, wave };

std::mt19937 generator;
double Between(double a, double b) {
    return std::uniform_real_distribution<double>(a, b)(generator);
}
double Scaled(double a, double b) {
    return std::exp(Between(std::log(a), std::log(b)));
}  // even in octaves
double Normal(double width) {
    return std::normal_distribution<double>(0, width)(generator);
}
bool Chance(double share) {
    return Between(0, 1) < share;
}

struct Note {
    double start, end;  // s
    int pitch, velocity, channel;
    double cents;
};

struct Instrument {
    Kind kind;
    double attack, release, sustain;           // s, s, share of the peak
    double slope, comb, stretch, odd, bright;  // of the partials
    double ring, damping;                      // s that a struck partial takes to fall by 60 dB; more above
    double vibrato, vibratoDepth, vibratoDelay, glide;  // Hz, cents, s, cents
    double tremolo, tremoloRate;                        // share, Hz
    double breath, click;                               // noise while it sounds, noise at its start
    double ratio, index, indexTime;                     // of frequency modulation
    int voices;
    double spread;  // cents between voices
    std::vector<double> wobble;
    struct {
        double hertz, octaves, gain;
    } formants[3];
    double bars[9];
};

constexpr double barRatios[9] = {.5, 1.5, 1, 2, 3, 4, 5, 6, 8};
constexpr double fmRatios[] = {1, 1, 2, 3, 4, .5, 7, 3.5, 1.41, 5, 14};

Instrument Throw() {
    Instrument i{};
    i.kind = static_cast<Kind>(std::min(4, static_cast<int>(Between(0, 5))));
    if (i.kind == Kind::struck && Chance(.3))
        i.kind = Kind::sustained;  // the harder kind, so the more frequent
    i.attack = Scaled(.001, .012);
    i.release = Scaled(.02, .5);
    i.sustain = Between(.3, 1);
    i.slope = Between(.3, 2.2);
    i.comb = Chance(.5) ? Between(.05, .5) : 0;
    i.stretch = Chance(.15) ? Scaled(1e-3, 1e-2) : Scaled(1e-6, 1e-3);
    i.odd = Chance(.2) ? Between(0, .3) : 1;
    i.bright = Between(0, 1);
    i.ring = Scaled(.4, 12);
    i.damping = Between(.2, 1.1);
    i.vibrato = Between(4, 7);
    i.vibratoDepth = Chance(.5) ? Scaled(3, 50) : 0;
    i.vibratoDelay = Between(0, .4);
    i.glide = Chance(.3) ? Between(-150, 40) : 0;
    i.tremolo = Chance(.3) ? Between(0, .5) : 0;
    i.tremoloRate = Between(3, 8);
    i.breath = Chance(.5) ? Scaled(.003, .3) : 0;
    i.click = Chance(.5) ? Scaled(.01, .2) : 0;
    i.ratio = fmRatios[static_cast<int>(Between(0, 10.99))];
    i.index = Scaled(.3, 6);
    i.indexTime = Scaled(.05, 2);
    i.voices = 1;
    i.spread = Scaled(1, 18);
    for (double& bar : i.bars) bar = Chance(.55) ? std::pow(10, -Between(0, 24) / 20) : 0;
    if (Chance(.6)) i.bars[0] = 0;
    if (Chance(.6)) i.bars[1] = 0;
    i.bars[2] = std::max(i.bars[2], std::pow(10, -Between(0, 9) / 20));
    if (i.kind == Kind::sustained || i.kind == Kind::wave) {
        i.attack = Scaled(.004, .18);
        i.release = Scaled(.03, 1);
        i.voices = Chance(.5) ? 1 : 2 + static_cast<int>(Between(0, 4));
    } else if (i.kind == Kind::organ) {
        i.attack = Scaled(.002, .05);
        i.release = Scaled(.01, .2);
        i.voices = Chance(.3) ? 2 : 1;
    } else if (i.kind == Kind::modulated) {
        i.attack = Scaled(.001, .06);
    } else {
        i.release = std::min(i.release, .15);
    }
    for (int k = 0; k < 64; ++k) i.wobble.push_back(std::pow(10, Normal(5) / 20));
    for (auto& f : i.formants) f = {Scaled(250, 4000), Between(.1, .6), Chance(.5) ? Between(0, 5) : 0};
    return i;
}

// One note being made: what its partials share.
struct Voice {
    const Instrument& i;
    double hertz, length, loudness;  // loudness: velocity from 0 to 1
    double detune, vibrato, depth, phase;

    double Envelope(double t) const {
        double a = t < i.attack ? t / i.attack : 1;
        if (i.kind != Kind::struck && i.kind != Kind::organ)
            a *= i.sustain + (1 - i.sustain) * std::exp(-std::max(0.0, t - i.attack) / .15);
        return t > length ? a * std::exp(-(t - length) / i.release * 5) : a;
    }
    double Bend(double t) const {  // a factor of the frequency
        double cents = detune;
        if (t > i.vibratoDelay)
            cents += depth * std::min(1.0, (t - i.vibratoDelay) / .3) * std::sin(turn * vibrato * t + phase);
        if (i.kind == Kind::sustained || i.kind == Kind::wave) cents += i.glide * std::exp(-t / .04);
        return std::pow(2, cents / 1200);
    }
};

double Strength(const Voice& v, int h, double hertz) {
    const Instrument& i = v.i;
    if (i.kind == Kind::organ) return i.bars[h - 1];
    double a = std::pow(h, -i.slope) * i.wobble[static_cast<std::size_t>(h)] * (h % 2 == 1 ? 1 : i.odd);
    if (i.comb > 0) a *= .05 + std::fabs(std::sin(turn / 2 * h * i.comb));
    if (i.kind == Kind::wave) {
        a = h % 2 == 0 && i.odd < 1 ? 0 : 1.0 / h;
        a /= 1 + std::pow(hertz / (500 + 6000 * i.bright), 4);
    } else {
        a *= std::pow(v.loudness, .15 * h * i.bright);
    }
    if (i.kind == Kind::sustained)
        for (const auto& f : i.formants) {
            const double x = std::log2(hertz / f.hertz) / f.octaves;
            a *= 1 + f.gain * std::exp(-x * x);
        }
    return a;
}

void AddPartial(std::vector<float>& sound, const Voice& v, int h, double ratio) {
    const Instrument& i = v.i;
    const double hertz = v.hertz * ratio, strength = Strength(v, h, hertz);
    if (strength < 1e-4) return;
    const double start = Between(0, turn),
                 decay = i.ring * std::pow(v.hertz / 220, -.6) * std::pow(h, -i.damping);
    const double fall = i.kind == Kind::struck ? std::exp(-6.9 / decay / rate) : 1;
    const double late =
        i.kind == Kind::sustained ? i.attack * i.bright * .15 * h : 0;  // higher partials come later
    double re = std::cos(start), im = std::sin(start), level = strength, c = 1, s = 0, rise = 1;
    for (std::size_t k = 0; k < sound.size(); ++k) {
        if (k % step == 0) {
            const double t = static_cast<double>(k) / rate, w = turn * hertz * v.Bend(t) / rate;
            c = std::cos(w), s = std::sin(w);
            const double length = std::sqrt(re * re + im * im);
            re /= length, im /= length;
            rise = late > 0 && t < late ? t / late : 1;
            if (level < 1e-6) return;
        }
        const double next = re * c - im * s;
        im = re * s + im * c;
        re = next;
        level *= fall;
        sound[k] += static_cast<float>(level * rise * im);
    }
}

void AddModulated(std::vector<float>& sound, const Voice& v) {
    const Instrument& i = v.i;
    const double index = i.index * (.4 + .6 * v.loudness);
    double carrier = Between(0, turn), modulator = 0, w = 0;
    for (std::size_t k = 0; k < sound.size(); ++k) {
        const double t = static_cast<double>(k) / rate;
        if (k % step == 0) w = turn * v.hertz * v.Bend(t) / rate;
        carrier += w;
        modulator += w * i.ratio;
        const double now = index * (i.bright * .5 + (1 - i.bright * .5) * std::exp(-t / i.indexTime));
        const double level = i.sustain > .65 ? 1 : std::exp(-t / i.ring * 3);
        sound[k] += static_cast<float>(level * std::sin(carrier + now * std::sin(modulator)));
    }
}

void AddNoise(std::vector<float>& sound, const Instrument& i) {
    if (i.breath <= 0 && i.click <= 0) return;
    const double colour = Between(.05, .6);
    double fast = 0, slow = 0;
    for (std::size_t k = 0; k < sound.size(); ++k) {
        const double t = static_cast<double>(k) / rate;
        fast += colour * (Normal(1) - fast);
        slow += .02 * (fast - slow);
        double level = i.kind == Kind::sustained ? i.breath * .3 : i.breath * std::exp(-t / .03);
        if (i.kind == Kind::organ) level = i.click * std::exp(-t / .006);
        sound[k] += static_cast<float>(level * (fast - slow));
    }
}

void Play(std::vector<float>& out, const Note& note, const Instrument& i) {
    const std::size_t first = static_cast<std::size_t>(std::max(0.0, note.start) * rate);
    if (first >= out.size()) return;
    const double length = note.end - note.start, seconds = length + i.release * 1.5;
    std::vector<float> sound(std::min(static_cast<std::size_t>(seconds * rate), out.size() - first));
    Voice v{i,      440 * std::pow(2, (note.pitch - 69 + note.cents / 100) / 12),
            length, note.velocity / 127.0,
            0,      0,
            0,      0};
    for (int voice = 0; voice < i.voices; ++voice) {
        v.detune = i.voices > 1 ? Normal(i.spread) : 0;
        v.vibrato = i.vibrato * Between(.93, 1.07);
        v.depth = i.vibratoDepth * Between(.7, 1.2);
        v.phase = Between(0, turn);
        if (i.kind == Kind::modulated) {
            AddModulated(sound, v);
            continue;
        }
        const int partials = i.kind == Kind::organ ? 9 : 32;
        for (int h = 1; h <= partials; ++h) {
            const double ratio =
                i.kind == Kind::organ ? barRatios[h - 1] : h * std::sqrt(1 + i.stretch * h * h);
            if (v.hertz * ratio < 9000) AddPartial(sound, v, h, ratio);
        }
    }
    AddNoise(sound, i);
    const double loudness = std::pow(10, (note.velocity - 127) / 127.0 * 30 / 20);
    double level = 0;
    for (std::size_t k = 0; k < sound.size(); ++k) {
        const double t = static_cast<double>(k) / rate;
        if (k % 16 == 0 || t < i.attack) level = v.Envelope(t);
        const double swing = 1 - i.tremolo * .5 * (1 + std::sin(turn * i.tremoloRate * (t + note.start)));
        out[first + k] += static_cast<float>(loudness * level * swing * sound[k]);
    }
}

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fputs("usage: listening_synth SEED SECONDS < NOTES > SAMPLES\n", stderr);
        return 2;
    }
    generator.seed(static_cast<unsigned>(std::strtoul(words[1], nullptr, 10)));
    std::vector<float> out(static_cast<std::size_t>(std::strtod(words[2], nullptr) * rate));
    std::map<int, Instrument> band;
    Note n{};
    while (std::cin >> n.start >> n.end >> n.pitch >> n.velocity >> n.channel >> n.cents) {
        if (band.count(n.channel) == 0) band.emplace(n.channel, Throw());
        Play(out, n, band.at(n.channel));
    }
    return std::fwrite(out.data(), sizeof(float), out.size(), stdout) == out.size() ? 0 : 1;
}
