// What a program that declares the library's functions itself would write. It knows none of the
// headers, so that a parameter type that changes there fails to link here. Linked by
// scripts/exports.sh, never run.
#include <cstdint>
#include <new>

using u8 = unsigned char;
using half = _Float16;

struct vorel;
struct vorel_thread;
struct timeval;
struct thread;
struct buffer;
struct TilePosHorz;
struct TilePosVert;
struct bilateralfiltering_tuning;
struct boxfiltering_tuning;
struct interleaving_tuning;
struct waveletLevelConfig;
struct sigmaScaleConfig;
enum wtSubbandRange : unsigned;
extern char g_waveletCfg[];

// A declaration, and a pointer that asks the linker for it.
#define JOIN(a, b) a##b
#define NAME(line) JOIN(listed_, line)
#define LISTED(result, name, ...) \
  result name(__VA_ARGS__);       \
  [[gnu::used]] static result (*NAME(__LINE__))(__VA_ARGS__) = name;
#define LISTED_MEMBER(result, name, ...) \
  result name(__VA_ARGS__);              \
  [[gnu::used]] static inline result (Self::* NAME(__LINE__))(__VA_ARGS__) = &Self::name;
#define LISTED_STATIC(result, name, ...) \
  static result name(__VA_ARGS__);       \
  [[gnu::used]] static inline result (*NAME(__LINE__))(__VA_ARGS__) = &Self::name;

extern "C" {
LISTED(vorel*, vorel_init, int, int, int, unsigned)
LISTED(void*, vorel_run, vorel*, void*, void*, int, int, int, int)
LISTED(int, vorel_deinit, vorel*)
}

LISTED(int, setCurrentThreadAffinityMask, int)
LISTED(int, setThreadAffinityMask, int)
LISTED(void, getThreadAffinityMask)
LISTED(void, getThreadAffinityMask, const char*)
LISTED(void, dumpImage, int, const char*, const char*, const char*, const void*, const void*,
       unsigned, unsigned, unsigned, int, int, int, int)
LISTED(void, set_current_time, timeval*)
LISTED(int64_t, get_elapsed_time_usec, const timeval*)
LISTED(int64_t, get_elapsed_time_msec, const timeval*)
LISTED(TilePosHorz*, calcTilePosHorz, TilePosHorz*, int, int, int)
LISTED(TilePosVert*, calcTilePosVert, TilePosVert*, int, int, int)

LISTED(void*, box_filter_col, void*)
LISTED(void, box_filter_col_neon, u8*, u8*, u8*, int, int, int, int, int, int, boxfiltering_tuning*)
LISTED(void, bilateral_filter, u8*, u8*, int, int, int, int, bilateralfiltering_tuning*)
LISTED(void, bilateral_filter_opt, u8*, u8*, int, int, int, int, bilateralfiltering_tuning*)
LISTED(void, bilateral_filter_center_neon, u8*, u8*, int, int, int, int, int, int, int, int,
       bilateralfiltering_tuning*)
LISTED(void, bilateral_filter_opt_center_neon, u8*, u8*, int, int, int, int, int, int, int, int,
       bilateralfiltering_tuning*)
LISTED(void, update_bilateral_filter_tuning, bilateralfiltering_tuning*)

LISTED(void*, deinterleave_yuv420_uv_downsample, void*)
LISTED(void*, deinterleave_yuv422_uv_downsample, void*)
LISTED(int, deinterleave_yuv422_uv_downsample_neon, u8*, u8*, u8*, u8*, int, int, int)
LISTED(int, deinterleave_yuv420_uv_downsample_neon, u8*, u8*, u8*, int, int, int)
LISTED(int, deinterleave_uv422_uv_downsample_neon, u8*, u8*, u8*, u8*, int, int, int)
LISTED(void*, upsample_y, void*)
LISTED(void*, upsample_uv420, void*)
LISTED(void*, upsample_uv422, void*)
LISTED(int, upsample_y_neon, u8*, u8*, int, int)
LISTED(int, upsample_uv420_neon, u8*, u8*, int, int, int)
LISTED(int, upsample_uv_neon, u8*, u8*, int, int, int)
LISTED(int, y_upsample, u8*, u8*, int, int)
LISTED(int, uv_upsample, u8*, u8*, int, int)
LISTED(void*, restore_interleave_yuv420, void*)
LISTED(void*, restore_interleave_yuv422, void*)
LISTED(void, restore_interleave_yuv420_neon, u8*, u8*, u8*, u8*, u8*, u8*, int, int, u8*, u8*,
       interleaving_tuning*)
