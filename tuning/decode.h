// Shape of a tuning file's root.
#ifndef VOREL_TUNING_DECODE_H_
#define VOREL_TUNING_DECODE_H_

#include <jansson.h>

#include <cstddef>

// Position of the first element that is no object; the array's size when all are.
[[nodiscard]] size_t first_non_object(const json_t* array);

#endif  // VOREL_TUNING_DECODE_H_
