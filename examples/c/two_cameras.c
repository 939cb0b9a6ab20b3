/* Two cameras at once: a handle and a thread for each. Handles know nothing of each other, so they
 * share the processor's cores as any two programs would; fewer workers for each leave room.
 */
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <vorel/frame.h>

enum { kFrames = 5 };

struct camera {
  const char* name;  /* of its workers, as top and perfetto show them */
  uint32_t cpu_mask; /* bits of CPUs that a device lacks do no harm */
  int32_t width;
  int32_t height;
  vorel_status status; /* of its last frame */
};

static vorel_status run_frames(const struct camera* camera, vorel* handle, uint8_t* pixels) {
  const size_t luma_bytes = (size_t)camera->width * (size_t)camera->height;
  vorel_status status = VOREL_DONE;
  for (int i = 0; i < kFrames && status == VOREL_DONE; ++i) {
    for (size_t at = 0; at < luma_bytes * 3 / 2; ++at)
      pixels[at] = (uint8_t)(100 + at * 2654435761u % 31);
    const vorel_frame frame = {
        sizeof(frame),        pixels,        pixels + luma_bytes, camera->width,
        camera->width,        camera->width, camera->height,      VOREL_LAYOUT_NV21,
        /*noise_index=*/40960};
    status = vorel_denoise_frame(handle, &frame, NULL);
  }
  return status;
}

static void* run_camera(void* argument) {
  struct camera* camera = argument;
  vorel_options options = vorel_default_options(camera->width, camera->height);
  options.scenario = VOREL_SCENARIO_PREVIEW;
  options.workers = 3;
  options.cpu_mask = camera->cpu_mask;
  options.thread_name = camera->name;
  vorel* handle = vorel_open(&options, &camera->status);
  if (handle == NULL) return NULL;
  uint8_t* pixels = malloc((size_t)camera->width * (size_t)camera->height * 3 / 2);
  camera->status = pixels == NULL ? VOREL_NO_MEMORY : run_frames(camera, handle, pixels);
  free(pixels);
  vorel_deinit(handle);
  return NULL;
}

int main(void) {
  struct camera cameras[2] = {{"wide", 0x0F, 1280, 720, VOREL_DONE},
                              {"tele", 0xF3, 640, 480, VOREL_DONE}};
  pthread_t threads[2];
  for (int i = 0; i < 2; ++i) {
    if (pthread_create(&threads[i], NULL, run_camera, &cameras[i]) != 0) return EXIT_FAILURE;
  }
  int failed = 0;
  for (int i = 0; i < 2; ++i) {
    pthread_join(threads[i], NULL);
    printf("%s: %s\n", cameras[i].name, vorel_status_text(cameras[i].status));
    failed += cameras[i].status != VOREL_DONE;
  }
  return failed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
