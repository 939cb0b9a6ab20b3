/* libvorel: the frame call. What vorel.h does, with a status, strides, any size and options.
 *
 *   vorel_options options = vorel_default_options(1920, 1080);
 *   vorel *handle = vorel_open(&options, NULL);
 *   vorel_frame frame = {sizeof(frame), y, vu, 1920, 1920, 1920, 1080, VOREL_LAYOUT_NV21, iso};
 *   vorel_status status = vorel_denoise_frame(handle, &frame, NULL);    every frame
 *   vorel_deinit(handle);
 *
 * Handles of vorel_open and of vorel_init are of one type, and both calls may be used on either.
 * This header compiles as C99 and as C++. Records start with their size, so that later versions can
 * add fields at the end: fill them with zeros or with the functions below, then set what should
 * differ. */
#ifndef VOREL_FRAME_H_
#define VOREL_FRAME_H_

#include <stddef.h>
#include <stdint.h>

#include "vorel/export.h"
#include "vorel/vorel.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What became of a frame or a handle. Negative: refused or failed, the frame is untouched. */
typedef enum vorel_status {
  VOREL_DONE = 0,       /* denoised */
  VOREL_BELOW_GATE = 1, /* noise index below the tuning's enableNoiseIndex: untouched */
  VOREL_STAGE_SKIPPED =
      2,                 /* stages named in vorel_frame_info.skipped did not run, the others did */
  VOREL_BAD_HANDLE = -1, /* null */
  VOREL_BAD_RECORD = -2, /* null, or its size field is no record's of this or an earlier version */
  VOREL_BAD_PLANE = -3,  /* null plane */
  VOREL_BAD_STRIDE = -4, /* fewer bytes than a row of the plane has */
  VOREL_BAD_SIZE = -5,   /* below 2 x 2, or larger than the handle's planes or 2^31 - 1 pixels */
  VOREL_BAD_LAYOUT = -6, /* no VOREL_LAYOUT_* */
  VOREL_BAD_OPTION = -7, /* an option of vorel_open is out of range */
  VOREL_BAD_TUNING = -8, /* the tuning named in the options cannot be read or is no tuning */
  VOREL_NO_MEMORY = -9,
  VOREL_NO_THREADS = -10,   /* a thread or the pool of workers could not be started */
  VOREL_NO_PROCESSOR = -11, /* the processor lacks instructions that the library needs */
} vorel_status;

/* One sentence in English for any status; never null. */
VOREL_EXPORT const char* vorel_status_text(vorel_status status);

/* Order of the bytes in a chroma pair. */
#define VOREL_LAYOUT_NV21 0 /* V first */
#define VOREL_LAYOUT_NV12 1 /* U first */

/* A frame of 8-bit YUV 4:2:0, denoised in place. The caller owns the planes. Bytes between the end
 * of a row and the next row are neither read nor written. */
typedef struct vorel_frame {
  size_t size;         /* sizeof(vorel_frame) */
  uint8_t* luma;       /* `height` rows of `width` bytes */
  uint8_t* chroma;     /* (height + 1) / 2 rows of 2 * ((width + 1) / 2) bytes */
  int32_t luma_stride; /* bytes from one row to the next, at least a row's */
  int32_t chroma_stride;
  int32_t width; /* pixels, 2 and more; odd sizes have a chroma pair for the last column and row */
  int32_t height;
  int32_t layout;      /* VOREL_LAYOUT_* */
  int32_t noise_index; /* on the scale of the tuning file */
} vorel_frame;

/* Stages, as bits of `skipped` and as indices of `stage_usec`. */
enum {
  VOREL_STAGE_DEINTERLEAVE = 0,
  VOREL_STAGE_BOX_FILTER = 1,
  VOREL_STAGE_YUV = 2,
  VOREL_STAGE_INTERLEAVE = 3,
  VOREL_STAGE_MFD_UV = 4,
  VOREL_STAGE_COUNT = 5
};

/* What happened to one frame. Of a frame below the gate the fields from `noise_index` to `wavelet`
 * that the gate knows are set, of a refused one the status only; the others are 0. */
