/*
 * Aligns depth frames of an indirect time-of-flight (ToF) camera with the view of a second camera (aux): moves every
 * depth pixel to where the aux camera sees the same point.
 *
 * The library holds one aligner per process, in library-wide state. There are no handles. Call
 *
 *     itof_init()                       once, and again when the calibration file has changed
 *     itof_execute_algo(frame, ratio)   for each frame
 *     itof_deinit()                     to end a run; the next frame starts a new one
 *
 * A run is a series of frames that share one ratio. It starts with the first frame after itof_init or itof_deinit.
 * That frame builds the tables of the run.
 *
 * Threads: the library starts none and locks nothing. Make one call at a time, from any thread. Do not unload the
 * library or exit the process while a call is running. Make no further call once unloading or exit has begun.
 *
 * Exceptions: if an allocation fails, std::bad_alloc escapes from itof_init, or from the first itof_execute_algo after
 * the library was loaded. A caller written in C cannot catch it, and the process ends. Later frames allocate nothing.
 *
 * Memory: itof_init allocates 4,846,416 bytes (four maps of 640 x 360 floats, one byte per pixel, and a table of
 * 642 x 362 32-bit integers). A repeated itof_init holds as much again while it runs. The first frame allocates another
 * 1,382,400 bytes for three copies of a frame; every frame overwrites them before it reads them. Both stay allocated
 * until the library is unloaded or the process exits. itof_deinit releases nothing.
 *
 * Stack: a call uses up to 16 KB, or 20 KB with performance lines. The latter is measured with the stand-ins for the
 * device's libraries; the framework's own logger may need another amount.
 *
 * Floating point: a call computes in the default floating-point environment, so the words do not depend on the host's
 * rounding mode, traps or flush-to-zero mode. The device's libraries, too, run in the default environment while the
 * library calls them. When the call returns or throws, the environment of the calling thread is as before, including
 * its exception flags. The library sets it by fesetenv(FE_DFL_ENV). C does not say whether that ends flush-to-zero
 * modes; glibc's does. With a C library whose fesetenv does not, call with flush-to-zero off.
 *
 * errno: a call may change it.
 *
 *
 * Words
 * -----
 * A frame is 640 x 360 words of 16 bits, row after row without gaps, in the machine's byte order.
 *
 *     depth word (in)       bits 15..13   confidence, 0..7
 *                           bits 12..0    depth code, 0..8191; 0 means no depth
 *     aligned word (out)    bits 15..11   0
 *                           bits 10..8    confidence, 0..7
 *                           bits 7..0     bits 11..4 of the depth code; 0 means no depth
 *
 * One depth code is one unit of length of the calibration file's translation, usually a millimetre, along the optical
 * axis of the ToF camera.
 *
 *
 * The aligned frame
 * -----------------
 * A pixel is moved in two steps. First its ideal position is computed and rounded: its position in the ideal aux image,
 * the picture that the aux camera would take without lens distortion, scaled by the run's ratio. Then the lens table,
 * which has one entry for each pixel of that image, gives its position in the real picture. That position is truncated
 * to a cell of the aligned frame.
 *
 * - Depth comes in steps of 16 codes and wraps at 4096, because bit 12 and the low four bits of the code are lost: 4660
 *   comes out as 560. Codes 0..15 and 4096..4111 come out as no depth.
 * - Test bits 7..0 for depth, not the whole word: a word without depth may still hold a confidence. A word of 0 is a
 *   cell that no pixel reached, or one reached by a pixel with neither depth nor confidence.
 * - Pixels are moved into the aux camera's view, but their depth stays the distance along the ToF camera's axis.
 * - The view is always the whole 640 x 360 picture of the aux camera without zoom, including its lens distortion,
 *   whatever the ratio.
 * - Cell (u, v) holds positions in [u, u + 1) x [v, v + 1), where an integer is the centre of an aux pixel.
 * - There is no occlusion test. If several pixels have one target, the last in row-major order stays.
 * - A pixel without depth follows the last pixel with depth before it, in row-major order across the ends of rows: it
 *   overwrites that pixel's cell with its own confidence and no depth. Before the first pixel with depth, that is the
 *   cell of ideal position (0, 0).
 * - Cell (0, 0) collects the pixels whose ideal position has no entry in the lens table, because the lens puts that
 *   position outside the frame. The entries are 0 after itof_init. After itof_deinit they keep the values of earlier
 *   runs.
 * - Cells that no pixel reaches stay 0. Thin lines of them cross every frame: because positions are rounded and then
 *   truncated, two neighbouring pixels may share a cell and leave the next one empty.
 *
 *
 * The ratio
 * ---------
 * The ratio scales the ideal aux image on both axes. The lens table always has 640 x 360 entries and maps back to the
 * unscaled picture, so the output is never zoomed.
 *
 *     1                 no zoom; the normal case
 *     above 1           the table samples a smaller part of the view more finely: a ratio of 2 covers only the top-left
 *                       quarter of the view, and all other pixels are dropped
 *     between 0 and 1   the table samples the view more coarsely: only a share of about ratio squared of the cells can
 *                       be reached
 *     0, infinite,      no table entry is written, and every pixel goes to the cell of ideal position (0, 0). That is
 *     not a number      cell (0, 0), or, after itof_deinit, the cell where an earlier run's table put it
 *     below 0           positions are mirrored about the top-left corner. Pixels in view are dropped, except those that
 *                       still round to ideal position (0, 0); points beyond the top and left edges may appear
 *
 * The library refuses no ratio. Use 1 unless you want the finer table of a larger one.
 */
