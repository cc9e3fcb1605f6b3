/*
 * Zentra3DRendering - renders 3D image volumes. The one public header (C89), for builds of 32 and of 64 bits.
 *
 * On Windows link with Zentra3DRendering.lib (short-import format: MinGW, MSVC, clang-cl) or load the DLL and take
 * the undecorated names with GetProcAddress. Process and DLL have to be of one bitness (else error 193): there is
 * one for 32-bit and one for x64 programs, with the same names and the same results to the last bit.
 *
 * Rules for every function
 * - Calling convention: on 32-bit Windows stdcall (Z3D_CALL); 4-byte stack alignment is enough, and every argument
 *   takes one 32-bit slot (a double takes two). Elsewhere the platform's own convention, with the stack alignment
 *   that it asks for. Of a 16-bit argument only the low 16 bits count, of a 32-bit one only the low 32.
 * - Floating point: the host may run with any control word, precision, rounding or exception mask, also with
 *   numbers on the x87 stack or MMX registers in use. The library switches to a state of its own for the call
 *   and puts the host's back exactly. Results do not depend on it.
 * - Failure: a null handle, a null pointer or 0. No exception leaves the library, nothing is logged, and
 *   nothing that a failed call took is kept.
 * - Null pointers: a lock gives null, an unlock 0 (image) or 1 (volume), a free does nothing; elsewhere a
 *   null pointer gives no effect or the failure result.
 * - Threads: the library makes none and works on the caller's. Calls on different objects may run at the same
 *   time. Rendering locks and unlocks its volume, so no two calls may render, lock, unlock or free the same
 *   volume at the same time.
 * - Sizes: the same limits hold for all builds, whatever memory a 64-bit process has.
 * - Processor: x86 with SSE2, or x64. Results are the same to the last bit on every processor.
 */
#ifndef ZENTRA3DRENDERING_H
#define ZENTRA3DRENDERING_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32)
#define Z3D_CALL __stdcall
#else
#define Z3D_CALL
#endif

/* ------------------------------------------------------------------------------------------------------ */
/* Records. Hosts read the fields; only the library writes them. Their offsets: 32-bit | 64-bit builds.     */
/* ------------------------------------------------------------------------------------------------------ */

/*
 * An image: width * height pixels, row 0 first, rows without padding, in one movable block of global memory.
 * Pixel addresses are valid only between a lock and its unlock.
 */
typedef struct Image2D {
    void* mem;                  /*  0 |  0: HGLOBAL of the pixels; owned by the image */
    unsigned char** rows;       /*  4 |  8: `height` row addresses while locked, else null */
    unsigned short width;       /*  8 | 16: pixels per row */
    unsigned short height;      /* 10 | 18: rows */
    unsigned int bytesPerPixel; /* 12 | 20: 1 grey byte; 3 red, green, blue bytes; 4 grey 32-bit float */
} Image2D;                      /* 16 | 24 bytes */

/*
 * A volume: `depth` slices of equal size and pixel type, slice 0 first. While it is locked, the voxel at
 * column x, row y, slice z (all 0-based) starts at sliceRows[z][y] + x * bytesPerPixel.
 */
typedef struct Volume3D {
    Image2D** slices;           /*  0 |  0: `depth` images, owned by the volume; an entry may be null */
    unsigned char*** sliceRows; /*  4 |  8: `depth` row tables while locked, else null */
    unsigned short width;       /*  8 | 16: pixels per row of every slice */
    unsigned short height;      /* 10 | 18: rows of every slice */
    unsigned short depth;       /* 12 | 20: slices */
} Volume3D;                     /* 16 | 24 bytes */

/* The order of the three factors of a rotation, leftmost first: 0 = X, 1 = Y, 2 = Z. 6 bytes. */
typedef struct AxisOrder {
    short axis[3];
} AxisOrder;

/* What a projection shows; GetRotProjection explains each. */
enum RenderMode {
    RenderModeMaximum = 0,
    RenderModeMinimum = 1,
    RenderModeSum = 2,
    RenderModeSurface = 3, /* the first surface, or layered surfaces where `extra` is not 0 */
    RenderModeBlend = 4,
    RenderModeContrast = 5,
    RenderModeFirstHit = 6
};

