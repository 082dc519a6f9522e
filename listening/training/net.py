"""The net: one small network, the same for every pitch, over the 84 band energies. Its weights as text."""

import torch
import torch.nn as nn
import torch.nn.functional as functional

PITCHES = 84
LOWEST = 24  # MIDI note of the first band
BANDS_SEEN = (0, -1, 1, 12, 19, 24, 28, 31, 34, 36, -12, -19, -24)  # semitones at which a pitch looks at bands
PITCHES_SEEN = (0, 12, 19, 24, -12, -19, -24, -28, -1, 1)  # and at which a decision looks at other pitches
LOOK = (3, 5, 8)  # frames that the three onset outputs wait: 30, 50, 80 ms
ACTIVE_LOOK = 4  # frames that the output "active" waits
CONTEXT = 21  # frames of the past that an output depends on: 4 + 3 + 12 + 2
FALL = 0.1  # dB a frame by which the reference falls
FLOOR = -85.0  # dB, the least reference
DEPTH = 70.0  # dB under the reference at which a level is cut off
KNOTS = 9  # of the smooth bias by pitch


def gather(x, offsets):
    """Channels of each pitch at the offsets, zeros past either end."""
    width = max(map(abs, offsets))
    x = functional.pad(x, (width, width))
    return torch.cat([x[..., width + o : width + o + PITCHES] for o in offsets], 1)


class Net(nn.Module):
    def __init__(self):
        super().__init__()
        self.a = nn.Conv2d(2, 12, (5, 3))
        self.b = nn.Conv2d(12 * len(BANDS_SEEN), 24, 1)
        self.c = nn.Conv2d(24, 16, (4, 1))
        self.d = nn.Conv2d(16, 12, (4, 1), dilation=(4, 1))
        self.e = nn.Conv2d(12, 4, 1)
        self.f = nn.Conv2d(4 * len(PITCHES_SEEN) + 12, 12, 1)
        self.g = nn.Conv2d(12, 12, (3, 1))
        self.o = nn.Conv2d(12, len(LOOK) + 1, 1)
        knots = torch.linspace(0, PITCHES - 1, KNOTS)
        distance = (torch.arange(PITCHES)[None, :] - knots[:, None]).abs() / (knots[1] - knots[0])
        self.register_buffer("basis", torch.clamp(1 - distance, min=0))
        self.bias_b = nn.Parameter(torch.zeros(24, KNOTS))
        self.bias_d = nn.Parameter(torch.zeros(12, KNOTS))
        nn.init.constant_(self.o.bias, -4.0)

    def forward(self, x):
        """x: clips x 2 x frames x 84; answers logits, clips x 4 x (frames - CONTEXT) x 84."""
        x = functional.relu(self.a(functional.pad(x, (1, 1, 0, 0))))
        x = functional.relu(self.b(gather(x, BANDS_SEEN)) + (self.bias_b @ self.basis)[None, :, None, :])
        x = functional.relu(self.c(x))
        x = functional.relu(self.d(x) + (self.bias_d @ self.basis)[None, :, None, :])
        x = functional.relu(self.f(torch.cat([gather(self.e(x), PITCHES_SEEN), x], 1)))
        return self.o(functional.relu(self.g(x)))


def features(e):
    """e: clips x frames x 84, dB. Answers clips x 2 x (frames - 1) x 84: the level under a reference, which is the
    loudest band so far, falling by 10 dB a second, and the change of the level in one frame."""
    t = torch.arange(e.shape[1], dtype=e.dtype) * FALL
    loudest = torch.clamp(e.max(2).values, min=FLOOR)
    reference = (torch.cummax(loudest + t, 1).values - t)[:, :, None]
    lowest = reference - DEPTH
    level = torch.maximum(e, lowest)
    change = torch.clamp(level[:, 1:] - torch.maximum(e[:, :-1], lowest[:, 1:]), -12, 12)
    return torch.stack([((level - reference + 45) / 20)[:, 1:], change / 5], 1)


@torch.no_grad()
def outputs(net, energies):
    """energies: frames x 84, dB. Answers frames x 4 x 84 logits; row h of frame t speaks of frame t - LOOK[h]."""
    e = torch.cat([torch.full((CONTEXT + 1, PITCHES), -140.0), torch.as_tensor(energies).float()])
    x = features(e[None])
    return torch.cat(
        [net(x[:, :, at : at + 2000 + CONTEXT])[0] for at in range(0, x.shape[2] - CONTEXT, 2000)], 1
    ).permute(1, 0, 2)


LAYERS = ("a", "b", "c", "d", "e", "f", "g", "o")
BY_PITCH = {"b": "bias_b", "d": "bias_d"}


def write(net, path):
    """The offsets, then for each layer its sizes (rows, columns, number of biases), weights and biases."""
    lines = [f"{len(offsets)} {' '.join(map(str, offsets))}" for offsets in (BANDS_SEEN, PITCHES_SEEN)]
    for name in LAYERS:
        layer = getattr(net, name)
        weights = layer.weight.detach().reshape(len(layer.weight), -1)
        biases = layer.bias.detach()
        if name in BY_PITCH:
            biases = biases[:, None] + getattr(net, BY_PITCH[name]).detach() @ net.basis
        lines.append(f"{weights.shape[0]} {weights.shape[1]} {biases.numel()}")
        lines += [" ".join(f"{value:.5g}" for value in block.flatten().tolist()) for block in (weights, biases)]
    unfinished = path.with_suffix(".part")
    unfinished.write_text("\n".join(lines) + "\n")
    unfinished.replace(path)


def read(path):
    """The net of a text; a bias by pitch is taken apart into the layer's own and its knots."""
    words = iter(path.read_text().split())
    for offsets in (BANDS_SEEN, PITCHES_SEEN):
        given = [int(next(words)) for _ in range(int(next(words)))]
        assert given == list(offsets), f"{path} looks at other semitones"
    net = Net()
    with torch.no_grad():
        for name in LAYERS:
            layer = getattr(net, name)
            rows, columns, biases = (int(next(words)) for _ in range(3))
            weights = torch.tensor([float(next(words)) for _ in range(rows * columns)])
            layer.weight.copy_(weights.reshape(layer.weight.shape))
            bias = torch.tensor([float(next(words)) for _ in range(biases)])
            if name in BY_PITCH:
                at_knots = torch.linalg.lstsq(net.basis.T, bias.reshape(rows, PITCHES).T).solution.T
                getattr(net, BY_PITCH[name]).copy_(at_knots)
                layer.bias.zero_()
            else:
                layer.bias.copy_(bias)
    return net.eval()
