// System properties.
#ifndef VOREL_PLATFORM_PROPERTY_H_
#define VOREL_PLATFORM_PROPERTY_H_

#if defined(__ANDROID__)
#include <cutils/properties.h>
#else
inline constexpr int PROPERTY_VALUE_MAX = 92;

// Copies the property's value, or `default_value` (null: empty) when it is unset, to `value`, which
// holds PROPERTY_VALUE_MAX bytes. Longer values are cut. Returns the length.
// On hosts the property a.b.c is the environment variable A_B_C.
int property_get(const char* key, char* value, const char* default_value);
#endif

#endif  // VOREL_PLATFORM_PROPERTY_H_
