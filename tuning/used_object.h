// The shape of a tuning file: an array of objects, of which the last one counts.
#ifndef VOREL_TUNING_USED_OBJECT_H_
#define VOREL_TUNING_USED_OBJECT_H_

#include <jansson.h>

#include <cstddef>

#include "platform/wraps.h"

// Position of the first element that is no object; the array's size when all are.
[[nodiscard]] inline size_t first_non_object(const json_t* array) {
  const size_t count = json_array_size(array);
  size_t i = 0;
  while (i < count && json_is_object(json_array_get(array, i))) ++i;
  return i;
}

// Position of the object that counts; no element has it in an empty array.
[[nodiscard]] VOREL_WRAPS inline size_t used_position(const json_t* array) {
  return json_array_size(array) - 1;
}

// Null in an empty array, where every key is absent.
[[nodiscard]] inline json_t* used_object(const json_t* array) {
  return json_array_get(array, used_position(array));
}

#endif  // VOREL_TUNING_USED_OBJECT_H_