/* What GetRGBImage tells the host's ProgressCallback, and the answer that cancels it. */
enum ProgressCode {
    ProgressCodeFailed = 0,    /* the last call: no result, after a failure or a cancel */
    ProgressCodeStart = 101,   /* a phase of work starts */
    ProgressCodePercent = 102, /* how far the phase has come */
    ProgressCodeNoGrey = 200   /* a conversion to grey cannot run */
};
enum ProgressAnswer { ProgressGoOn = 0, ProgressCancel = 200 };

/* What a pixel without a contribution holds, in most modes and in the minimum: the lowest and the highest float. */
#define Z3D_NO_VALUE (-3.402823466e+38F)
#define Z3D_NO_MINIMUM 3.402823466e+38F

#ifndef Z3D_RECORDS_ONLY /* the library's own sources define it: they have functions of the same names */

/* ------------------------------------------------------------------------------------------------------ */
/* Images and volumes                                                                                      */
/* ------------------------------------------------------------------------------------------------------ */

/*
 * Makes an image whose pixels are all zero.
 *   width, height    pixels; the low 16 bits of each count
 *   bytesPerPixel    1, 3 or 4 for the library's own pixel types; any other value is kept as it is
 * Returns  the image, unlocked.
 * Fails    null when memory is short.
 * Owner    the host; release with GlobalFree2D.
 * Threads  any.
 * Warning  the block has width * height * bytesPerPixel bytes counted in 32 bits. A larger product wraps, and
 *          rows then lie outside the block; the library itself never renders such an image. An image of 0
 *          bytes is made but cannot be locked.
 */
Image2D* Z3D_CALL GlobalAlloc2D(unsigned int width, unsigned int height, unsigned int bytesPerPixel);

/*
 * Makes a volume whose voxels are all zero.
 *   width, height, depth  voxels; the low 16 bits of each count
 *   bytesPerPixel         as for GlobalAlloc2D; 0 makes a volume without slices (every entry null), which
 *                         cannot be locked or rendered until its slices have been attached
 * Returns  the volume, unlocked. Depth 0 gives a volume with an empty slice table.
 * Fails    null when memory is short; slices made so far are released.
 * Owner    the host; release with GlobalFree3D or Free3DData.
 * Threads  any.
 */
Volume3D* Z3D_CALL GlobalAlloc3D(unsigned int width, unsigned int height, unsigned int depth,
                                 unsigned int bytesPerPixel);

/*
 * Locks an image and gives the addresses of its rows. Locking a locked image changes nothing and gives the
 * same table: one unlock is enough.
 * Returns  a table of `height` row addresses, valid until the unlock.
 * Fails    null when the table or the lock cannot be had. After a failed lock of the pixels the image keeps a
 *          table of null rows, and the next call returns that table.
 * Owner    the image.
 * Threads  one at a time per image.
 */
unsigned char** Z3D_CALL GlobalLock2D(Image2D* image);

/*
 * Locks every slice of a volume and gives their row tables. Every slice must be there. Locking a locked
 * volume changes nothing and gives the same table.
 * Returns  a table of `depth` row tables, valid until the unlock.
 * Fails    null when a slice is missing or cannot be locked; slices locked so far are unlocked again.
 * Owner    the volume.
 * Threads  one at a time per volume.
 */
unsigned char*** Z3D_CALL GlobalLock3D(Volume3D* volume);

/*
 * Unlocks an image.
 * Returns  0 on success and also when the image was not locked; non-zero when the host itself holds further
 *          locks on the same pixels.
 * Threads  one at a time per image.
 */
int Z3D_CALL GlobalUnlock2D(Image2D* image);

/*
 * Unlocks every slice of a volume.
 * Returns  0 on success; 1 when the volume was not locked, or when the host holds further locks on the pixels
 *          of every slice.
 * Threads  one at a time per volume.
 */
int Z3D_CALL GlobalUnlock3D(Volume3D* volume);

/* Releases an image, unlocking it first where needed. Null does nothing. Threads: one at a time per image. */
void Z3D_CALL GlobalFree2D(Image2D* image);

/* Releases a volume with its slices, unlocking it first where needed. Null does nothing. Threads: one at a
 * time per volume. */
void Z3D_CALL GlobalFree3D(Volume3D* volume);

/* The same as GlobalFree3D: the way to release a volume that the library returned. Null does nothing. */
void Z3D_CALL Free3DData(Volume3D* volume);

/* ------------------------------------------------------------------------------------------------------ */
/* Projections                                                                                             */
/* ------------------------------------------------------------------------------------------------------ */

