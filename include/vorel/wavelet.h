// The wavelet chroma path: half-precision planes, transforms, shrinkage and saturation.
#ifndef VOREL_WAVELET_H_
#define VOREL_WAVELET_H_

#include "vorel/wavelet/border_handler.h"
#include "vorel/wavelet/buffer.h"
#include "vorel/wavelet/chroma_post_process.h"
#include "vorel/wavelet/config.h"
#include "vorel/wavelet/denoise.h"
#include "vorel/wavelet/haar_transform.h"
#include "vorel/wavelet/sym4_transform.h"

#endif  // VOREL_WAVELET_H_
