// Symlet-4 wavelet transform of half-precision planes.
#ifndef VOREL_WAVELET_SYM4_TRANSFORM_H_
#define VOREL_WAVELET_SYM4_TRANSFORM_H_

#include <cstdint>

#include "vorel/export.h"
#include "vorel/thread_pool.h"
#include "vorel/wavelet/buffer.h"
#include "vorel/wavelet/config.h"

struct sym4_run;  // internal

/// Working planes of one level of a `Sym4Transform`.
struct sym4_level {
  buffer low;
  buffer high;
  buffer intermediate;
};

/// Callers, every member: decimating analysis and synthesis with eight taps. Nothing is extended at
/// the edges: output samples whose taps leave the plane are not written and may hold anything; give
/// planes a border. Analysis of n samples writes outputs 2 .. (n - 4) / 2 of n / 2; synthesis of n
/// low and n high samples writes outputs 3 .. 2 n - 6. Inputs and outputs must not overlap.
class VOREL_EXPORT Sym4Transform {
 public:
  Sym4Transform();

  /// Takes the working planes of levels 1 and 2 from the two scratch records `scratch[0..1]`, or
  /// from the heap. `halfWidth` and `quarterHeight` are half the padded width and half the padded
  /// height. The first argument is stored and not used. `scratch` may be null: all from the heap.
  /// The planes stay untouched except for a few rows, so fresh heap memory costs little. Returns
  /// false (logged) when memory is short; then only `deallocate` may follow.
  bool setup(int width, int height, int halfWidth, int quarterHeight, int debug, char* path,
             ThreadPool* pool, buffer* scratch);
  void deallocate();

  /// As the free function of the same name, on this object's copy.
  void setWtCfg(int l0, int l1, int l2);

  void fwtFirstStep(unsigned char* src, _Float16* lo, _Float16* hi, int width, int height);
  /// Each row of `width` samples gives width / 2 low and width / 2 high samples.
  void fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  /// `height` rows give height / 2 low and height / 2 high rows.
  void fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  /// The rows [rowFirst, rowEnd) of `fwt`, counted in the whole planes that the pointers name.
  /// Bands may run at the same time.
  void fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int rowFirst, int rowEnd);
  /// The output rows [rowFirst, rowEnd) of `fwtVert` over a plane of `height` rows, as far as they
  /// are written at all.
  void fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height, int rowFirst,
               int rowEnd);

  /// `width` low and `width` high samples give 2 * `width` samples.
  void iwt(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  /// `height` low and `height` high rows give 2 * `height` rows.
  void iwtVert(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  /// The same with rows of width + pitchDiff samples in `lo`.
  void iwtVertPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                    int pitchDiff);

  /// Decomposes a plane of `width` x `height` samples with the working planes of `level` (1 or 2)
  /// into subbands[0..6], or [4..7] when the level's value is not 4. Runs on the calling thread;
  /// the pool is not used. Two levels may run at the same time. Subband 6 may be read before it is
  /// written, where rows reach over the edge of the plane.
  void forwardWtRun(buffer* src, buffer* subbands, unsigned int width, unsigned int height,
                    unsigned int level, ThreadPool* pool);

  /// Rebuilds a plane of `width` x `height` samples from `band0` as low band and the details in
  /// subbands[1..6]. subbands[0] and [7] are not read. The rows of `out` next to its upper and
  /// lower edge, which follow from undefined samples, may be written or not.
  void inverseWtDifferentSband0Run(buffer* band0, buffer* subbands, buffer* out, unsigned int width,
                                   unsigned int height, unsigned int level);

 private:
  VOREL_LOCAL sym4_run runOf(buffer* subbands, unsigned int width, unsigned int height,
                             unsigned int level) const;

  wavelet_config config_;
  int32_t debug_;
  sym4_level levels_[2];  // 1 and 2
};

/// Job record of `fwtFunc` and `fwtVertFunc`: one band of rows (output rows for `fwtVertFunc`).
struct sym4_band_job {
  Sym4Transform* transform;
  _Float16* src;
  _Float16* lo;
  _Float16* hi;
  int32_t width;
  int32_t rowFirst;
  int32_t rowEnd;
  int32_t height;  // rows of the source plane; read by `fwtVertFunc` only
};

/// Callers: pool jobs; the argument is a `sym4_band_job`. Return null.
VOREL_EXPORT void* fwtFunc(void* job);
VOREL_EXPORT void* fwtVertFunc(void* job);

#endif  // VOREL_WAVELET_SYM4_TRANSFORM_H_