/*
 * Where voxels appear. With a volume of N voxels and a picture of W x H pixels, voxel v (0-based) is seen
 *     (W - 1) / 2 + right   columns from the left,
 *     (H - 1) / 2 - up      rows from the top,    where (right, up, away) = R * (v - (N - 1) / 2)
 * Example: 5 x 4 x 3 voxels turned by 90 degrees about Z make 4 x 5 pixels. Voxel (4, 0, 1) is (2, -1.5, 0) from
 * the centre, turned (1.5, 2, 0), so at column 3 of the top row. Not turned it is at column 4 of row 3.
 * - Voxels count as cubes. A scan with another spacing is resampled by the host first.
 * - Right, up, away is a left-handed system. A scan with right-handed axes, as usual (x to the patient's left, y to
 *   the back, z to the head), appears mirrored under every true rotation. A host that minds negates row 0 of the
 *   matrix, which mirrors the picture, or shows each row from right to left.
 * - A sample is the nearest voxel, and samples are one voxel length apart: oblique views can miss single voxels.
 */

/*
 * The size of the projection of a volume under a rotation: the bounding box of the rotated volume, in pixels
 * of one voxel each. It depends on the volume's size and the rotation alone; the crop box does not change it.
 *   volume         its slices are not touched and its lock state stays
 *   rotation       9 floats, row by row. Row 0 is the view's x axis (to the right), row 1 its y axis (up),
 *                  row 2 the viewing direction (away from the viewer), each in volume axes.
 *                  CreateRotateMatrix gives doubles: convert them.
 *   x0 .. z1       crop box as for GetRotProjection; accepted for symmetry
 *   width, height  receive the size; each keeps its low 16 bits, so sizes above 65535 wrap (possible with matrices
 *                  that stretch). A null one is skipped.
 *   reserved       ignored
 * Fails    stores 0 and 0 when the volume or the rotation is null, when the rotation is not finite or so large
 *          that a size is above 2147483647, or when memory is short. A volume with a dimension of 0 has a size
 *          of no meaning.
 * Threads  any.
 */
void Z3D_CALL GetRotDim(Volume3D* volume, const float* rotation, short x0, short x1, short y0, short y1,
                        short z0, short z1, unsigned short* width, unsigned short* height, int reserved);

