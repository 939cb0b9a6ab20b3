#include "tuning/sensors.h"

#include <cstring>

#include "platform/log.h"
#include "tuning/tuning.h"

namespace {

// Id 0 is a sensor like the others: its file is the one for cameras of no known model.
constexpr sensor kSensors[] = {
    {0, "NOTHING"},  {37, "ZR41BV"},  {39, "ZR43CA"},  {52, "ZR52DD"},  {53, "ZR53DE"},
    {55, "ZR55FG"},  {62, "ZR62FH"},  {69, "ZR69GJ"},  {70, "ZR70GK"},  {71, "ZR71GL"},
    {120, "WT1200"}, {124, "WT1240"}, {125, "WT1250"}, {126, "WT1260"}, {127, "WT1270"},
};

}  // namespace

std::span<const sensor> known_sensors() { return kSensors; }

bool GetCurrentSensorInfo(char* name, int32_t sensorId) {
  for (const sensor& row : kSensors) {
    if (row.id != sensorId) continue;
    std::memcpy(name, row.model, std::strlen(row.model) + 1);
    return true;
  }
  VOREL_LOGE("Not supported sensor type (%d)", sensorId);
  return false;
}
