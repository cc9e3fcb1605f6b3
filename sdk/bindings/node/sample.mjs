// Renders a volume in every mode and loads one from files. Run it in the folder samples/data.
import { readFileSync } from 'node:fs';
import { Mode, Volume, loadChannels, rotation } from './zentra3d.mjs';

function checksum(pixels) { // FNV-1a
  let sum = 0x811c9dc5;
  for (const byte of new Uint8Array(pixels.buffer, pixels.byteOffset, pixels.byteLength)) {
    sum = Math.imul(sum ^ byte, 0x01000193);
  }
  return (sum >>> 0).toString(16).toUpperCase().padStart(8, '0');
}

function print(name, volume, view) {
  const { width, height, pixels } = volume.project(rotation(30, 40, 50), view);
  console.log(`${name.padEnd(9)} ${width} x ${height}  ${checksum(pixels)}`);
}

const size = { width: 48, height: 40, depth: 32 };
const volume = Volume.from(readFileSync('grey.raw'), size);
print('maximum', volume, { mode: Mode.maximum, low: 0, high: 255 });
print('minimum', volume, { mode: Mode.minimum, low: 1, high: 255 });
print('sum', volume, { mode: Mode.sum, low: 0, high: 255 });
print('surface', volume, { mode: Mode.surface, low: 60, high: 256 });
print('layers', volume, { mode: Mode.surface, low: 60, high: 256, extra: 0.5 });
print('blend', volume, { mode: Mode.blend, low: 0, high: 255, extra: 0.5 });
print('contrast', volume, { mode: Mode.contrast, low: 0, high: 256 });
print('first hit', volume, { mode: Mode.firstHit, low: 60, high: 255 });
volume.free();

const files = { red: 'red.raw', green: 'green.raw', blue: 'blue.raw' };
const { volume: colour, low, high } = loadChannels(files, { ...size, maxDiagonal: 60 });
const { width, height, depth } = colour.size;
console.log(`loaded    ${width} x ${height} x ${depth}, display range ${low} to ${high}`);
print('colour', colour, { mode: Mode.maximum, low: 0, high: 765 });
colour.free();

const abort = new AbortController();
try {
  loadChannels(files, {
    ...size,
    maxDiagonal: 60,
    signal: abort.signal,
    progress: (percent) => percent >= 50 && abort.abort(`cancelled at ${percent} %`),
  });
} catch (reason) {
  console.log(reason);
}