/*
 * Renders a rotated projection of a volume: one ray per pixel along the viewing direction, one sample of the
 * nearest voxel per voxel length. Volumes of 3 bytes per voxel are rendered in colour, all others as grey
 * bytes.
 *   volume         every slice present and of the volume's size. It is locked for the call and left unlocked,
 *                  also when the host had locked it. The first slice's format decides how all are read: 3 bytes
 *                  per voxel where it has 3, else 1, from the first byte of every slice on.
 *   rotation       9 floats as for GetRotDim; expected to be orthonormal: its transpose is its inverse. Others are
 *                  used as they are, up to a length of 1024 of row 2: as many samples are taken per voxel, and a
 *                  call takes as many times longer.
 *   mode           one of enum RenderMode: what a pixel holds, see below
 *   x0, x1, y0, y1, z0, z1
 *                  crop box in voxels, 1-based, inclusive: 1..width, 1..height, 1..depth is the whole volume.
 *                  Swapped ends and values beyond the volume are put right. The box reaches from centre to centre
 *                  of its outermost voxels, one of a single voxel half a voxel to both sides, and rays are
 *                  sampled from where they enter it: not turned, a box of one slice shows the slice before it
 *                  too. The grey maximum takes one sample more at the far end.
 *   high, low      intensity window, upper bound first. Grey: tested on the voxel, 0..255. Colour: tested on
 *                  the sum of the three channels, 0..765. Inclusive at both ends, but strict in modes 3 and 5.
 *                  low > high accepts nothing; a bound that is not a number accepts nothing, and bounds nothing
 *                  in mode 4.
 *   extra          mode 3: 0 (or not a number) shows the first surface, any other value layered surfaces with
 *                  this attenuation.
 *                  mode 4: the transparency, usually 0..1; 1 is taken as 0.95. Ignored by the other modes.
 *   width, height  receive the size that GetRotDim gives, whatever the mode
 *   reserved       ignored
 *
 * Modes
 *   0  maximum: the largest voxel in the window along the ray. Colour: the largest of each channel among the
 *      voxels in the window, so the channels of one pixel may come from different voxels.
 *   1  minimum: the smallest, likewise.
 *   2  sum: the sum of the voxels in the window, not averaged; single precision. Colour: per channel.
 *   3  shaded surface: a voxel is material when its value lies strictly inside the window. Grey: the shade, 0..1
 *      (the cosine between the intensity gradient and the viewing direction), where the ray first meets the
 *      material; layered: the sum of the shades of all entries, the n-th, from 0, times extra to the power n.
 *      Colour: the shade times each channel's share of the voxel's sum.
 *      Volumes of 1 or 2 slices are not shaded (shade 1), and their grey first surface looks at the nearest
 *      sample alone. A black voxel in a colour window with a negative low gives floats that are not finite.
 *   4  translucent blend, back to front: each voxel in the window covers what lies behind it by its value over
 *      255 (colour: sum over 765) times 1 - extra.
 *   5  local contrast: the largest difference between a voxel strictly inside the window and its neighbours in
 *      the picture plane; neighbours count when they, too, lie strictly inside the window. Grey: the sum over
 *      four neighbours. Colour: one neighbour's difference, shared out in the voxel's proportions. A voxel
 *      without any difference counts as none, so flat areas are empty. The outermost rows and columns of the
 *      projection are not rendered. In volumes of 1 or 2 slices every voxel in the window scores 1.
 *   6  first hit: the voxel in the window that is nearest to the viewer.
 *   any other: null, with the size stored
 *
 * What pixels hold. A pixel is three floats: red, green, blue in colour, and the same value three times in grey.
 *      mode           values of a float                empty pixels    suggested as bytes
 *   0  maximum        0..255                           -3.4028235e38   as they are, or windowed (below)
 *   1  minimum        0..255                           +3.4028235e38   the same
 *   2  sum            0..255 times the samples         -3.4028235e38   value * 255 / largest of the picture
 *   3  surface        0..1, layers to their number,    0               value * 255; layers and colours
 *                     colours add up to at most 1                      value * 255 / largest of the picture
 *   4  blend          0..255 for transparencies 0..1   -3.4028235e38   as they are, or windowed
 *   5  contrast       0..1020; colours add up to at    -3.4028235e38;  value * 255 / largest of the picture
 *                     most 765; 1 in thin volumes      the border 0
 *   6  first hit      0..255                           -3.4028235e38   as they are, or windowed
 * -3.4028235e38 has the bits 0xFF7FFFFF, +3.4028235e38 0x7F7FFFFF. They are marks: map them to the background
 * first. Windowed: (value - outMin) * 255 / (outMax - outMin), held to 0..255, with the display range that
 * GetRGBImage gives; that of a colour is of the sum of the channels: divide it by 3. A grey file of one value has
 * equal ends: show it as it is, in a window of 0..255. Else outMax and outMin, as `high` and `low`, are a window that
 * accepts every voxel (in modes 3 and 5, whose window excludes its ends, and for grey of floats, one wider).
 *
 * Returns  W * H pixels of 3 floats (12 bytes), top row of the view first, rows without padding, in raw voxel
 *          scale, not normalised. Where W or H is above 65535, the block has all pixels but the stored size does
 *          not say so.
 * Fails    null for an unknown mode; for a null volume, rotation or size pointer; for a rotation that GetRotDim
 *          refuses, or whose row 2 is longer than 1024 (doubles passed as floats look like that); when a dimension
 *          is 0, or a slice is missing, has another size, or has too few bytes for the first one's format;
 *          when W * H * 12 does not fit 32 bits; when memory is short. Sizes are stored where they are known,
 *          else 0 and 0. A volume that was to be rendered is left unlocked.
 * Owner    the host. The pixels are a locked block of global memory; their address is not its handle:
 *              HGLOBAL block = GlobalHandle(pixels);
 *              GlobalUnlock(block);
 *              GlobalFree(block);
 * Threads  one call per volume at a time.
 */
float* Z3D_CALL GetRotProjection(Volume3D* volume, const float* rotation, short mode, short x0, short x1,
                                 short y0, short y1, short z0, short z1, float high, float low, float extra,
                                 unsigned short* width, unsigned short* height, int reserved);

