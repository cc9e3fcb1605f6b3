// What a host in Node sees of failures. Run in the folder samples/data, with the path of
// zentra3d.mjs. Prints the checks
// that fail, and ends with their number.
import assert from 'node:assert/strict';
import { closeSync, copyFileSync, openSync, readFileSync, unlinkSync } from 'node:fs';
import { pathToFileURL } from 'node:url';

const { Mode, Volume, loadChannels, rotation, raw } = await import(pathToFileURL(process.argv[2]));
const size = { width: 48, height: 40, depth: 32 };
const files = { red: 'red.raw', green: 'green.raw', blue: 'blue.raw' };
const turn = rotation(30, 40, 50);
let failed = 0;

function check(name, body) {
  try {
    body();
  } catch (error) {
    failed += 1;
    console.log(`${name}: ${error.message}`);
  }
}

function residentGrowth(times, body) {
  for (let i = 0; i < times; ++i) body();
  globalThis.gc?.();
  const before = process.memoryUsage().rss;
  for (let i = 0; i < times; ++i) body();
  globalThis.gc?.();
  return process.memoryUsage().rss - before;
}

check('a file that is not there', () => {
  assert.throws(() => loadChannels({ ...files, green: 'none.raw' }, size), { code: 'ENOENT' });
});
check('a file that somebody may write to', () => {
  const writer = openSync('green.raw', 'r+');
  try {
    assert.throws(() => loadChannels(files, size), { code: 'EBUSY' });
  } finally {
    closeSync(writer);
  }
});
check('no file at all', () => assert.throws(() => loadChannels({}, size), RangeError));
check('a size of nothing', () => assert.throws(() => loadChannels(files, { ...size, depth: 0 }), RangeError));
check('too few voxels', () => assert.throws(() => Volume.from(new Uint8Array(7), size), RangeError));
check('what progress throws', () => {
  const thrown = new Error('mine');
  assert.throws(() => loadChannels(files, { ...size, progress: () => { throw thrown; } }), (error) => error === thrown);
});
check('an abort', () => {
  const abort = new AbortController();
  assert.throws(() => loadChannels(files, { ...size, signal: abort.signal, progress: () => abort.abort() }),
    { name: 'AbortError' });
});
check('progress comes to the end', () => {
  let last = 0;
  loadChannels(files, { ...size, progress: (percent) => { last = percent; } }).volume.free();
  assert.equal(last, 100);
});
check('a name outside the code page', () => {
  const name = '\u0442\u0435\u0441\u0442-\u65e5\u672c.raw';
  copyFileSync('red.raw', name);
  try {
    loadChannels({ red: name, green: name, blue: name }, size).volume.free();
  } finally {
    unlinkSync(name);
  }
});
check('one grey file', () => {
  const { volume, low, high } = loadChannels({ red: 'grey.raw', green: 'grey.raw', blue: 'grey.raw' }, size);
  assert.deepEqual([volume.size, low, high], [size, 0, 255]);
  volume.free();
});

const volume = Volume.from(readFileSync('grey.raw'), size);
check('no such mode', () => assert.throws(() => volume.project(turn, { mode: 7 }), RangeError));
check('no rotation', () => assert.throws(() => volume.project(new Array(9).fill(NaN)), RangeError));
check('the address is that of the functions', () => {
  const width = [0], height = [0];
  raw.GetRotDim(volume.address, turn, 1, 1, 1, 1, 1, 1, width, height, 0);
  assert.deepEqual([width[0], height[0]], [66, 65]);
});
check('pictures are released', () => assert.ok(residentGrowth(400, () => volume.project(turn)) < 8e6));
check('cancelled loads are released', () => {
  const load = () => loadChannels(files, { ...size, progress: (percent) => { if (percent > 90) throw volume; } });
  assert.ok(residentGrowth(200, () => assert.throws(load, (error) => error === volume)) < 8e6);
});
volume.free();
volume.free();
check('a freed volume', () => assert.throws(() => volume.project(turn, { mode: Mode.sum }), /freed/));
process.exit(failed);
