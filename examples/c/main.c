/* A whole integration in C: one handle, a few frames, the frame buffers dropped after each.
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
#include <vorel/vorel.h>

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

/* Mean squared distance of the chroma plane from neutral. */
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
  const unsigned sensor = argc > 1 ? (unsigned)strtoul(argv[1], NULL, 0) : 0;
  uint8_t* frame = malloc(kWidth * kHeight * 3 / 2);
  if (frame == NULL) return EXIT_FAILURE;

  vorel* handle = vorel_init(kWidth, kHeight, VOREL_SCENARIO_CAPTURE, sensor);
  if (handle == NULL) {
    fputs("vorel_init failed; the log tells why\n", stderr);
    free(frame);
    return EXIT_FAILURE;
  }

  int changed = 0;
  for (int i = 0; i < kFrames; ++i) {
    make_frame(frame, (uint32_t)i);
    const double before = chroma_noise(frame);
    vorel_run(handle, frame, frame + kWidth * kHeight, kWidth, kHeight, VOREL_FMT_NV21,
              kNoiseIndex);
    vorel_release_frame_buffers(handle);
    const double after = chroma_noise(frame);
    printf("frame %d: chroma noise %.2f -> %.2f\n", i, before, after);
    changed |= before != after;
  }

  const int released = vorel_deinit(handle);
  free(frame);
  return released == 0 && changed ? EXIT_SUCCESS : EXIT_FAILURE;
}
