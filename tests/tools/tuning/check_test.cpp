#include "tools/tuning/check.h"

#include <gmock/gmock.h>
#include <jansson.h>

#include <cstdlib>
#include <fstream>
#include <random>

#include "tests/support/source_path.h"
#include "tests/tools/run_command.h"
#include "tests/tools/tuning/broken_cases.h"
#include "tools/tuning/known_keys.h"
#include "tools/tuning/lost_points.h"
#include "tools/tuning/tuning_text.h"

namespace {

std::string finding_lines(const std::string& text) {
  std::string lines;
  for (const tool::Finding& finding : tool::check_tuning_text(text)) {
    lines +=
        finding.where("") + (finding.is_error ? " error " : " warning ") + finding.text() + "\n";
  }
  return lines;
}

TEST(TuningCheck, NamesWhatIsWrongInEachBrokenFile) {
  auto [head, cases] = read_cases();
  ASSERT_GT(cases.size(), 61u);
  const bool write = std::getenv("VOREL_WRITE_EXPECTED") != nullptr;
  for (BrokenCase& one : cases) {
    const std::string actual = finding_lines(one.text);
    if (!write) EXPECT_EQ(actual, one.expected) << one.name;
    one.expected = actual;
  }
  if (!write) return;
  std::ofstream file(source_path(kBrokenCases));
  file << head;
  for (const BrokenCase& one : cases) {
    file << "=== " << one.name << "\n" << one.body << "\n---\n" << one.expected;
  }
}

TEST(TuningCheck, HasNothingToSayOfTheSamples) {
  const CommandResult run = run_vorel({"check", "--strict", source_path("tuning/samples")});
  EXPECT_EQ(run.status, 0) << run.out;
}

// Broken at random, a text is no JSON for the places exactly when it is none for jansson, and what
// is JSON has a place for everything.
TEST(TuningCheck, FollowsTextsAsJanssonReadsThem) {
  const std::string whole = read_cases().second.front().text;
  const std::string pieces = "[]{},:\"\\/#0123.-+eEtrufalsn' \n\t\x01\xC3";
  std::mt19937 random(8);
  const auto below = [&random](size_t count) { return random() % count; };
  int broken = 0;
  for (int round = 0; round < 6000; ++round) {
    std::string text = whole.substr(0, 700);
    for (size_t edits = 1 + below(3); edits > 0; --edits) {
      const size_t at = below(text.size());
      text.replace(at, below(3), std::string(below(2), pieces[below(pieces.size())]));
    }
    if (below(4) != 0) text += whole.substr(700);
    const tool::TuningText tuning(text);
    json_error_t error;
    json_t* json = json_loads(text.c_str(), JSON_DISABLE_EOF_CHECK, &error);
    ASSERT_EQ(static_cast<bool>(tuning.root()), json != nullptr);
    const bool follows = !tool::find_places(text).fault;
    // Of these jansson knows more: the values of escapes and numbers, and bytes that are no UTF-8.
    const std::string said = error.text;
    const bool is_value_fault =
        json == nullptr &&
        (said.find("decode byte") != said.npos || said.find("Unicode") != said.npos ||
         said.find("NUL byte") != said.npos || said.find("too big") != said.npos ||
         said.find("overflow") != said.npos);
    if (!is_value_fault) {
      ASSERT_EQ(follows, json != nullptr) << said << "\n" << text;
    }
    if (json != nullptr && tuning.used()) {
      ASSERT_GE(tuning.used().node->children.size(), json_object_size(tuning.used().json));
    }
    for (const tool::Finding& finding : tool::check_tuning_text(text)) {
      ASSERT_GE(finding.place.line, 1u);
      ASSERT_LE(finding.place.line, 40u) << finding.text();
    }
    broken += json == nullptr ? 1 : 0;
    json_decref(json);
  }
  EXPECT_GT(broken, 1500);
}

TEST(TuningCheck, KnowsSomethingOfEveryKey) {
  EXPECT_EQ(tool::key_notes().size(), tool::known_keys().size());
  for (const tool::KnownKey& known : tool::known_keys()) {
    const std::string path = tool::join_path(tool::section_of(known), known.key.name);
    EXPECT_EQ(known.path(), path);
    EXPECT_GT(std::string(known.note.description).size(), 20u) << path;
    if (known.key.type == key_type::kText || known.for_command) continue;
    EXPECT_LT(known.note.least, known.note.most) << path;
    for (int32_t i = 0; i < known.key.count; ++i) {
      EXPECT_GE(default_value(known.key, i), known.note.least) << path;
      EXPECT_LE(default_value(known.key, i), known.note.most) << path;
    }
  }
}

TEST(TuningCheck, WritesLostPointsAndNothingElse) {
  const std::string whole = read_cases().second.front().text;
  std::string lost = whole;
  size_t points = 0;
  for (size_t at = lost.find("radialMode"); (at = lost.find(".0", at)) != std::string::npos;) {
    lost.erase(at, 2);
    ++points;
  }
  const TestDirectory directory;
  write_text(directory / "t.json", lost);
  write_text(directory / "t.json.bak", "older");
  const CommandResult check = run_vorel({"check", directory.path()});
  EXPECT_EQ(check.status, 2);
  EXPECT_THAT(check.out, testing::HasSubstr(std::to_string(points) + " numbers have lost"));
  EXPECT_THAT(check.out, testing::HasSubstr("\n1 error, 0 warnings\n"));
  const CommandResult fix = run_vorel({"check", "--fix", "--json", directory / "t.json"});
  EXPECT_EQ(fix.status, 0) << fix.out;
  EXPECT_EQ(read_text(directory / "t.json"), whole);
  EXPECT_EQ(read_text(directory / "t.json.bak"), "older");
  EXPECT_EQ(read_text(directory / "t.json.bak1"), lost);
  json_t* report = json_loads(fix.out.c_str(), 0, nullptr);
  const json_t* file = json_array_get(json_object_get(report, "files"), 0);
  EXPECT_EQ(json_integer_value(json_object_get(file, "points_written")),
            static_cast<json_int_t>(points));
  json_decref(report);
  EXPECT_EQ(tool::write_points(whole).text, whole);
}

}  // namespace
