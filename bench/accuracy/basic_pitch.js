// Hears recordings by basic-pitch, with the defaults of its Python program: onsets over 0.5, frames over 0.3, notes of
// 11 frames at least.
//
//   node basic_pitch.js MODULES < NAMES    MODULES: the node_modules folder of npm. NAMES: files of 32-bit float
//                                          samples, mono, 22,050 Hz, one a line
//
// Prints a line of JSON for each: a list of [start, end, pitch].
"use strict";
const fs = require("fs");
const path = require("path");

const modules = path.resolve(process.argv[2]);
const load = (name) => require(path.join(modules, name));
const tf = load("@tensorflow/tfjs");
const wasm = load("@tensorflow/tfjs-backend-wasm");
const { BasicPitch, noteFramesToTime, outputToNotesPoly } = load("@spotify/basic-pitch");

const folder = path.join(modules, "@spotify/basic-pitch/model");
const model = {
    load: async () => {
        const { modelTopology, weightsManifest } = JSON.parse(fs.readFileSync(path.join(folder, "model.json")));
        const parts = weightsManifest[0].paths.map((name) => fs.readFileSync(path.join(folder, name)));
        const bytes = Buffer.concat(parts);
        const weightData = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length);
        return { modelTopology, weightSpecs: weightsManifest[0].weights, weightData };
    },
};

async function main() {
    wasm.setWasmPaths(path.join(modules, "@tensorflow/tfjs-backend-wasm/dist/"));
    await tf.setBackend("wasm");
    // This backend's Fill wants to know its type; the others take a missing one for float32.
    const fill = tf.getKernel("Fill", "wasm");
    const typed = (call) => fill.kernelFunc({ ...call, attrs: { ...call.attrs, dtype: call.attrs.dtype || "float32" } });
    tf.unregisterKernel("Fill", "wasm");
    tf.registerKernel({ ...fill, kernelFunc: typed });
    const net = await tf.loadGraphModel(model);
    const listener = new BasicPitch(Promise.resolve(net));
    for (const name of fs.readFileSync(0, "utf8").split("\n").filter(Boolean)) {
        const bytes = fs.readFileSync(name);
        const samples = new Float32Array(bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length));
        const frames = [], onsets = [];
        tf.engine().startScope();
        await listener.evaluateModel(samples, (f, o) => { frames.push(...f); onsets.push(...o); }, () => {});
        tf.engine().endScope();
        const notes = noteFramesToTime(outputToNotesPoly(frames, onsets, 0.5, 0.3, 11));
        const rows = notes.map((n) => [n.startTimeSeconds, n.startTimeSeconds + n.durationSeconds, n.pitchMidi]);
        console.log(JSON.stringify(rows));
    }
}
main().catch((error) => { console.error(error.stack); process.exit(1); });