#if !defined(_WIN32) && !defined(Z3D_OWN_GLOBAL_MEMORY)
/*
 * What a host takes of windows.h to release a projection, with the same meaning, where there is no windows.h. They
 * know the blocks of this library and no others.
 *   GlobalHandle  the handle of the block whose pixels begin at an address; null where none does
 *   GlobalUnlock  takes one lock away. Returns 0 when none is left, or for a handle that is none.
 *   GlobalFree    releases the block, locked or not. Returns null; for a handle that is none that handle.
 * A program that has functions of these names keeps them: it defines Z3D_OWN_GLOBAL_MEMORY before it includes this
 * header, and takes the library's from the library alone, by dlsym with the handle that dlopen gives.
 * Threads  any
 */
void* Z3D_CALL GlobalHandle(const void* address);
int Z3D_CALL GlobalUnlock(void* block);
void* Z3D_CALL GlobalFree(void* block);
#endif

/* ------------------------------------------------------------------------------------------------------ */
/* Volumes from files                                                                                      */
/* ------------------------------------------------------------------------------------------------------ */

/*
 * The host's function that GetRGBImage calls with its progress, on the thread that called GetRGBImage.
 *   user   the value that the host gave to GetRGBImage: wide enough for an address, so 32 bits in a 32-bit
 *          process and 64 in a 64-bit one
 *   code   101  a phase of work starts; `value` is 0
 *          102  the phase has come to `value` percent, above 0 and up to 100
 *          0    the last call: GetRGBImage ends without a result, after a failure and after a cancel; `value`
 *               is 100. A successful GetRGBImage makes no such call.
 *          200  a conversion to grey cannot run; `value` is 100. The call with code 0 follows.
 *   value  0, or the bit pattern of a 32-bit float: copy the 4 bytes into a float. It is not a number to convert.
 *          100 percent is 0x42C80000.
 * Returns  200 in the low 16 bits cancels at the codes 101 and 102; every other value goes on. The high 16 bits
 *          do not count: 65536 + 200 cancels. The result of the codes 0 and 200 is ignored.
 *
 * Phases  Every file that is loaded has a phase of 101, then 102 after each slice; where the depth changes, a
 *         second phase of 101 and 102 after each slice of the result follows. Making the RGB or grey result is
 *         the last phase: 102 before each slice, without a 101; a single file of bytes is returned as it was
 *         loaded and needs none. Each phase counts to 100 percent on its own, so 100 is not the end of the call:
 *         there are (loaded files) * (2 where the depth changes, else 1) phases, and one more unless one file of
 *         bytes is returned.
 * Rules   It is called as every function here is (Z3D_CALL). It and what it needs stay alive until GetRGBImage
 *         returns: in a managed language keep a reference to the delegate. No exception and no longjmp may leave
 *         it. It finds the floating-point state of the host, and may change it. It may call this library, except
 *         that the volumes of the running call are out of its reach.
 */
typedef int(Z3D_CALL* ProgressCallback)(size_t user, int code, unsigned int value);

