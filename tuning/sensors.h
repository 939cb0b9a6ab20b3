// The sensors that have a tuning file of their own.
#ifndef VOREL_TUNING_SENSORS_H_
#define VOREL_TUNING_SENSORS_H_

#include <cstdint>
#include <span>

struct sensor {
  int32_t id;
  const char* model;  // names the file: vorel_<model>.json
};

// In ascending order of the ids. Unlike GetCurrentSensorInfo it logs nothing.
[[nodiscard]] std::span<const sensor> known_sensors();

#endif  // VOREL_TUNING_SENSORS_H_
