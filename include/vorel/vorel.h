/* libvorel: software chroma noise reduction for NV21 camera frames.
 *
 * One handle per camera stream: vorel_init, then vorel_run for every frame, then vorel_deinit.
 * These calls are for processes that already use them; new ones take vorel/frame.h, whose calls
 * tell a status and take strides, any size and options.
 *
 * What processes that used earlier builds of these calls may notice: vorel_init refuses processors
 * that lack instructions, and handles without a thread pool; vorel_run refuses frames that its
 * planes cannot hold, really waits for another caller's frame on the same handle, and skips stages
 * whose half-precision planes or workers are missing. Each of these is an error line that there was
 * not. A dump of a frame in two planes holds both of them.
 * This header compiles as C99 and as C++. */
#ifndef VOREL_VOREL_H_
#define VOREL_VOREL_H_

#include "vorel/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Pixel formats: four-character codes, first character in the low byte. */
#define VOREL_FMT_NV21 0x3132564E /* "NV21": Y plane, then interleaved V/U, one buffer */
#define VOREL_FMT_NM21 0x31324D4E /* "NM21": the same planes as two separate buffers */
#define VOREL_FMT_YUYV 0x56595559 /* packed 4:2:2; refused by vorel_run */
#define VOREL_FMT_YUY2 0x32595559 /* packed 4:2:2; refused by vorel_run */

/* Scenarios. Both are processed alike; the value is checked and logged. */
#define VOREL_SCENARIO_CAPTURE 0
#define VOREL_SCENARIO_PREVIEW 1

/* State of one camera stream. Only the functions of the library look inside. */
typedef struct vorel vorel;

/* Creates a handle for frames of `width` x `height` luma pixels.
 *
 * `width` must be a multiple of 16; `height` has no such rule. `scenario` is one of
 * VOREL_SCENARIO_*. `sensorId` selects the tuning file /vendor/firmware/vorel_<model>.json; an
 * unknown sensor or a missing or broken file is logged and the built-in tuning is used.
 *
 * Returns a handle that the caller releases with vorel_deinit, or null when the width is refused,
 * memory is short or the processor lacks the instructions that the library needs (each logged).
 * Kept: a bad scenario returns a handle that is not null but must not be used, neither run nor
 * released: check the scenario before the call.
 * Safe to call from several threads at once; each call makes its own handle. */
VOREL_EXPORT vorel* vorel_init(int width, int height, int scenario, unsigned int sensorId);

/* Denoises one frame in place and returns when it is done.
 *
 * `in_address_1`  Y plane: `height` rows of `width` bytes, no padding between rows.
 * `in_address_2`  V/U plane: `height` / 2 rows of `width` bytes, V first in each pair. Needed for
 *                 NV21 and NM21; for NV21 it is in_address_1 + width * height.
 * `width`         at least 16 and a multiple of 16.
 * `height`        at least 2. A frame may differ in size from vorel_init's as long as its planes
 *                 need no more memory than those of vorel_init.
 * `format`        VOREL_FMT_NV21 or VOREL_FMT_NM21.
 * `noiseIndex`    noise level of the frame on the scale of the tuning file (commonly the ISO
 *                 sensitivity). Below the tuning's "enableNoiseIndex" the frame is left untouched.
 *
 * The library keeps no pointer to the planes after the call. Nothing outside them is touched. A
 * frame that is refused (null plane, bad size) is logged and left untouched.
 * Kept: any other format is refused only after the handle's run slot was taken, and the slot stays
 * taken: every later vorel_run on that handle would wait for ever. Check formats before the call.
 * Kept: with the wavelet stage on, every frame allocates two half-precision planes (together
 * 2.5 MB at 1920 x 1080, 12.9 MB at 4000 x 3000) and the previous pair is not freed: call
 * vorel_release_frame_buffers after each frame.
 *
 * Callers on different threads may share a handle; their frames are processed one after the other.
 *
 * The result is not a status: null for a null handle; `handle` for a frame that is as it was,
 * because it lies below the threshold, was refused for its planes or size, or because the thread
 * that starts the workers could not be created; else an address inside the handle, which says only
 * that the call went further (a refused format, a frame without workers and a denoised frame look
 * alike). Failures go to the log (tag "VOREL"). */
VOREL_EXPORT void* vorel_run(vorel* handle, void* in_address_1, void* in_address_2, int width,
                             int height, int format, int noiseIndex);

/* Hands the half-precision planes of the last frame back to the handle, which uses them for the
 * next frame that they are large enough for, so that memory stays flat over many frames and no
 * frame waits for fresh pages. vorel_deinit frees them. Waits for a frame in flight on another
 * thread, for ever if the slot stays taken (see vorel_run). Does nothing for a null handle or when
 * there are no planes. Must not overlap with vorel_deinit. Callers that share a handle must hold a
 * lock of their own from vorel_run to this call: a vorel_run of another caller in between would
 * make the handle forget this frame's planes. vorel_denoise_frame (vorel/frame.h) does all of this
 * itself. */
VOREL_EXPORT void vorel_release_frame_buffers(vorel* handle);

/* Releases the handle and everything it owns. Returns 0, or -1 (logged) when `handle` is null.
 * Must not overlap with a vorel_run on the same handle. */
VOREL_EXPORT int vorel_deinit(vorel* handle);

#ifdef __cplusplus
}
#endif

#endif /* VOREL_VOREL_H_ */