typedef struct vorel_frame_info {
  size_t size; /* sizeof(vorel_frame_info), set by the caller before the call */
  int32_t status;
  uint32_t skipped;    /* 1 << VOREL_STAGE_* of each stage that should have run and did not */
  int32_t workers;     /* threads that ran the frame's jobs */
  int32_t noise_index; /* as given */
  int32_t enable_noise_index; /* of the tuning: lower frames are left as they are */
  int32_t level_low;          /* the tuning's levels between which the values were interpolated, */
  int32_t level_high;         /* counted from 0; equal when one level holds */
  int32_t spatial;            /* 1 when the tuning runs the spatial path */
  int32_t wavelet;            /* 1 when it runs the wavelet path */
  int32_t d_Y_upper_thresh;   /* values in force, as in the tuning file */
  int32_t d_Y_lower_thresh;
  int32_t d_UV_thresh;
  int32_t cs_upper_thresh;
  int32_t cs_lower_thresh;
  float radialMode;
  float denoiseThrChroma[5];
  float CSatParam1;
  float CSatParam2;
  float CSatThr1;
  float CSatThr2;
  /* Elapsed microseconds; 0 for a stage that did not run. */
  int64_t stage_usec[VOREL_STAGE_COUNT];
  int64_t total_usec;    /* of the whole call */
  int32_t dumps_written; /* files, at debug levels with dumps */
  int32_t dumps_failed;  /* files that could not be written completely */
  int32_t dumps_error;   /* errno of the first of those, 0 without one */
} vorel_frame_info;

/* Denoises one frame in place and returns when it is done. Never waits for ever, keeps no pointer,
 * leaves no memory behind. `info` may be null. A frame whose width is no multiple of 16, whose
 * height is odd or whose rows are not dense is copied to planes that the handle keeps, continued by
 * repeating its last column and row, and copied back; dumps show it as it stands there. Both chroma
 * planes are treated alike, so NV12 gives the bytes of NV21 with each pair swapped.
 *
 * Frames may differ in size as long as their whole 16 x 16 blocks hold no more pixels than those of
 * the handle's size. Calls on one handle, from any threads, are processed one after the other; they
 * must not overlap with vorel_deinit. */
VOREL_EXPORT vorel_status vorel_denoise_frame(vorel* handle, const vorel_frame* frame,
                                              vorel_frame_info* info);

/* How a handle works. */
typedef struct vorel_options {
  size_t size;   /* sizeof(vorel_options) */
  int32_t width; /* largest frame, pixels, 2 and more */
  int32_t height;
  int32_t scenario;   /* VOREL_SCENARIO_* (capture) */
  uint32_t sensor_id; /* chooses the tuning file (0) */
  int32_t workers;    /* worker threads, 1..64 (6) */
  uint32_t cpu_mask;  /* CPUs of the workers, bit 0 = CPU 0 (0xFF) */
  int32_t nice;       /* nice value of the thread that drives a frame, -20..19 (-8) */
  /* Workers are "<thread_name>-0-<index>"; 1 to 8 characters ("vorel"). */
  const char* thread_name;
  const char* tuning_path;  /* a tuning file of any name instead of the sensor's, or null (null) */
  const char* tuning_text;  /* a tuning file's text instead of a file, or null (null) */
  size_t tuning_text_bytes; /* of tuning_text, without a terminator */
  int32_t disable_spatial;  /* not 0: the spatial path stays off, whatever the tuning says (0) */
  int32_t disable_wavelet;  /* the same for the wavelet path (0) */
} vorel_options;

/* The values in brackets above, for frames up to `width` x `height`. */
static inline vorel_options vorel_default_options(int32_t width, int32_t height) {
  vorel_options options = {sizeof(vorel_options),
                           width,
                           height,
                           VOREL_SCENARIO_CAPTURE,
                           0,
                           6,
                           0xFF,
                           -8,
                           "vorel",
                           NULL,
                           NULL,
                           0,
                           0,
                           0};
  return options;
}

/* Creates a handle; the caller releases it with vorel_deinit. Nothing of `options` is kept. Null
 * when refused; `status`, which may be null, says why. A tuning that was named in the options must
 * be usable, and one of file and text may be named; the sensor's own may be missing, as for
 * vorel_init. Safe to call from several threads at once. */
VOREL_EXPORT vorel* vorel_open(const vorel_options* options, vorel_status* status);

/* What a handle was made with. */
typedef struct vorel_handle_info {
  size_t size;           /* sizeof(vorel_handle_info), set by the caller before the call */
  int32_t tuning_loaded; /* 1 when a tuning file or text was read, 0 for built-in values */
  int32_t enable_noise_index;
  int32_t level_count; /* noise levels of the tuning */
  int32_t levels[12];  /* their noise indices */
  int32_t spatial;
  int32_t wavelet;
  int32_t workers;
  char sensor_name[128]; /* model; empty for an unknown sensor */
  char tuning_date[64];  /* empty when the tuning has none */
  char dump_path[128];   /* empty when nothing is dumped */
} vorel_handle_info;

VOREL_EXPORT vorel_status vorel_get_handle_info(const vorel* handle, vorel_handle_info* info);

#ifdef __cplusplus
}
#endif

#endif /* VOREL_FRAME_H_ */
