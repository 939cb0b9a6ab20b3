// The broken tuning files of data/broken.txt.
#ifndef VOREL_TESTS_TOOLS_TUNING_BROKEN_CASES_H_
#define VOREL_TESTS_TOOLS_TUNING_BROKEN_CASES_H_

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/source_path.h"
#include "tests/tools/run_command.h"

inline std::string unescaped(const std::string& text) {
  std::string plain;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text.compare(at, 2, "\\n") == 0) {
      plain += '\n';
      ++at;
    } else if (text.compare(at, 2, "\\x") == 0) {
      plain += static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16));
      at += 3;
    } else {
      plain += text[at];
    }
  }
  return plain;
}

struct BrokenCase {
  std::string name;
  std::string body;      // as in the file
  std::string text;      // of the tuning file
  std::string expected;  // findings
};

inline std::string text_of(const std::string& body, const std::string& whole) {
  if (body.starts_with("folder ")) {
    return read_text(source_path("tests/tuning/data/" + body.substr(7) + "/input.json"));
  }
  if (body.find(" => ") == std::string::npos) return unescaped(body);
  std::string text = whole;
  std::istringstream edits(body);
  for (std::string edit; std::getline(edits, edit);) {
    const size_t arrow = edit.find(" => ");
    const std::string from = unescaped(edit.substr(0, arrow));
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << edit;
    EXPECT_EQ(text.find(from, at + 1), std::string::npos) << edit << " stands twice";
    if (at != std::string::npos) text.replace(at, from.size(), unescaped(edit.substr(arrow + 4)));
  }
  return text;
}

inline constexpr char kBrokenCases[] = "tests/tools/tuning/data/broken.txt";

// The comment at the head of the table, and its cases.
inline std::pair<std::string, std::vector<BrokenCase>> read_cases() {
  std::ifstream file(source_path(kBrokenCases));
  std::pair<std::string, std::vector<BrokenCase>> read;
  std::string* into = &read.first;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("=== ")) {
      read.second.push_back({line.substr(4), "", "", ""});
      into = &read.second.back().body;
    } else if (line == "---") {
      into = &read.second.back().expected;
    } else {
      *into += line + "\n";
    }
  }
  for (BrokenCase& one : read.second) {
    one.body = one.body.substr(0, one.body.size() - 1);
    one.text = text_of(one.body, read.second.front().body);
  }
  return read;
}

#endif  // VOREL_TESTS_TOOLS_TUNING_BROKEN_CASES_H_
