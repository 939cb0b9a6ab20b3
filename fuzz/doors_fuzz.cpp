// The exported functions that no frame goes through: any sizes, parameters and samples.
#include <android/log.h>

#include "fuzz/doors.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  switch (input.ConsumeIntegralInRange(0, 15)) {
    case 0:
      try_chroma_doors(input);  // whole planes with borders: these take longest
      break;
    case 1:
      try_debug_doors(input);
      break;
    case 2:
    case 3:
    case 4:
      try_sym4_doors(input);
      break;
    case 5:
    case 6:
    case 7:
      try_haar_doors(input);
      break;
    case 8:
    case 9:
    case 10:
      try_denoise_doors(input);
      break;
    default:
      try_spatial_doors(input);
  }
  return 0;
}
