#!/usr/bin/env python3
"""The weights of the refined ear as whole numbers: quantise.py WEIGHTS.txt [THRESHOLDS.json]

Reads the trained net (two rows of pitch offsets, then eight layers: "outputs inputs biases", weights, biases) and
writes listening/net_weights.inc, and tests/listening/net_answer.inc: what the whole-number net makes of made-up
features, for the test that holds the C++ to this. Only the standard library is used.

Weights get 8 bits and one scale an output. A sum of products has 32 bits; it is shifted right and multiplied by
scale / 32768, both fixed for each output, and is then an activation of 16 bits, of which 9 stand behind the point.
"""
import json
import math
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parents[2]
BANDS, PADDED = 84, 96
FEATURE_BITS, ACTIVATION_BITS = 12, 9
HEADS = (3, 5, 8)  # frames that the three onset outputs look back; a fourth is "sounds", four frames ago
THRESHOLDS = {"0": 0.55, "1": 0.55, "2": 0.5, "active": 0.5}


class Layer:
    def __init__(self, name, floats, order, bits, linear=False, raw=False):
        outputs, inputs, biases, weights, bias = floats
        assert outputs % 4 == 0 and len(order) * 2 == inputs and biases in (outputs, outputs * BANDS), name
        self.name, self.outputs, self.order, self.linear, self.raw = name, outputs, order, linear, raw
        self.byband = biases != outputs
        self.weights, self.bias, self.shift, self.scale, self.unit = [], [], [], [], []
        for c in range(outputs):
            row = weights[c * inputs:(c + 1) * inputs]
            step = max(abs(w) for w in row) / 127 or 1.0
            self.weights.append([(round(row[a] / step), round(row[b] / step)) for a, b in order])
            unit = step * 2.0**-bits  # of the sum of products
            self.unit.append(unit)
            mantissa, exponent = math.frexp(unit * 2.0**ACTIVATION_BITS)  # mantissa from 0.5 to 1
            self.shift.append(0 if raw else -exponent)
            self.scale.append(0 if raw else min(32767, round(mantissa * 32768)))
            assert raw or 0 < -exponent < 31, name
            half = 0 if raw else 1 << -exponent - 1
            own = bias[c * BANDS:(c + 1) * BANDS] if self.byband else [bias[c]]
            whole = [round(b / unit) + half for b in own]
            most = 32768 * sum(abs(a) + abs(b) for a, b in self.weights[c]) + max(map(abs, whole))
            assert most < 2**31, name  # no sum can overflow
            self.bias.append(whole)

    def apply(self, rows):
        """rows: a list of pairs of activations for each band, in this layer's order"""
        out = []
        for c in range(self.outputs):
            line = []
            for p in range(BANDS):
                s = self.bias[c][p if self.byband else 0]
                s += sum(w0 * row[p][0] + w1 * row[p][1] for (w0, w1), row in zip(self.weights[c], rows))
                if not self.raw:
                    s = max(-32768 if self.linear else 0, min(32767, s >> self.shift[c]))
                    s = (s * self.scale[c] + 0x4000) >> 15
                line.append(s)
            out.append(line)
        return out

    def pairs(self, out):
        return [list(zip(out[c], out[c + 1])) for c in range(0, self.outputs, 2)]


def read(path):
    words = iter(pathlib.Path(path).read_text().split())
    offsets = [[int(next(words)) for _ in range(int(next(words)))] for _ in range(2)]
    floats = []
    for _ in range(8):
        outputs, inputs, biases = (int(next(words)) for _ in range(3))
        floats.append((outputs, inputs, biases, [float(next(words)) for _ in range(outputs * inputs)],
                       [float(next(words)) for _ in range(biases)]))
    return offsets, floats


def layers(offsets, floats):
    """The order of each layer's inputs: taps from the oldest frame or in the order of the offsets, and within a
    tap the channels by pairs, which lie side by side in memory."""
    n1, n2 = map(len, offsets)
    a, b, c, d, e = (floats[i][0] for i in range(5))
    return [
        Layer("A", floats[0], [(tap, 15 + tap) for tap in range(15)], FEATURE_BITS),
        Layer("B", floats[1], [(t * a + k, t * a + k + 1) for t in range(n1) for k in range(0, a, 2)], 9),
        Layer("C", floats[2], [(k * 4 + t, k * 4 + 4 + t) for t in range(4) for k in range(0, b, 2)], 9),
        Layer("D", floats[3], [(k * 4 + t, k * 4 + 4 + t) for t in range(4) for k in range(0, c, 2)], 9),
        Layer("E", floats[4], [(k, k + 1) for k in range(0, d, 2)], 9, linear=True),
        Layer("F", floats[5], [(t * e + k, t * e + k + 1) for t in range(n2) for k in range(0, e, 2)] +
              [(n2 * e + k, n2 * e + k + 1) for k in range(0, d, 2)], 9),
        Layer("G", floats[6], [(k * 3 + t, k * 3 + 3 + t) for t in range(3)
                               for k in range(0, floats[5][0], 2)], 9),
        Layer("O", floats[7], [(k, k + 1) for k in range(0, floats[6][0], 2)], 9, raw=True),
    ]


