// Asks the compiler to vectorise the loop that follows; CI fails when it cannot.
#ifndef VOREL_PLATFORM_VECTORIZE_H_
#define VOREL_PLATFORM_VECTORIZE_H_

#define VOREL_VECTORIZE _Pragma("clang loop vectorize(enable) interleave(enable)")

// For a short loop inside such a loop: built for size the compiler would leave it, and neither
// would be vectorised.
#define VOREL_UNROLL _Pragma("clang loop unroll(full)")

#endif  // VOREL_PLATFORM_VECTORIZE_H_
