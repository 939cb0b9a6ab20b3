/* A whole integration in C: one handle, a few frames, and what became of each.
 *
 *   denoise_frames [SENSOR_ID]
 *
 * The frames are made up: a grey ramp with coloured noise. Tuning comes from
 * vorel_<model>.json in /vendor/firmware, or, on a host, in the directory that VOREL_FIRMWARE_DIR
 * names; without one the built-in tuning holds, which processes frames from noise index 40960 on.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <vorel/frame.h>

enum { kWidth = 640, kHeight = 480, kFrames = 3, kNoiseIndex = 40960 };

/* A linear congruential generator: the same frame on every machine. */
static uint32_t next_random(uint32_t* state) {
  *state = *state * 1664525u + 1013904223u;
  return *state >> 24;
}

/* NV21: the luma plane, then rows of V/U pairs at half resolution around the neutral value 128. */
static void make_frame(uint8_t* frame, uint32_t seed) {
  uint8_t* luma = frame;
  uint8_t* chroma = frame + kWidth * kHeight;
  for (int row = 0; row < kHeight; ++row) {
    for (int col = 0; col < kWidth; ++col) *luma++ = (uint8_t)(64 + col / 8);
  }
  for (int i = 0; i < kWidth * kHeight / 2; ++i)
    *chroma++ = (uint8_t)(120 + next_random(&seed) / 16);
}

/* Mean squared distance of the chroma plane from its mean value. */
static double chroma_noise(const uint8_t* frame) {
  const uint8_t* chroma = frame + kWidth * kHeight;
  double sum = 0;
  for (int i = 0; i < kWidth * kHeight / 2; ++i) {
    const double distance = chroma[i] - 127.5;
    sum += distance * distance;
  }
  return sum / (kWidth * kHeight / 2);
}

int main(int argc, char** argv) {
  uint8_t* pixels = malloc(kWidth * kHeight * 3 / 2);
  if (pixels == NULL) return EXIT_FAILURE;

  vorel_options options = vorel_default_options(kWidth, kHeight);
  if (argc > 1) options.sensor_id = (uint32_t)strtoul(argv[1], NULL, 0);
  vorel_status status = VOREL_DONE;
  vorel* handle = vorel_open(&options, &status);
  if (handle == NULL) {
    fprintf(stderr, "vorel_open: %s\n", vorel_status_text(status));
    free(pixels);
    return EXIT_FAILURE;
  }

  int done = 0;
  for (int i = 0; i < kFrames; ++i) {
    make_frame(pixels, (uint32_t)i);
    const double before = chroma_noise(pixels);
    const vorel_frame frame = {
        sizeof(frame), pixels,  pixels + kWidth * kHeight, kWidth,     kWidth,
        kWidth,        kHeight, VOREL_LAYOUT_NV21,         kNoiseIndex};
    vorel_frame_info info = {0};
    info.size = sizeof(info);
    status = vorel_denoise_frame(handle, &frame, &info);
    printf("frame %d: chroma noise %.2f -> %.2f, %.1f ms on %d workers. %s\n", i, before,
           chroma_noise(pixels), (double)info.total_usec / 1000, (int)info.workers,
           vorel_status_text(status));
    done += status == VOREL_DONE;
  }

  vorel_deinit(handle);
  free(pixels);
  return done == kFrames ? EXIT_SUCCESS : EXIT_FAILURE;
}