class Net:
    """The net frame by frame, as the C++ steps it, from nothing: all earlier rows are zero."""
    def __init__(self, offsets, net):
        self.offsets, self.net = offsets, net
        self.x, self.b, self.c, self.g = [], [], [], []

    @staticmethod
    def back(history, frames, pairs):
        nothing = [[(0, 0)] * BANDS] * pairs
        return history[-1 - frames] if frames < len(history) else nothing

    @staticmethod
    def moved(row, offset):
        return [row[p + offset] if 0 <= p + offset < BANDS else (0, 0) for p in range(BANDS)]

    def step(self, x):
        A, B, C, D, E, F, G, O = self.net
        self.x.append([x])
        a = A.pairs(A.apply([self.moved(self.back(self.x, i, 1)[0], o) for i in (4, 3, 2, 1, 0)
                             for o in (-1, 0, 1)]))
        self.b.append(B.pairs(B.apply([self.moved(row, o) for o in self.offsets[0] for row in a])))
        self.c.append(C.pairs(C.apply([r for i in (3, 2, 1, 0) for r in self.back(self.b, i, B.outputs // 2)])))
        d = D.pairs(D.apply([r for i in (12, 8, 4, 0) for r in self.back(self.c, i, C.outputs // 2)]))
        e = E.pairs(E.apply(d))
        self.g.append(F.pairs(F.apply([self.moved(row, o) for o in self.offsets[1] for row in e] + d)))
        g = G.pairs(G.apply([r for i in (2, 1, 0) for r in self.back(self.g, i, F.outputs // 2)]))
        return O.apply(g)


def random_words(seed):
    while True:
        seed = (seed * 1103515245 + 12345) & 0x7FFFFFFF
        yield seed >> 8


def answer(offsets, net, frames):
    """A digest of the outputs for features from a fixed row of random numbers: FNV-1a over 32-bit words."""
    whole, words, digest = Net(offsets, net), random_words(1), 0x811C9DC5
    for _ in range(frames):
        x = [(next(words) % 14337 - 5120, next(words) % 19661 - 9830) for _ in range(BANDS)]
        for line in whole.step(x):
            for value in line:
                digest = (digest ^ (value & 0xFFFFFFFF)) * 0x01000193 & 0xFFFFFFFF
    return digest


def table(kind, name, values):
    lines, line = [], "   "
    for value in values:
        word = f" {value},"
        if len(line) + len(word) > 110:
            lines.append(line)
            line = "   "
        line += word
    return f"alignas(64) const {kind} {name}[] = {{\n" + "\n".join(lines + [line]) + "\n};\n"


def logit(p):
    return math.log(p / (1 - p))


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    offsets, floats = read(sys.argv[1])
    thresholds = dict(THRESHOLDS)
    if len(sys.argv) == 3:
        given = json.loads(pathlib.Path(sys.argv[2]).read_text())
        thresholds.update({k: v for k, v in given.items() if k in thresholds})
        thresholds["active"] = given.get("a1", [given.get("active", 0.5)])[0]
    net = layers(offsets, floats)
    name = pathlib.Path(sys.argv[1]).name
    out = "// Made by listening/training/quantise.py from " + name + ": do not edit.\n"
    out += "// clang-format off\n"
    out += f"constexpr std::int32_t offsetsB[] = {{{', '.join(map(str, offsets[0]))}}};\n"
    out += f"constexpr std::int32_t offsetsF[] = {{{', '.join(map(str, offsets[1]))}}};\n"
    for layer in net:
        flat = [half for block in range(0, layer.outputs, 4) for k in range(len(layer.order))
                for c in range(block, block + 4) for half in layer.weights[c][k]]
        out += table("std::int16_t", "weights" + layer.name, flat)
        padded = [v for row in layer.bias for v in row + [0] * (PADDED - BANDS if layer.byband else 0)]
        out += table("std::int32_t", "bias" + layer.name, padded)
        if not layer.raw:
            out += table("std::int32_t", "shift" + layer.name, layer.shift)
            out += table("std::int16_t", "scale" + layer.name, layer.scale)
    last = net[-1]
    limits = [logit(thresholds[str(h)]) for h in range(3)] + [logit(thresholds["active"])]
    units = [round(1 / unit) for unit in last.unit]  # of the outputs, in one logit
    out += f"constexpr std::int32_t unitsPerLogit[] = {{{', '.join(map(str, units))}}};\n"
    out += "constexpr std::int32_t thresholdOf[] = {%s};\n" % ", ".join(
        str(round(limit / unit)) for limit, unit in zip(limits, last.unit))
    out += "// clang-format on\n"
    (root / "listening" / "net_weights.inc").write_text(out)

    frames = 24
    tests = root / "tests" / "listening"
    tests.mkdir(exist_ok=True)
    (tests / "net_answer.inc").write_text(
        "// Made by listening/training/quantise.py: what its own net of whole numbers answers.\n"
        f"constexpr int answeredFrames = {frames};\n"
        f"constexpr std::uint32_t answerDigest = 0x{answer(offsets, net, frames):08X};\n")


if __name__ == "__main__":
    main()
