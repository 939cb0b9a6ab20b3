// The copies as bionic has them under _FORTIFY_SOURCE: overloads that a call prefers to the plain
// functions, and that check the destination's size. A loop over such a call does not vectorise.
#ifndef VOREL_ANDROID_STAND_IN_STRING_H_
#define VOREL_ANDROID_STAND_IN_STRING_H_

#include_next <string.h>

#if defined(_FORTIFY_SOURCE) && defined(__cplusplus)
#define VOREL_FORTIFIED \
  extern "C++" inline   \
      __attribute__((always_inline, overloadable, gnu_inline, enable_if(1, "fortified")))

VOREL_FORTIFIED void* memcpy(void* const to __attribute__((pass_object_size(0))), const void* from,
                             size_t count) {
  return __builtin___memcpy_chk(to, from, count, __builtin_object_size(to, 0));
}

VOREL_FORTIFIED void* memset(void* const to __attribute__((pass_object_size(0))), int value,
                             size_t count) {
  return __builtin___memset_chk(to, value, count, __builtin_object_size(to, 0));
}

#undef VOREL_FORTIFIED
#endif

#endif  // VOREL_ANDROID_STAND_IN_STRING_H_
