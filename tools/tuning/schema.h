// The JSON Schema of tuning files, for editors.
#ifndef VOREL_TOOLS_TUNING_SCHEMA_H_
#define VOREL_TOOLS_TUNING_SCHEMA_H_

#include <string>

namespace tool {

// Draft 7, made from the table of keys: kinds, ranges and lengths, with what each key does as hover
// text. What a schema cannot say stands in its texts.
[[nodiscard]] std::string tuning_schema();

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_SCHEMA_H_