/*
 * Loads up to three raw channel files of the same stored size, fits them into a given diagonal, and makes one
 * volume of them.
 *   redFile, greenFile, blueFile
 *                    paths in the system's 8-bit code page, on Linux bytes; null or empty: no such channel, all its
 *                    samples count as 0. Files hold `depth` slices of `height` rows of `width` samples, without a
 *                    header or padding; what they lack at the end is zero, what is beyond is ignored. Others may read
 *                    them meanwhile; on Windows a file that someone has open for writing cannot be opened.
 *   width, height, depth
 *                    the stored size, in samples; 1 to 32767 each
 *   reserved1..3     ignored
 *   is8bit           non-zero: samples are unsigned bytes. 0: 32-bit little-endian floats.
 *   maxDiagonal      the longest allowed diagonal of the result, in voxels. With a longer stored diagonal
 *                    L = sqrt(width^2 + height^2 + depth^2) every length becomes length * maxDiagonal / L, without
 *                    its fraction and at least 1: 100 x 100 x 100 and a limit of 100 give 57 x 57 x 57, and a
 *                    limit of 0 or below 1 x 1 x 1.
 *   outMax, outMin   receive the display range of the result, upper end first; a null one is skipped.
 *                    RGB: of the sum of the three channels, in steps of 3: the largest sum of a voxel rounded up,
 *                    at least 3, and the next step below the smallest sum, at least 0. All black gives 3 and 0,
 *                    all white 765 and 762.
 *                    Grey of bytes: of the samples. Grey of floats: of the samples mapped to 0..255 before they
 *                    are rounded, so it may go a little beyond; when all samples are one value, that value.
 *   rangeMaxOut, rangeMinOut
 *                    receive the range of all channels' samples after resampling, upper end first. Filled when
 *                    both are given; when just one is, it receives the start value of a range, -3.4028235e38 for
 *                    the maximum and 3.4028235e38 for the minimum. Null: not wanted.
 *   user, callback   see ProgressCallback; null: no progress and no way to cancel
 *   keepChannelsApart
 *                    its low byte counts. 0: a green or blue file with the same name as the red file (same
 *                    spelling, same case) shares the red channel and is not loaded again. Non-zero: every named
 *                    file is loaded by itself.
 *
 * Returns  a new unlocked volume.
 *          Grey, 1 byte per voxel, when all three names are the red one and channels are not kept apart: name a
 *          single grey file three times. 8-bit samples stay as they are. Floats are mapped from their range to
 *          0..255; when all are one value, every byte is the low 8 bits of its integer part.
 *          Otherwise colour, 3 bytes per voxel: a file that is named once is red, green or blue. All channels are
 *          mapped through their common range, min..max. Floats go from it to 0..255. A byte v becomes
 *          min + v * (max - min) / 255, rounded, so that bytes stay as they are only when 0 and 255 both occur;
 *          labels should be loaded as grey. A range of a single value makes everything black.
 * Resampling  In plane it starts at column 1 and row 1 of the stored slice, and the last columns and rows of the
 *          result are 0. In depth it is linear between slices, and every sample, zeroes at the border too, is then
 *          held to the range of the samples in the file: 8 x 8 x 8 bytes of 50 and a diagonal of 7 give
 *          4 x 4 x 4 of 50, 8 x 8 x 1 give 4 x 4 x 1 with zeroes in column 3 and row 3.
 * Fails    null, after the callback's code 0. When a file cannot be opened, or when memory is short while it is
 *          read, the user is told first, in a modal message box ("Cannot open file", "Out of memmory"; see
 *          SetRenderMsgTitle); there is no other message. The box waits for its OK. A host without a user keeps it
 *          away with a WH_CBT hook on the calling thread (SetWindowsHookEx) that returns 1 for HCBT_CREATEWND: the
 *          call then ends with null at once. On Linux nobody is told, and it always does. Null without a message: a
 *          cancel, a stored size below 1, no file named at all, memory that runs short later. The display range
 *          outputs are then unspecified; the other two are start values or a range.
 * Owner    the host; release with Free3DData or GlobalFree3D.
 * Threads  any; the message box belongs to the calling thread's active window, and messages of that thread are
 *          dispatched while it is open.
 */
Volume3D* Z3D_CALL GetRGBImage(const char* redFile, const char* greenFile, const char* blueFile, short width,
                               short height, short depth, int reserved1, int reserved2, int reserved3,
                               short is8bit, short maxDiagonal, float* outMax, float* outMin,
                               float* rangeMaxOut, float* rangeMinOut, size_t user, ProgressCallback callback,
                               int keepChannelsApart);

/*
 * Sets the caption of the library's message boxes. Before the first call it is "Zentra3DRendering".
 *   title    is copied. Empty: an empty caption. Null: the caption stays as it is. The pointer that an earlier
 *            call returned may be given.
 * Returns  the library's copy (with a null title, the present one; null when there is none yet). Read it, never
 *          change or free it; it is valid until the next call that succeeds, or until the library is unloaded.
 *          In C# declare the result IntPtr: a string would be freed by the marshaller.
 * Fails    null when memory is short; the caption then stays as it is.
 * Owner    the library.
 * Threads  not while another thread calls this function or may be shown a message.
 */
const char* Z3D_CALL SetRenderMsgTitle(const char* title);

/* ------------------------------------------------------------------------------------------------------ */
/* Rotations                                                                                               */
/* ------------------------------------------------------------------------------------------------------ */

