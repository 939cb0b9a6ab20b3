// Arithmetic that wraps by rule.
#ifndef VOREL_PLATFORM_WRAPS_H_
#define VOREL_PLATFORM_WRAPS_H_

// In front of a function whose unsigned sums and products wrap because its rule says so. Builds
// that stop at unsigned overflow, as images of the platform may be, let it.
#define VOREL_WRAPS __attribute__((no_sanitize("unsigned-integer-overflow")))

#endif  // VOREL_PLATFORM_WRAPS_H_