LISTED(void, restore_interleave_yuv420_mfd_uv_neon, u8*, u8*, u8*, u8*, u8*, u8*, int, int, u8*,
       half*, half*, int, interleaving_tuning*)
LISTED(void, restore_interleave_uv420_neon, u8*, u8*, u8*, u8*, u8*, u8*, int, int, u8*,
       interleaving_tuning*)
LISTED(void, restore_interleave_yuv422_neon, u8*, u8*, u8*, u8*, u8*, int, int,
       interleaving_tuning*)
LISTED(void, restore_interleave_uv422_neon, u8*, u8*, u8*, u8*, u8*, int, int, interleaving_tuning*)

LISTED(int, MFD_UV, vorel_thread*)
LISTED(void*, runCopyAndPadFunc, void*)
LISTED(void*, denoiseSpatialFunc, void*)
LISTED(void*, shrkFunc, void*)
LISTED(void*, applySaturationRegionFunc, void*)
LISTED(void*, fwtFunc, void*)
LISTED(void*, fwtVertFunc, void*)
LISTED(void, boxFilter3x3, buffer*, buffer*, buffer*)
LISTED(void, setWtCfg, int, int, int)
LISTED(unsigned, getWtCfg, unsigned)
LISTED(unsigned, getWtRange, unsigned, wtSubbandRange)
LISTED(void, initLlsMerge, unsigned long, unsigned long)
LISTED(void, reconfigureMerge, waveletLevelConfig*, sigmaScaleConfig*)
LISTED(void, allocate_memory)
LISTED(void, deallocate_memory)

// Only members that a link name tells apart; the sizes are made up.
struct ThreadPool {
  using Self = ThreadPool;
  ThreadPool();
  ~ThreadPool();
  LISTED_MEMBER(int, init, int, int, int)
  LISTED_MEMBER(int, addWork, void* (*)(void*), void*)
  LISTED_MEMBER(int, wait)
  LISTED_MEMBER(int, num_threads_working)
  LISTED_MEMBER(void, deinit)
  LISTED_MEMBER(int, thread_init, thread*, int, ThreadPool*, int, int)
  LISTED_MEMBER(void*, thread_do, void*)
};

struct BorderHandler {
  using Self = BorderHandler;
  LISTED_STATIC(BorderHandler*, getInstance)
  LISTED_MEMBER(void, runCopyAndPad, buffer*, buffer*, buffer*, unsigned, unsigned)
  LISTED_MEMBER(void, runPad, buffer*, buffer*, unsigned, unsigned)
  LISTED_MEMBER(void, stripPad, half*, half*, int, int, int, int, int)
};

struct ChromaPostProcess {
  using Self = ChromaPostProcess;
  ChromaPostProcess();
  LISTED_MEMBER(bool, setup, int, int, half*, half, half, half, half, half, int, char*, ThreadPool*,
                ThreadPool*, ThreadPool*, buffer*)
  LISTED_MEMBER(bool, chromaPostProcess, buffer*, buffer*)
  LISTED_MEMBER(void, denoiseSpatial, unsigned, buffer*, ThreadPool*)
  LISTED_MEMBER(void, deallocate)
  LISTED_MEMBER(void, setWtCfg, int, int, int)
  LISTED_MEMBER(unsigned, getWtRange, unsigned, wtSubbandRange)
};

