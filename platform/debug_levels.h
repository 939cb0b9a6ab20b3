// What a handle's debug level asks for: timing lines at exactly 1, the tuning block at exactly 2,
// dumps from the other levels on.
#ifndef VOREL_PLATFORM_DEBUG_LEVELS_H_
#define VOREL_PLATFORM_DEBUG_LEVELS_H_

inline constexpr int kDebugTiming = 1;
inline constexpr int kDebugTuning = 2;
inline constexpr int kDebugDumpInput = 3;
inline constexpr int kDebugDumpOutput = 4;
inline constexpr int kDebugDumpPlanes = 5;

#endif  // VOREL_PLATFORM_DEBUG_LEVELS_H_
