#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <map>
#include <string>

#include "tests/support/log_capture.h"
#include "tuning/tuning.h"

TEST(Sensors, KnowFifteenModels) {
  const std::map<int, std::string> models = {
      {0, "NOTHING"},  {37, "ZR41BV"},  {39, "ZR43CA"},  {52, "ZR52DD"},  {53, "ZR53DE"},
      {55, "ZR55FG"},  {62, "ZR62FH"},  {69, "ZR69GJ"},  {70, "ZR70GK"},  {71, "ZR71GL"},
      {120, "WT1200"}, {124, "WT1240"}, {125, "WT1250"}, {126, "WT1260"}, {127, "WT1270"}};
  for (int id = -2; id < 300; ++id) {
    SCOPED_TRACE(id);
    const LogCapture log;
    char name[8];
    std::memset(name, '#', sizeof(name));
    const auto row = models.find(id);
    if (row != models.end()) {
      ASSERT_TRUE(GetCurrentSensorInfo(name, id));
      EXPECT_STREQ(name, row->second.c_str());
      EXPECT_EQ(log.texts().size(), 0u);
    } else {
      ASSERT_FALSE(GetCurrentSensorInfo(name, id));
      EXPECT_EQ(std::string(name, sizeof(name)), "########");
      EXPECT_EQ(log.count("Not supported sensor type (" + std::to_string(id) + ")"), 1);
      EXPECT_EQ(log.errors(), 1);
    }
  }
  char name[8] = "same";
  EXPECT_FALSE(GetCurrentSensorInfo(name, INT_MIN));
  EXPECT_FALSE(GetCurrentSensorInfo(name, INT_MAX));
  EXPECT_STREQ(name, "same");
}
