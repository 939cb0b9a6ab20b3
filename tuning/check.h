// Finds what is wrong with a tuning file that the library would accept without a word. Belongs to
// the command and the fuzz targets, not to the library.
#ifndef VOREL_TUNING_CHECK_H_
#define VOREL_TUNING_CHECK_H_

#include <jansson.h>

// The texts live as long as the call that delivers them.
struct tuning_finding {
  bool is_error;            // the library ignores the file or reads another value than is written
  const char* path;         // "interleaving_tuning.d_UV_thresh_table[3]"; "root" for the whole
  const char* what;         // what is found there
  const char* consequence;  // what the library makes of it
};

using tuning_finding_function = void (*)(const tuning_finding& finding, void* context);

// Calls `report` once per finding, in the order of the table of keys, unknown keys last. Only the
// object that the library uses, the last one, is looked into. Returns the number of findings.
// `root` stays the caller's and may be null.
int check_tuning(json_t* root, tuning_finding_function report, void* context);

#endif  // VOREL_TUNING_CHECK_H_
