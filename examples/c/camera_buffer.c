/* As a camera process would: a frame in a buffer of the system, with padded rows, an odd size and
 * the order of the chroma pair that the camera happens to have.
 *
 * On Android lock_buffer is the comment inside it; elsewhere the buffer is made up.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <vorel/frame.h>

enum { kWidth = 1021, kHeight = 767, kStride = 1088 };

/* A buffer of the camera, mapped for reading and writing. */
struct camera_buffer {
  uint8_t* memory;
};

/* Fills the planes, strides and layout of `frame`. Returns 0, or -1 when the buffer cannot be had.
 *
 *   AHardwareBuffer_Planes planes;
 *   const uint64_t usage = AHARDWAREBUFFER_USAGE_CPU_READ_OFTEN |
 *                          AHARDWAREBUFFER_USAGE_CPU_WRITE_OFTEN;
 *   if (AHardwareBuffer_lockPlanes(buffer, usage, fence, NULL, &planes) != 0) return -1;
 *   const AHardwareBuffer_Plane* y = &planes.planes[0];
 *   const AHardwareBuffer_Plane* u = &planes.planes[1];
 *   const AHardwareBuffer_Plane* v = &planes.planes[2];
 *   if (y->pixelStride != 1 || u->pixelStride != 2 || v->rowStride != u->rowStride) return -1;
 *   const int v_first = (uint8_t*)v->data < (uint8_t*)u->data;
 *   frame->luma = y->data;
 *   frame->luma_stride = (int32_t)y->rowStride;
 *   frame->chroma = v_first ? v->data : u->data;
 *   frame->chroma_stride = (int32_t)u->rowStride;
 *   frame->layout = v_first ? VOREL_LAYOUT_NV21 : VOREL_LAYOUT_NV12;
 *
 * The buffer should be one that the processor caches: the usage above asks for that. */
static int lock_buffer(struct camera_buffer* buffer, vorel_frame* frame) {
  frame->luma = buffer->memory;
  frame->luma_stride = kStride;
  frame->chroma = buffer->memory + kStride * kHeight;
  frame->chroma_stride = kStride;
  frame->layout = VOREL_LAYOUT_NV12;
  return 0;
}

/* On Android: AHardwareBuffer_unlock(buffer, &fence), whose fence the consumer waits for. */
static void unlock_buffer(struct camera_buffer* buffer) { (void)buffer; }

static vorel_status denoise_buffer(vorel* handle, struct camera_buffer* buffer, int iso) {
  vorel_frame frame = {0};
  frame.size = sizeof(frame);
  frame.width = kWidth;
  frame.height = kHeight;
  frame.noise_index = iso;
  if (lock_buffer(buffer, &frame) != 0) return VOREL_BAD_PLANE;
  const vorel_status status = vorel_denoise_frame(handle, &frame, NULL);
  unlock_buffer(buffer);
  return status;
}

int main(void) {
  const size_t bytes = (size_t)kStride * (kHeight + (kHeight + 1) / 2);
  struct camera_buffer buffer = {malloc(bytes)};
  if (buffer.memory == NULL) return EXIT_FAILURE;
  for (size_t i = 0; i < bytes; ++i) buffer.memory[i] = (uint8_t)(128 + i * 2654435761u % 23);

  /* The camera's own tuning, not that of a sensor: here as text, else options.tuning_path. */
  static const char kTuning[] = "[{\"enableNoiseIndex\": 100}]";
  vorel_options options = vorel_default_options(kWidth, kHeight);
  options.tuning_text = kTuning;
  options.tuning_text_bytes = sizeof(kTuning) - 1;
  vorel_status status = VOREL_DONE;
  vorel* handle = vorel_open(&options, &status);
  if (handle != NULL) {
    status = denoise_buffer(handle, &buffer, 800);
    vorel_deinit(handle);
  }
  printf("camera buffer of %d x %d in rows of %d bytes: %s\n", kWidth, kHeight, kStride,
         vorel_status_text(status));
  free(buffer.memory);
  return status == VOREL_DONE ? EXIT_SUCCESS : EXIT_FAILURE;
}