#ifndef ITOFINTERFACE_H_
#define ITOFINTERFACE_H_

#include <stdint.h>

/* Exports a function even if the build hides symbols by default. */
#define ITOF_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* Width and height in pixels of the depth frame and of the aligned frame. */
#define ITOF_FRAME_WIDTH 640
#define ITOF_FRAME_HEIGHT 360

/* Results of itof_init. */
#define ITOF_OK 0
#define ITOF_CALIBRATION_UNREADABLE (-1) /* the file is missing, or cannot be opened or read */
#define ITOF_CALIBRATION_SHORT (-2)      /* the file is shorter than 228 bytes */
#define ITOF_CALIBRATION_UNUSABLE (-3)   /* a value in it makes the geometry impossible; see itof_init */

/*
 * Reads the calibration of the camera pair from /vendor/lib64/camera/new_otp_simple.bin and builds the alignment
 * state. On success it ends the current run. Writes no log line.
 *
 * The file holds 57 little-endian entries of four bytes; bytes after these 228 are ignored. It is unusable if
 *   - an image size is not finite, is below 1 after truncation, or does not fit a 32-bit integer,
 *   - the ToF calibration width is not 640 after truncation,
 *   - a focal length is not finite or not above 0, or
 *   - any other value of the matrices, the rotation, the translation or the lens coefficients is not finite.
 *
 * Returns ITOF_OK or one of the negative results above.
 *
 * After any result other than ITOF_OK, or after an exception, the library is as it was before the call: a failed first
 * call leaves it as loaded; a failed later call leaves the calibration, the tables and the run in use.
 *
 * Cost: one file read, and 5 MB of memory cleared.
 */
ITOF_API int32_t itof_init(void);

/*
 * Aligns one depth frame in place. Before a successful itof_init it does nothing at all.
 *
 * frame: 640 x 360 depth words, aligned like a uint16_t, not null. Overwritten with aligned words before the call
 *        returns. The library keeps no pointer to it.
 * ratio: the ratio of the run. Read on the first frame of a run, ignored on all others.
 *
 * Returns 0.
 *
 * After an exception the frame and the library are as they were before the call.
 *
 * Prints one line, "cost time(distort) : <seconds> (s)", to standard output, and nothing switches that off. In a
 * daemon, open file descriptor 1 on /dev/null before the first frame. If descriptor 1 is closed, the next file that the
 * process opens gets that number and receives the lines. If it is a pipe whose reader has gone, SIGPIPE ends the
 * process, unless the host ignores or handles that signal; if the reader stalls, the call blocks. The C library collects
 * many lines before it writes to a pipe, so neither happens at once. The library also writes timing lines to the camera
 * framework's log if the framework enables them (docs/android.md).
 *
 * Cost: a few passes over the pixels. The first frame of a run also builds the tables and takes about five times as
 * long. docs/performance.md has figures.
 */
ITOF_API int32_t itof_execute_algo(uint16_t* frame, float ratio);

/*
 * Ends the run: the next frame builds the tables again, with its own ratio. Keeps the calibration and releases
 * nothing. May be called at any time, even before itof_init. Returns nothing and cannot fail. Cost: none.
 */
ITOF_API void itof_deinit(void);

#ifdef __cplusplus
}
#endif

#endif /* ITOFINTERFACE_H_ */
