// Asks the compiler to vectorise the loop that follows; CI fails when it cannot.
#ifndef VOREL_PLATFORM_VECTORIZE_H_
#define VOREL_PLATFORM_VECTORIZE_H_

#define VOREL_VECTORIZE _Pragma("clang loop vectorize(enable) interleave(enable)")

#endif  // VOREL_PLATFORM_VECTORIZE_H_
