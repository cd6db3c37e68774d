/*
 * Depth alignment for an indirect time-of-flight (ToF) camera: moves every pixel of a ToF depth frame to where a second
 * camera (aux) sees the same point.
 *
 * The library holds one aligner per process, all of it in library-wide state; there are no handles. Call
 *
 *     itof_init()                       once, and again when the calibration file has changed
 *     itof_execute_algo(frame, ratio)   for each frame
 *     itof_deinit()                     when a run ends, so that the next frame starts a run with its own ratio
 *
 * Threads: none of its own, no locks. The host makes one call at a time, from any thread: never two frames at once, and
 * never itof_init or itof_deinit while a frame runs. Nor may the library be unloaded or the process exit while a call
 * runs, and no call may come after that has begun.
 *
 * Exceptions: a failed allocation leaves itof_init, or the first frame after the library was loaded, as a C++ exception
 * (std::bad_alloc). A host in C cannot catch it, and the process ends. Later frames allocate nothing.
 *
 * Memory, until the library is unloaded or the process exits: 4,846,416 bytes from itof_init on (four maps of 640 x 360
 * floats, one byte per pixel, and a table of 642 x 362 32-bit integers), as much again while a repeated itof_init runs;
 * and 1,382,400 bytes from the first frame on, the three copies of the frame that are in work. These are written anew in
 * each frame before they are read, so that nothing of an earlier frame comes through. itof_deinit releases nothing.
 */
#ifndef ITOFINTERFACE_H_
#define ITOFINTERFACE_H_

#include <stdint.h>

/* Seen from outside, also by a build that hides what does not say so. */
#define ITOF_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* Width and height in pixels of the frame that comes in, and of the frame that goes out. */
#define ITOF_FRAME_WIDTH 640
#define ITOF_FRAME_HEIGHT 360

/* Results of itof_init. */
#define ITOF_OK 0
#define ITOF_CALIBRATION_UNREADABLE (-1) /* the file is missing, or cannot be opened or read */
#define ITOF_CALIBRATION_SHORT (-2)      /* the file is shorter than 228 bytes */
#define ITOF_CALIBRATION_UNUSABLE (-3)   /* a value in it makes the geometry impossible; see itof_init */

/*
 * Reads the calibration of the camera pair from /vendor/lib64/camera/new_otp_simple.bin and builds the alignment state.
 *
 * The file is 228 bytes: 57 little-endian fields of four bytes; what follows them is ignored. Refused as unusable: an
 * image size that is not finite, below 1 after its fraction is cut, or beyond a 32-bit integer; a ToF calibration width
 * other than 640 after its fraction is cut; a focal length that is not finite or not above 0; any other value of the
 * matrices, the rotation, the translation or the lens coefficients that is not finite.
 *
 * Returns ITOF_OK, or one of the negative results above. After anything but ITOF_OK, an exception included, the library
 * is as it was before the call: as loaded after a failed first call; with the calibration, the tables and the run that
 * it had after a failed later one. Writes no log line.
 *
 * On success the run ends, as with itof_deinit, and the tables start out as zeros. Cost: one file read, 5 MB cleared.
 */
ITOF_API int32_t itof_init(void);

/*
 * Aligns one depth frame in place.
 *
 * frame: 640 x 360 words, row after row without gaps, in the machine's byte order, aligned as a uint16_t is. Read as
 * depth words, and overwritten before the call returns with aligned words. Not null; no pointer to it is kept.
 *
 *     depth word (in)       bits 15..13   confidence, 0..7
 *                           bits 12..0    depth code, 0..8191; 0 carries no distance
 *     aligned word (out)    bits 15..11   0
 *                           bits 10..8    confidence, 0..7
 *                           bits 7..0     bits 11..4 of the depth code
 *
 * A depth code counts the unit of length of the calibration file's translation (millimetres, if that is in
 * millimetres), along the optical axis.
 *
 * What the output is:
 *   - Depth in steps of 16 codes that wraps at 4096: bit 12 of the code is lost, so that 4660 comes out as 560.
 *   - Depth along the ToF camera's axis. It is moved into the aux camera's view, not converted to its distance.
 *   - Always in the unzoomed 640 x 360 view of the aux camera, its lens distortion included, whatever the ratio.
 *     Positions are cut, not rounded: cell (u, v) holds what falls into [u, u + 1) x [v, v + 1), where integers are
 *     the centres of the aux camera's pixels.
 *   - Without an occlusion test: of several pixels with one target, the last in row-major order stays.
 *   - A pixel of depth code 0 goes where the last pixel before it that had depth went, in row-major order across the
 *     ends of rows, and replaces what is there by its confidence without depth. Before the first pixel with depth, the
 *     position is (0, 0) of the ideal image.
 *   - A pixel whose ideal position has no table entry lands in cell (0, 0): the table's entries start out as zeros,
 *     and positions that the lens puts outside the frame are not entered. After itof_deinit such an entry keeps the
 *     value of an earlier run.
 *   - Without depth where bits 7..0 are 0. That also comes of the codes 0..15 and 4096..4111, and the word need not be
 *     0: confidence may remain. A word of 0 is one that no pixel reached, or one with neither depth nor confidence.
 *
 * ratio: scale of the ideal aux image in which positions are looked up, both axes alike; 1 for a run without zoom. It
 * is read on the first frame of a run, that is after itof_init or itof_deinit, and ignored on all others. The lens
 * table scales back by 1 / ratio, and has 640 x 360 entries whatever the ratio, so that
 *   - above 1 it is a finer table of a smaller part of the view: at 2 only positions of the view's top-left quarter
 *     are inside, and the rest is dropped;
 *   - below 1 it is a coarser one: about ratio squared of the cells can be reached at all;
 *   - 0, infinite, or not a number: no entry is written, and every pixel goes to one cell, the one that the entry of
 *     position (0, 0) names: (0, 0), or after itof_deinit where an earlier run put it;
 *   - below 0: positions are mirrored about the top-left corner. What the aux camera sees is dropped, or gathers in
 *     one cell where it still comes to row and column 0; what it would see beyond its top and left edges may come in.
 * Nothing refuses a ratio; only those of 1 and above are of use.
 *
 * Before a successful itof_init the frame stays as it is, and nothing is logged or printed. After an exception the
 * frame and the library are as they were before the call.
 *
 * Each call prints one line, "cost time(distort) : <seconds> (s)", to standard output, which no gate controls. In a
 * daemon, open file descriptor 1 on /dev/null before the first frame: left closed, the next file that the process opens
 * takes its number, and receives the lines. The performance lines in the framework's log have gates of the framework.
 *
 * Cost: the first frame of a run builds the tables, some four times the cost of a later frame, which is one pass over
 * the pixels; docs/performance.md has figures. Returns 0 always.
 */
ITOF_API int32_t itof_execute_algo(uint16_t* frame, float ratio);

/*
 * Ends a run: the next frame builds the tables anew, with its own ratio. Keeps the calibration, and releases nothing.
 * May be called in any state, also before itof_init.
 */
ITOF_API void itof_deinit(void);

#ifdef __cplusplus
}
#endif

#endif /* ITOFINTERFACE_H_ */
