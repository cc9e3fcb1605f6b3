// Renders 3D image volumes with Zentra3DRendering.dll, a 32-bit Windows DLL: for 32-bit Node (win32, ia32), with the
// package koffi. The DLL lies beside node.exe, beside this file or on the path. Its header, Zentra3DRendering.h, is
// the reference for what each function does.
import koffi from 'koffi';
import { closeSync, existsSync, openSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

if (process.platform !== 'win32' || process.arch !== 'ia32') {
  throw new Error('Zentra3DRendering.dll is a 32-bit Windows DLL: it needs the ia32 Node for win32, and this one is ' +
    `for ${process.platform}, ${process.arch}`);
}

/** What a projection shows. */
export const Mode = Object.freeze({ maximum: 0, minimum: 1, sum: 2, surface: 3, blend: 4, contrast: 5, firstHit: 6 });

/** What a pixel without a contribution holds, in most modes and in the minimum. */
export const NO_VALUE = -3.4028234663852886e38;
export const NO_MINIMUM = 3.4028234663852886e38;

/** What the library tells its callback, and the answer that cancels. */
export const ProgressCode = Object.freeze({ failed: 0, start: 101, percent: 102, noGrey: 200 });
const CANCEL = 200;
const LONGEST = 32767;

const Volume3D = koffi.struct('Volume3D', {
  slices: 'uint32_t', sliceRows: 'uint32_t', width: 'uint16_t', height: 'uint16_t', depth: 'uint16_t',
});
koffi.proto('int __stdcall ProgressCallback(unsigned int user, int code, unsigned int value)');

const beside = fileURLToPath(new URL('Zentra3DRendering.dll', import.meta.url));
const dll = koffi.load(existsSync(beside) ? beside : 'Zentra3DRendering.dll');
const kernel32 = koffi.load('kernel32.dll');
const declare = (library, declarations) => Object.fromEntries(declarations.map(([result, name, parameters]) =>
  [name, library.func(`${result} __stdcall ${name}(${parameters})`)]));

/** All functions of the DLL as its header declares them; addresses are as koffi gives them. */
export const raw = declare(dll, [
  ['int', 'AdjustGamma', 'const uint8_t *table, float level'],
  ['void', 'ChangeOrder', 'const short *from, const short *to, _Inout_ float *x, _Inout_ float *y, _Inout_ float *z'],
  ['void', 'CreateRotateMatrix', '_Out_ double *matrix, const short *order, float x, float y, float z'],
  ['void', 'Free3DData', 'void *volume'],
  ['void', 'GetAngleXY',
    '_Out_ double *matrix, double m02, double m12, double m22, _Out_ float *x, _Out_ float *y, float z'],
  ['void', 'GetAngleXYZ', 'const double *matrix, _Out_ float *x, _Out_ float *y, _Out_ float *z'],
  ['void', 'GetAngleYZ',
    '_Out_ double *matrix, double m00, double m10, double m20, _Out_ float *y, _Out_ float *z, float x'],
  ['void', 'GetAngleYZX', 'const double *matrix, _Out_ float *x, _Out_ float *y, _Out_ float *z'],
  ['void', 'GetAngleZX',
    '_Out_ double *matrix, double m01, double m11, double m21, _Out_ float *x, _Out_ float *z, float y'],
  ['void', 'GetAngleZXY', 'const double *matrix, _Out_ float *x, _Out_ float *y, _Out_ float *z'],
  ['void *', 'GetRGBImage', 'const char *red, const char *green, const char *blue, short width, short height, ' +
    'short depth, int reserved1, int reserved2, int reserved3, short is8bit, short maxDiagonal, _Out_ float *outMax, ' +
    '_Out_ float *outMin, _Out_ float *rangeMax, _Out_ float *rangeMin, unsigned int user, ' +
    'ProgressCallback *callback, int keepChannelsApart'],
  ['void', 'GetRotDim', 'void *volume, const float *rotation, short x0, short x1, short y0, short y1, short z0, ' +
    'short z1, _Out_ uint16_t *width, _Out_ uint16_t *height, int reserved'],
  ['void *', 'GetRotProjection', 'void *volume, const float *rotation, short mode, short x0, short x1, short y0, ' +
    'short y1, short z0, short z1, float high, float low, float extra, _Out_ uint16_t *width, ' +
    '_Out_ uint16_t *height, int reserved'],
  ['void *', 'GlobalAlloc2D', 'unsigned int width, unsigned int height, unsigned int bytesPerPixel'],
  ['void *', 'GlobalAlloc3D',
    'unsigned int width, unsigned int height, unsigned int depth, unsigned int bytesPerPixel'],
  ['void', 'GlobalFree2D', 'void *image'],
  ['void', 'GlobalFree3D', 'void *volume'],
  ['void *', 'GlobalLock2D', 'void *image'],
  ['void *', 'GlobalLock3D', 'void *volume'],
  ['int', 'GlobalUnlock2D', 'void *image'],
  ['int', 'GlobalUnlock3D', 'void *volume'],
  ['void *', 'SetRenderMsgTitle', 'const char *title'],
  ['short', 'SubvolumeConvert', 'int value, int newScale, int oldScale, short roundUp'],
]);

const system = declare(kernel32, [
  ['void *', 'GlobalHandle', 'void *address'],
  ['int', 'GlobalUnlock', 'void *block'],
  ['void *', 'GlobalFree', 'void *block'],
  ['int', 'WideCharToMultiByte', 'unsigned int codePage, uint32_t flags, const char16_t *wide, int wideLength, ' +
    '_Out_ uint8_t *text, int textLength, void *fallback, void *fellBack'],
  ['int', 'MultiByteToWideChar', 'unsigned int codePage, uint32_t flags, const uint8_t *text, int textLength, ' +
    '_Out_ uint16_t *wide, int wideLength'],
  ['int', 'CreateFileA', 'const uint8_t *name, uint32_t access, uint32_t share, void *security, uint32_t how, ' +
    'uint32_t attributes, void *template'],
  ['int', 'CloseHandle', 'int file'],
  ['uint32_t', 'GetShortPathNameW', 'const char16_t *path, _Out_ uint16_t *short, uint32_t length'],
]);

/** The nine floats of the rotation by three angles in degrees, one about each axis, leftmost factor first. */
export function rotation(x, y, z, order = 'XYZ') {
  const axes = Int16Array.from(order, (axis) => 'XYZ'.indexOf(axis));
  if (axes.length !== 3 || axes.includes(-1)) throw new RangeError(`axis order ${order}: not three of X, Y, Z`);
  const matrix = new Float64Array(9);
  raw.CreateRotateMatrix(matrix, axes, x, y, z);
  return Float32Array.from(matrix);
}

const releaseForgotten = new FinalizationRegistry((address) => raw.Free3DData(address));

/** A stack of equal slices. free() releases it; `using` does so by itself where the language has it. */
export class Volume {
  #address;

  constructor(address) {
    this.#address = address;
    releaseForgotten.register(this, address, this);
  }

  /** Copies voxels, x fastest, then y, then z: bytesPerVoxel is 1 for grey, 3 for red, green, blue. */
  static from(voxels, { width, height, depth, bytesPerVoxel = 1 }) {
    checkSize(width, height, depth);
    if (bytesPerVoxel !== 1 && bytesPerVoxel !== 3) throw new RangeError('bytesPerVoxel is 1 or 3');
    const sliceBytes = width * height * bytesPerVoxel;
    if (voxels.length !== sliceBytes * depth) {
      throw new RangeError(`${voxels.length} bytes given, ${sliceBytes * depth} wanted`);
    }
    const address = raw.GlobalAlloc3D(width, height, depth, bytesPerVoxel);
    const slices = address === null ? null : raw.GlobalLock3D(address);
    if (slices === null) {
      raw.Free3DData(address);
      throw outOfMemory();
    }
    const volume = new Volume(address);
    koffi.decode(slices, 'void *', depth).forEach((rows, z) => {
      const slice = voxels.subarray(z * sliceBytes, (z + 1) * sliceBytes);
      koffi.encode(koffi.decode(rows, 'void *'), 'uint8_t', slice, sliceBytes); // the rows follow one another
    });
    raw.GlobalUnlock3D(address);
    return volume;
  }

  /** The DLL's address of the volume, for the functions in `raw`. */
  get address() {
    if (this.#address === null) throw new Error('the volume has been freed');
    return this.#address;
  }

  get size() {
    const { width, height, depth } = koffi.decode(this.address, Volume3D);
    return { width, height, depth };
  }

  /** Renders. Voxels from low to high count (of RGB volumes, the sum of the channels); extra is the attenuation of
   *  layered surfaces or the transparency of blends; crop is [x0, x1, y0, y1, z0, z1], 1-based, inclusive.
   *  Gives { width, height, pixels }: three floats per pixel, the top row first. */
  project(turn, { mode = Mode.maximum, low = 0, high = 255, extra = 0, crop } = {}) {
    if (!Object.values(Mode).includes(mode)) throw new RangeError(`there is no mode ${mode}`);
    if (turn.length !== 9) throw new RangeError('a rotation has nine elements');
    const matrix = Float32Array.from(turn);
    const { width, height, depth } = this.size;
    const box = crop ?? [1, width, 1, height, 1, depth];
    const w = [0], h = [0];
    const address = raw.GetRotProjection(this.address, matrix, mode, ...box, high, low, extra, w, h, 0);
    if (address === null) {
      if (w[0] === 0) throw new RangeError('the rotation is not finite, or too large');
      throw outOfMemory();
    }
    try {
      return { width: w[0], height: h[0], pixels: koffi.decode(address, 'float', 3 * w[0] * h[0]) };
    } finally {
      const block = system.GlobalHandle(address); // the address is not the handle
      system.GlobalUnlock(block);
      system.GlobalFree(block);
    }
  }

  free() {
    if (this.#address === null) return;
    releaseForgotten.unregister(this);
    raw.Free3DData(this.#address);
    this.#address = null;
  }
}
if (Symbol.dispose) Volume.prototype[Symbol.dispose] = Volume.prototype.free;

/** Makes a volume of up to three raw files of one stored size: RGB, or grey when all three are the same.
 *  progress(percent) is called with the percentage of the running phase; what it throws cancels, and is thrown
 *  again; so does a signal of an AbortController. Gives { volume, low, high }: the range to display.
 *  @param {{red?: string, green?: string, blue?: string}} files */
export function loadChannels({ red, green, blue }, { width, height, depth, floats = false, maxDiagonal = LONGEST,
  keepApart = false, progress, signal }) {
  checkSize(width, height, depth);
  signal?.throwIfAborted();
  const names = [red, green, blue].map((path) => (path ? channelName(path) : null));
  if (names.every((name) => name === null)) throw new RangeError('no channel file is named');
  let thrown = null;
  const onProgress = (user, code, bits) => {
    try { // nothing may be thrown through the library
      if (code === ProgressCode.percent) progress?.(new Float32Array(Uint32Array.of(bits).buffer)[0]);
      signal?.throwIfAborted();
      return 0;
    } catch (error) {
      thrown = { error };
      return CANCEL;
    }
  };
  const high = [0], low = [0];
  const address = raw.GetRGBImage(...names, width, height, depth, 0, 0, 0, floats ? 0 : 1,
    Math.min(maxDiagonal, LONGEST), high, low, null, null, 0, progress || signal ? onProgress : null,
    keepApart ? 1 : 0);
  if (thrown) {
    raw.Free3DData(address);
    throw thrown.error;
  }
  if (address === null) throw outOfMemory();
  return { volume: new Volume(address), low: low[0], high: high[0] };
}

function checkSize(...lengths) {
  if (!lengths.every((length) => Number.isInteger(length) && length >= 1 && length <= LONGEST)) {
    throw new RangeError(`${lengths.join(' x ')}: each length is a whole number from 1 to ${LONGEST}`);
  }
}

function outOfMemory() {
  return Object.assign(new Error('Zentra3DRendering: memory is short'), { code: 'ERR_MEMORY_ALLOCATION_FAILED' });
}

// The path in the system's code page, which is all that the library takes. What that code page cannot say goes by its
// short name. A file that cannot be opened, or that somebody may write to, is thrown here, before the library shows it to
// the user in a message box.
function channelName(path) {
  closeSync(openSync(path, 'r'));
  const name = narrow(path) ?? narrow(shortName(path));
  if (name === null) throw new Error(`${path}: the name cannot be said in the system's code page`);
  const file = system.CreateFileA(name, FOR_READING, SHARE_WITH_READERS, null, OPEN_EXISTING, 0, null);
  if (file === INVALID_HANDLE) {
    throw Object.assign(new Error(`${path}: somebody may write to the file, or its path is too long`), { code: 'EBUSY' });
  }
  system.CloseHandle(file);
  return name;
}

const FOR_READING = 0x80000000;
const SHARE_WITH_READERS = 1;
const OPEN_EXISTING = 3;
const INVALID_HANDLE = -1;

function shortName(path) {
  const short = new Uint16Array(32768);
  const length = system.GetShortPathNameW(path, short, short.length);
  return String.fromCharCode(...short.subarray(0, length));
}

// Null when the way back does not lead to the same text.
function narrow(path) {
  const text = new Uint8Array(4 * path.length + 1);
  system.WideCharToMultiByte(0, 0, path, -1, text, text.length, null, null);
  const wide = new Uint16Array(path.length + 1);
  const length = system.MultiByteToWideChar(0, 0, text, -1, wide, wide.length);
  const isSame = length === wide.length && path.length > 0 && String.fromCharCode(...wide.subarray(0, -1)) === path;
  return isSame ? text : null;
}