/*
 * The rotation matrix R(order[0]) * R(order[1]) * R(order[2]) of one angle about each axis; it acts on columns.
 *   matrix   receives 9 doubles, row by row
 *   order    three axis indexes, 0 = X, 1 = Y, 2 = Z, leftmost factor first; an axis may come twice. An index
 *            outside 0..2 stands for no rotation.
 *   angleX, angleY, angleZ
 *            degrees, always in this order whatever `order` says
 * A positive X angle turns Y towards Z, a positive Z angle X towards Y, and a positive Y angle Z towards -X.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL CreateRotateMatrix(double* matrix, const AxisOrder* order, float angleX, float angleY,
                                 float angleZ);

/*
 * Two angles from the last column of a rotation matrix in the order X, Y, Z, and the matrix
 * R(X) * R(Y) * R(Z) of these two, as stored, and of a Z angle of the caller's.
 *   matrix         receives 9 doubles, row by row; acts on columns. It may be the matrix that the elements
 *                  come from.
 *   m02, m12, m22  the elements in rows 0, 1 and 2 of column 2: doubles by value
 *   angleX         receives degrees, above -180 to 180: a half turn is 180
 *   angleY         receives degrees, -90 to 90. A positive one turns Z towards -X: m02 is minus its sine.
 *   angleZ         degrees, any; only the matrix depends on it
 * An angle nearer to zero than 0.001 degrees is exactly 0. Where X and Z turn about the same axis, |m02|
 * within 0.00001 of 1 (a quarter of a degree from the pole), Y is exactly 90 or -90 and X is 0. Elements of
 * no rotation, such as |m02| above 1.00001, can make angles and matrix NaN, or give -180.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL GetAngleXY(double* matrix, double m02, double m12, double m22, float* angleX, float* angleY,
                         float angleZ);

/*
 * Two angles from the middle column of a rotation matrix in the order Z, X, Y, and the matrix
 * R(Z) * R(X) * R(Y) of these two, as stored, and of a Y angle of the caller's.
 *   matrix         receives 9 doubles, row by row; acts on columns. It may be the matrix that the elements
 *                  come from.
 *   m01, m11, m21  the elements in rows 0, 1 and 2 of column 1: doubles by value
 *   angleX         receives degrees, -90 to 90; m21 is its sine
 *   angleZ         receives degrees, above -180 to 180: a half turn is 180
 *   angleY         degrees, any; only the matrix depends on it. A positive one turns Z towards -X.
 * An angle nearer to zero than 0.001 degrees is exactly 0. Where Z and Y turn about the same axis, |m21|
 * within 0.00001 of 1 (a quarter of a degree from the pole), X is exactly 90 or -90 and Z is 0. Elements of
 * no rotation, such as |m21| above 1.00001, can make angles and matrix NaN, or give -180.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL GetAngleZX(double* matrix, double m01, double m11, double m21, float* angleX, float* angleZ,
                         float angleY);

/*
 * Two angles from the first column of a rotation matrix in the order Y, Z, X, and the matrix
 * R(Y) * R(Z) * R(X) of these two, as stored, and of an X angle of the caller's.
 *   matrix         receives 9 doubles, row by row; acts on columns. It may be the matrix that the elements
 *                  come from.
 *   m00, m10, m20  the elements in rows 0, 1 and 2 of column 0: doubles by value
 *   angleY         receives degrees, above -180 to 180: a half turn is 180. A positive one turns
 *                  Z towards -X.
 *   angleZ         receives degrees, -90 to 90; m10 is its sine
 *   angleX         degrees, any; only the matrix depends on it
 * An angle nearer to zero than 0.001 degrees is exactly 0. Where Y and X turn about the same axis, |m10|
 * within 0.00001 of 1 (a quarter of a degree from the pole), Z is exactly 90 or -90 and Y is 0. Elements of
 * no rotation, such as |m10| above 1.00001, can make angles and matrix NaN, or give -180.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL GetAngleYZ(double* matrix, double m00, double m10, double m20, float* angleY, float* angleZ,
                         float angleX);

/*
 * The three angles of a rotation matrix in the order X, Y, Z: the matrix is R(X) * R(Y) * R(Z).
 *   matrix  9 doubles, row by row; acts on columns
 *   angleX  receives degrees, above -180 to 180
 *   angleY  receives degrees, -90 to 90. A positive one turns Z towards -X.
 *   angleZ  receives degrees, above -180 to 180
 * A half turn is 180; an angle nearer to zero than 0.001 degrees is exactly 0. Within a quarter of a degree
 * of Y = 90 or Y = -90 (element 2 within 0.00001 of -1 or 1), where X and Z turn about the same axis, Y is
 * exactly 90 or -90, X is 0 and Z holds the whole turn. A matrix that is no rotation can give NaN, and
 * -180.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL GetAngleXYZ(const double* matrix, float* angleX, float* angleY, float* angleZ);

/*
 * The three angles of a rotation matrix in the order Z, X, Y: the matrix is R(Z) * R(X) * R(Y).
 *   matrix  9 doubles, row by row; acts on columns
 *   angleX  receives degrees, -90 to 90
 *   angleY  receives degrees, above -180 to 180. A positive one turns Z towards -X.
 *   angleZ  receives degrees, above -180 to 180
 * A half turn is 180; an angle nearer to zero than 0.001 degrees is exactly 0. Within a quarter of a degree
 * of X = 90 or X = -90 (element 7 within 0.00001 of 1 or -1), where Z and Y turn about the same axis, X is
 * exactly 90 or -90, Z is 0 and Y holds the whole turn. A matrix that is no rotation can give NaN, and
 * -180.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL GetAngleZXY(const double* matrix, float* angleX, float* angleY, float* angleZ);

/*
 * The three angles of a rotation matrix in the order Y, Z, X: the matrix is R(Y) * R(Z) * R(X).
 *   matrix  9 doubles, row by row; acts on columns
 *   angleX  receives degrees, above -180 to 180
 *   angleY  receives degrees, above -180 to 180. A positive one turns Z towards -X.
 *   angleZ  receives degrees, -90 to 90
 * A half turn is 180; an angle nearer to zero than 0.001 degrees is exactly 0. Within a quarter of a degree
 * of Z = 90 or Z = -90 (element 3 within 0.00001 of 1 or -1), where Y and X turn about the same axis, Z is
 * exactly 90 or -90, Y is 0 and X holds the whole turn. A matrix that is no rotation can give NaN, and
 * -180.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL GetAngleYZX(const double* matrix, float* angleX, float* angleY, float* angleZ);

/*
 * Replaces the angles of a rotation in one axis order by the angles of the same rotation in another.
 *   fromOrder  order of the given angles: three axis indexes, 0 = X, 1 = Y, 2 = Z, leftmost factor first; any
 *              that CreateRotateMatrix takes
 *   toOrder    order wanted. Only its last entry counts: 2 stands for X, Y, Z; 1 for Z, X, Y; 0 for Y, Z, X.
 *   angleX, angleY, angleZ
 *              degrees; read and replaced. A positive Y angle turns Z towards -X.
 * Both orders ending in the same axis, or an entry outside 0..2 as the last of toOrder, leave the angles as
 * they are: from 0, 1, 2 to 1, 0, 2 nothing is converted.
 * New angles lie above -180 and up to 180 (a half turn is 180) and are exactly 0 when nearer to
 * zero than 0.001 degrees. Within a quarter of a degree of 90 or -90 the new order's middle angle is exactly
 * that, its first angle 0, and its last angle holds the whole remaining turn. Angles that are not finite give
 * NaN.
 * Fails    a null pointer: nothing is written.
 * Threads  any.
 */
