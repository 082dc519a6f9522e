"""Those whose hearing is compared on the judged corpus. Each answers the notes of a recording as (start, end, pitch)."""

import json
import math
import os
import subprocess
import sys
import wave
from pathlib import Path

import numpy

import transcribe

ROOT = Path(__file__).resolve().parents[2]
RATE = 44100  # of the judged sounds
MODULES = Path(os.environ.get("NODE_MODULES", ROOT / "build/accuracy/node_modules"))
PACKAGES = ("@spotify/basic-pitch@1.0.1", "@tensorflow/tfjs-backend-wasm@3.21.0")


def samples_of(record):
    return numpy.fromfile(record["sound"], "<i2").astype(numpy.float32) / 32768


def by_host(records, ear):
    """What orva-host hears with this ear."""
    sounds = []
    for record in records:
        path = record["sound"].with_suffix(".wav")
        if not path.exists():
            with wave.open(str(path), "wb") as file:
                file.setparams((1, 2, RATE, 0, "NONE", ""))
                file.writeframes(record["sound"].read_bytes())
        sounds.append(path)
    return transcribe.heard_by_orva(sounds, ear=ear)


def by_net(records, weights, head, settings):
    """The net in floating point, as it is trained: for weights that are not in the plug-in yet."""
    sys.path.insert(0, str(ROOT / "listening/training"))
    import net as nets
    import picker

    net = nets.read(weights)
    program = ROOT / "build/release/listening/training/listening_energies"
    takes = []
    for record in records:
        cache = record["sound"].with_suffix(".npy")
        if not cache.exists():
            output = subprocess.run(
                [program, str(RATE)], input=samples_of(record).tobytes(), check=True, stdout=subprocess.PIPE
            ).stdout
            power = numpy.frombuffer(output, "<f4").reshape(-1, 84)
            numpy.save(cache, numpy.clip(10 * numpy.log10(power + 1e-14), -140, 20).astype(numpy.float16))
        logits = nets.outputs(net, numpy.load(cache).astype(numpy.float32)).numpy()
        onset, active = (math.log(settings[key] / (1 - settings[key])) for key in (str(head), "active"))
        takes.append(picker.pick(logits, head, onset, active, shift=settings["shift"]))
    return takes


def by_basic_pitch(records):
    """basic-pitch by TensorFlow.js. What it heard is kept beside the sound, since it takes long."""
    waiting = [record for record in records if not record["sound"].with_suffix(".basic_pitch").exists()]
    for record in waiting:
        spectrum = numpy.fft.rfft(samples_of(record))
        count = len(samples_of(record)) // 2
        halved = numpy.fft.irfft(spectrum[: count // 2 + 1], count) / 2  # to 22,050 Hz, nothing above its half
        path = record["sound"].with_suffix(".f32")
        halved.astype("<f4").tofile(path)
        command = ["node", Path(__file__).with_name("basic_pitch.js"), MODULES]
        heard = subprocess.run(command, input=f"{path}\n", text=True, check=True, stdout=subprocess.PIPE).stdout
        path.unlink()
        record["sound"].with_suffix(".basic_pitch").write_text(heard)
    return [json.loads(record["sound"].with_suffix(".basic_pitch").read_text()) for record in records]