struct Denoise {
  using Self = Denoise;
  Denoise();
  LISTED_MEMBER(bool, setup, int, int, int, int, int, char*, ThreadPool*)
  LISTED_MEMBER(bool, setup, int, int, int, int)
  LISTED_MEMBER(void, deallocate)
  LISTED_MEMBER(void, denoiseChroma1And2HaarRun, buffer*, buffer*, half*, half, half, ThreadPool*)
  LISTED_MEMBER(void, haarL2Denoise, buffer*, buffer*, half, half, half, ThreadPool*)
  LISTED_MEMBER(void, shrinkage1, half*, half, half, half, int, int, int, int, half)
  LISTED_MEMBER(void, radialNoiseEStimateChroma1, int, int, half*, half, half, int, int)
  LISTED_MEMBER(bool, applySaturation, buffer*, buffer*, buffer*, buffer*, half, half, half, half)
  LISTED_MEMBER(bool, applySaturation, buffer*, buffer*, buffer*, buffer*, half, half, half, half,
                unsigned, unsigned)
  LISTED_MEMBER(void, applySaturationRegion, buffer*, buffer*, buffer*, buffer*, half, half, half,
                half, unsigned, unsigned)
  LISTED_MEMBER(void, AddPoint5, buffer*, buffer*, unsigned, unsigned)
};

struct HaarTransform {
  using Self = HaarTransform;
  HaarTransform();
  LISTED_MEMBER(bool, setup, int, int, int, char*)
  LISTED_MEMBER(void, deallocate)
  LISTED_MEMBER(void, fwtFirstStep, u8*, half*, half*, int, int)
  LISTED_MEMBER(void, fwt, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtVert, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtL2, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtVertL2, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtL2DirPixel, u8*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtL2Dir, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtVertL2Dir, half*, half*, half*, int, int)
  LISTED_MEMBER(void, forwardUnHaarRun, buffer*, buffer*, unsigned, unsigned, bool, bool)
  LISTED_MEMBER(void, iwt, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtPitch, half*, half*, half*, int, int, int)
  LISTED_MEMBER(void, iwtVert, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVertPitch, half*, half*, half*, int, int, int)
  LISTED_MEMBER(void, iwtL2, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVertL2, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtL2Dir, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVertL2Dir, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtDir, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVertDir, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVertDirSingle, half*, half*, int, int)
  LISTED_MEMBER(void, SubbandsSum2SubBands, half*, half*, half*, int, int)
  LISTED_MEMBER(void, inverseUnHaarRunAllSubbands, buffer*, buffer*, unsigned, unsigned)
};

struct Sym4Transform {
  using Self = Sym4Transform;
  Sym4Transform();
  LISTED_MEMBER(bool, setup, int, int, int, int, int, char*, ThreadPool*, buffer*)
  LISTED_MEMBER(void, deallocate)
  LISTED_MEMBER(void, setWtCfg, int, int, int)
  LISTED_MEMBER(void, fwtFirstStep, u8*, half*, half*, int, int)
  LISTED_MEMBER(void, fwt, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwt, half*, half*, half*, int, int, int)
  LISTED_MEMBER(void, fwtVert, half*, half*, half*, int, int)
  LISTED_MEMBER(void, fwtVert, half*, half*, half*, int, int, int, int)
  LISTED_MEMBER(void, iwt, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVert, half*, half*, half*, int, int)
  LISTED_MEMBER(void, iwtVertPitch, half*, half*, half*, int, int, int)
  LISTED_MEMBER(void, forwardWtRun, buffer*, buffer*, unsigned, unsigned, unsigned, ThreadPool*)
  LISTED_MEMBER(void, inverseWtDifferentSband0Run, buffer*, buffer*, buffer*, unsigned, unsigned,
                unsigned)
};

// Constructors and the destructor have no address. Never called.
void construct(void* room) {
  (new (room) ThreadPool)->~ThreadPool();
  new (room) ChromaPostProcess;
  new (room) Denoise;
  new (room) HaarTransform;
  new (room) Sym4Transform;
  g_waveletCfg[0] = 0;
}