void Z3D_CALL ChangeOrder(const AxisOrder* fromOrder, const AxisOrder* toOrder, float* angleX, float* angleY,
                          float* angleZ);

/* ------------------------------------------------------------------------------------------------------ */
/* Scalars                                                                                                 */
/* ------------------------------------------------------------------------------------------------------ */

/*
 * Looks a grey level up in a gamma or contrast curve.
 *   table  256 bytes, one per whole grey level
 *   level  grey level with a fraction. Below 0 or NaN it counts as 0, above 255 as 255.
 * Returns  0..255, in all 32 bits: the entry of a whole level, or else the linear interpolation of the two
 *          neighbouring entries without its fraction (0.9 gives 0).
 * Fails    0 when the table is null.
 * Threads  any.
 */
int Z3D_CALL AdjustGamma(const unsigned char* table, float level);

/*
 * Converts a coordinate or an extent from one scale to another: value * newScale / oldScale.
 *   value     in the old scale
 *   newScale  length of the whole in the new scale; the largest result
 *   oldScale  length of the whole in the old scale
 *   roundUp   above 0 rounds up, else down; its low 16 bits count, signed
 * Returns  16 bits, signed: 1..newScale when newScale is 1 or more. First only the low 16 bits of the rounded
 *          number are kept, signed, so that 65546 counts as 10 and 40000 as -25536; then a number below 1
 *          becomes 1, and only then one above newScale becomes the low 16 bits of newScale. Nothing but a
 *          newScale below 1 brings the result below 1.
 * Fails    1 when oldScale is 0.
 * Threads  any.
 */
short Z3D_CALL SubvolumeConvert(int value, int newScale, int oldScale, short roundUp);

#endif /* Z3D_RECORDS_ONLY */

#ifdef __cplusplus
}
#endif

#endif
