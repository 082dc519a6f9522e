#!/usr/bin/python3
"""Trains the net on the clips of a folder and writes its weights as text.

    train.py DATA WEIGHTS MINUTES [START] [--without SOURCE,...] [--rate R] [--steps N]

WEIGHTS is written anew every 200 steps. START: weights to begin with, else chance. Clips that are still being made
join as they come. --steps: stop after N steps, not by the clock, so that two runs can be compared. One thread unless
OMP_NUM_THREADS says otherwise.
"""

import argparse
import os
import sys
import time
from pathlib import Path

os.environ.setdefault("OMP_NUM_THREADS", "1")
sys.dont_write_bytecode = True

import numpy as np
import torch
import torch.nn.functional as functional

from data import CHOOSING, SILENT
from net import ACTIVE_LOOK, CONTEXT, LOOK, LOWEST, PITCHES, Net, features, read, write

SEGMENT, PAST, BATCH = 192, 250, 4  # frames judged, frames before them for the reference, clips a step
NEAR = {0: 1.0, 1: 0.75, -1: 0.75, 2: 0.3, -2: 0.3}  # what an onset output should say around an onset
HEAD_WEIGHTS = (0.1, 1.0, 1.0, 0.4)  # 30 ms, which nobody uses, 50, 80 ms, active
ONSET_WEIGHT = 2.0  # of a frame with an onset against one without
NOT_FOR_TRAINING = {"fluid"}


def target(notes, frames):
    onset = np.zeros((frames, PITCHES), np.float16)
    active = np.zeros((frames, PITCHES), np.float16)
    for start, end, pitch in notes:
        at, p = int(round(start * 100)), int(pitch) - LOWEST
        for near, value in NEAR.items():
            if 0 <= at + near < frames:
                onset[at + near, p] = max(onset[at + near, p], value)
        active[max(0, at) : max(at + 1, int(round(end * 100))), p] = 1
    return onset, active


class Clips:
    def __init__(self, folder, without):
        self.folder, self.without = folder, without | NOT_FOR_TRAINING
        self.known, self.clips, self.lengths = set(), [], []

    def refresh(self):
        for path in sorted(self.folder.glob("*.npz")):
            source, number = path.stem.split("-")
            if path in self.known or source in self.without or int(number) >= CHOOSING:
                continue
            self.known.add(path)
            clip = np.load(path)
            energies = clip["energies"]
            if energies.max() < -70 or len(energies) < SEGMENT + 50:
                continue
            self.clips.append((energies, *target(clip["notes"], len(energies))))
            self.lengths.append(len(energies))
        self.shares = np.array(self.lengths) / sum(self.lengths)

    def draw(self, random):
        """One example: energies of the context and the segment, and what the outputs should say."""
        energies, onset, active = self.clips[random.choice(len(self.clips), p=self.shares)]
        first = random.randint(max(LOOK), len(energies) - SEGMENT - 1)
        e = np.full((PAST + SEGMENT + CONTEXT + 1, PITCHES), SILENT, np.float32)
        begin = first - CONTEXT - PAST - 1
        e[max(0, -begin) :] = energies[max(0, begin) : first + SEGMENT]
        parts = [onset[first - look : first - look + SEGMENT] for look in LOOK]
        parts.append(active[first - ACTIVE_LOOK : first - ACTIVE_LOOK + SEGMENT])
        wanted = np.stack(parts).astype(np.float32)
        shift = random.randint(-3, 4) if random.rand() < 0.4 else 0  # semitones
        if shift:
            e, wanted = np.roll(e, shift, 1), np.roll(wanted, shift, 2)
            empty = slice(0, shift) if shift > 0 else slice(PITCHES + shift, PITCHES)
            e[:, empty] = SILENT
            wanted[..., empty] = 0
        if random.rand() < 0.4:  # a floor of noise, with a tilt
            floor = e.max() - random.uniform(25, 80) + random.randn() * 4 * np.linspace(-1, 1, PITCHES)
            power = 10 ** (floor / 10) * random.gamma(2, 0.5, size=e.shape)
            e = 10 * np.log10(10 ** (e / 10) + power)
        if random.rand() < 0.5:  # an equaliser
            e = e + np.interp(np.arange(PITCHES), np.linspace(0, PITCHES - 1, 6), random.randn(6) * 4)
        return e, wanted


def train(options):
    torch.set_num_threads(int(os.environ["OMP_NUM_THREADS"]))
    torch.manual_seed(options.seed)
    random = np.random.RandomState(options.seed)
    clips = Clips(options.data, set(options.without.split(",")) - {""})
    clips.refresh()
    net = read(options.start) if options.start else Net()
    net.train()
    mean = {name: value.clone() for name, value in net.state_dict().items()}
    shown = Net()
    optimizer = torch.optim.Adam(net.parameters(), betas=(0.9, 0.98))
    weights = torch.tensor(HEAD_WEIGHTS)[None, :, None, None]
    emphasis = torch.tensor([ONSET_WEIGHT] * len(LOOK) + [1.0])[None, :, None, None]
    began, step, losses = time.time(), 0, []
    while (done := step / options.steps if options.steps else (time.time() - began) / 60 / options.minutes) < 1:
        rate = options.rate * min(1, (step + 20) / 200) * (0.5 + 0.5 * np.cos(np.pi * done)) + 1e-5
        for group in optimizer.param_groups:
            group["lr"] = rate
        energies, wanted = (np.stack(part) for part in zip(*(clips.draw(random) for _ in range(BATCH))))
        x = features(torch.from_numpy(energies.astype(np.float32)))[:, :, PAST:]
        loss = functional.binary_cross_entropy_with_logits(
            net(x), torch.from_numpy(wanted), pos_weight=emphasis, reduction="none"
        )
        loss = (loss * weights).sum() / (BATCH * SEGMENT * PITCHES) * 50
        optimizer.zero_grad()
        loss.backward()
        torch.nn.utils.clip_grad_norm_(net.parameters(), 2.0)
        optimizer.step()
        step += 1
        losses.append(loss.item())
        with torch.no_grad():
            keep = min(0.998, step / (step + 50))
            for name, value in net.state_dict().items():
                mean[name].lerp_(value, 1 - keep)
        if step % 200 == 0:
            minutes = (time.time() - began) / 60
            print(f"{step} steps, {minutes:.1f} min, {len(clips.clips)} clips, loss {np.mean(losses[-200:]):.3f}", flush=True)
            shown.load_state_dict(mean)
            write(shown, options.weights)
            clips.refresh()
    shown.load_state_dict(mean)
    write(shown, options.weights)
    print(f"{step} steps, {step * BATCH * SEGMENT / 6000:.0f} minutes of sound")


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("data", type=Path)
    parser.add_argument("weights", type=Path)
    parser.add_argument("minutes", type=float)
    parser.add_argument("start", type=Path, nargs="?")
    parser.add_argument("--without", default="")
    parser.add_argument("--rate", type=float, default=4e-3)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--steps", type=int)
    train(parser.parse_args())
