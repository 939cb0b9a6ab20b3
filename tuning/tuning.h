// Loading of tuning files and the choice of values for a frame.
#ifndef VOREL_TUNING_TUNING_H_
#define VOREL_TUNING_TUNING_H_

#include <jansson.h>

#include <cstddef>
#include <cstdint>

#include "vorel/tuning.h"

inline constexpr size_t kSensorNameSize = 128;
inline constexpr size_t kTuningVersionSize = 64;

// Reads and parses vorel_<sensor_name>.json of the firmware directory. On success stores the tree
// in `root` and returns true; the caller drops it with `ReleaseJson`. Failures are logged.
[[nodiscard]] bool LoadJson(const char* sensor_name, json_t*& root);

// The same for a file of any name, and for a text of `bytes` bytes.
[[nodiscard]] bool load_json_file(const char* path, json_t*& root);
[[nodiscard]] bool load_json_text(const char* text, size_t bytes, json_t*& root);

// Copies the last object's version text to `dst` (kTuningVersionSize bytes, longer texts are cut).
// A root of the wrong shape is logged and loses one reference.
void getTuningVersions(json_t* root, char* dst);

// Fills `tuning` from the last object; absent keys leave their fields alone. A root of the wrong
// shape is logged and loses one reference.
void decodeJson(json_t* root, cnr_tuning* tuning);

// Where a handle's tuning comes from: a text, else a file, else the sensor's file.
struct tuning_source {
  const char* sensor_name;
  const char* path;  // may be null
  const char* text;  // may be null
  size_t text_bytes;
};

// Loads a source into `tuning`, as above, logging each step, and its version into `version`
// (kTuningVersionSize bytes). Returns false and leaves `tuning` alone when there is none to use.
bool load_tuning(const tuning_source& source, cnr_tuning* tuning, char* version);

// Drops one reference; null is allowed.
void ReleaseJson(json_t* root);

// Writes the sensor's model name to `name` (at least 8 bytes) and returns true; for an unknown id
// logs, leaves `name` alone and returns false.
[[nodiscard]] bool GetCurrentSensorInfo(char* name, int32_t sensorId);

// Writes the built-in values; the current wavelet values and val_weight are left alone.
void set_default_tuning(cnr_tuning* tuning);

// Logs the whole block at info level.
void log_tuning(const cnr_tuning* tuning);

// The pair of entries of an ascending table that brackets `value`: lower index in the low 32 bits,
// upper in the high 32 bits. A `count` below 1 counts as 1.
[[nodiscard]] uint64_t get_indices(int value, const int* table, int count);

// Sets the current values for a noise index by linear interpolation between levels.
void select_tuning(cnr_tuning* tuning, int noiseIndex);

// Logs the values in force for the frame.
void log_current_tuning(const cnr_tuning* tuning);

#endif  // VOREL_TUNING_TUNING_H_
