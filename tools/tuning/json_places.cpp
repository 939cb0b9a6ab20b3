#include "tools/tuning/json_places.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

#include "tools/tuning/json.h"

namespace tool {
namespace {

constexpr int kMostDepth = 2048;  // jansson's limit
constexpr std::string_view kBlanks = " \t\r\n";

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_word(char c) {
  return is_digit(c) || std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' ||
         c == '+' || c == '-' || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

// Whether all of `word` is a number as JSON writes it.
bool is_number(std::string_view word) {
  size_t at = word.starts_with('-') ? 1 : 0;
  const auto digits = [&] {
    const size_t first = at;
    while (at < word.size() && is_digit(word[at])) ++at;
    return at - first;
  };
  const bool leading_zero = at < word.size() && word[at] == '0';
  const size_t whole = digits();
  if (whole == 0 || (leading_zero && whole > 1)) return false;
  if (at < word.size() && word[at] == '.') {
    ++at;
    if (digits() == 0) return false;
  }
  if (at < word.size() && (word[at] == 'e' || word[at] == 'E')) {
    ++at;
    if (at < word.size() && (word[at] == '+' || word[at] == '-')) ++at;
    if (digits() == 0) return false;
  }
  return at == word.size();
}

// Bytes that look like a blank or a quotation mark and are neither; empty for others.
std::string disguised(std::string_view word) {
  for (const std::string_view quote : {"\xE2\x80\x9C", "\xE2\x80\x9D", "\xE2\x80\x9E"}) {
    if (word.starts_with(quote)) return "a typographic quotation mark stands here; write \"";
  }
  for (const std::string_view blank : {"\xC2\xA0", "\xE2\x80", "\xEF\xBB\xBF", "\xE3\x80\x80"}) {
    if (word.starts_with(blank)) return "an invisible character stands here that is no plain blank";
  }
  return "";
}

std::string word_fault(std::string_view word) {
  if (const std::string what = disguised(word); !what.empty()) return what;
  std::string lower(word);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const std::string shown = "'" + std::string(word) + "'";
  for (const char* literal : {"true", "false", "null"}) {
    if (lower == literal) return shown + " is written " + literal + " in JSON";
  }
  if (lower == "none") return "'None' is written null in JSON";
  const bool starts_as_number =
      is_digit(word[0]) || word[0] == '-' || word[0] == '+' || word[0] == '.';
  if (starts_as_number || lower == "nan" || lower.starts_with("inf")) {
    return shown + " is no number in JSON";
  }
  return shown + " is no value in JSON; texts need double quotes";
}

class Follower {
 public:
  explicit Follower(const std::string& text) : text_(text) {}

  JsonPlaces follow() {
    JsonPlaces places;
    skip_blanks();
    if (!fault_ && peek() != '[' && peek() != '{') {
      fail(at_, at_ >= text_.size() ? "the file is empty"
                                    : "the file must start with '[', the array of tunings");
    }
    if (!fault_) value(places.root, 0);
    places.fault = std::move(fault_);
    return places;
  }

 private:
  [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  bool fail(size_t at, std::string what) {
    if (!fault_) fault_ = {at, std::move(what)};
    return false;
  }

  bool skip_blanks() {
    at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
    const bool slashes =
        peek() == '/' && at_ + 1 < text_.size() && (text_[at_ + 1] == '/' || text_[at_ + 1] == '*');
    if (slashes || peek() == '#') return fail(at_, "a comment stands here; JSON has none");
    return true;
  }

  bool value(JsonNode& node, int depth) {
    node.begin = at_;
    const char first = peek();
    bool good = true;
    if (first == '[' || first == '{') {
      good = depth < kMostDepth ? children(node, depth) : fail(at_, "the nesting is too deep");
    } else if (first == '"' || first == '\'') {
      good = string();
    } else {
      good = word();
    }
    node.end = at_;
    return good;
  }

  bool children(JsonNode& node, int depth) {
    const bool is_object = peek() == '{';
    const char closing = is_object ? '}' : ']';
    ++at_;
    if (!skip_blanks()) return false;
    for (size_t comma = 0; peek() != closing;) {
      if (at_ >= text_.size()) return never_closed(node);
      if (!node.children.empty() && comma == 0) return missing_comma(is_object);
      JsonNode child;
      if (is_object && !member_name(child)) return false;
      if (!value(child, depth + 1) || !skip_blanks()) return false;
      node.children.push_back(std::move(child));
      comma = peek() == ',' ? at_ : 0;
      if (comma == 0) continue;
      ++at_;
      if (!skip_blanks()) return false;
      if (peek() == closing) return fail(comma, "a comma stands here with nothing behind it");
    }
    ++at_;
    return true;
  }

  bool never_closed(const JsonNode& node) {
    return fail(node.begin,
                "'" + text_.substr(node.begin, 1) + "' opens here and nothing closes it");
  }

  bool missing_comma(bool is_object) {
    const char next = peek();
    if (next == ']' || next == '}') {
      return fail(at_, std::string("'") + next + "' stands here where '" + (is_object ? '}' : ']') +
                           "' must come first");
    }
    if (next == ':') return fail(at_, "':' stands in an array; a ']' may be missing before it");
    return fail(at_, "a comma is missing before this");
  }

  bool member_name(JsonNode& child) {
    child.name_begin = at_;
    if (peek() != '"' && peek() != '\'') {
      const std::string_view name = take_word();
      if (name.empty()) return unexpected();
      const std::string hidden = disguised(name);
      return fail(child.name_begin, hidden.empty()
                                        ? "the key '" + std::string(name) + "' needs double quotes"
                                        : hidden);
    }
    if (!string()) return false;
    child.name = decoded(text_.substr(child.name_begin, at_ - child.name_begin));
    if (!skip_blanks()) return false;
    if (peek() != ':') return fail(at_, "':' is missing between the key and its value");
    ++at_;
    return skip_blanks();
  }

  static std::string decoded(const std::string& quoted) {
    const Json json(json_loadb(quoted.data(), quoted.size(), JSON_DECODE_ANY, nullptr));
    const char* name = json_string_value(json.get());
    return name != nullptr ? name : quoted;
  }

  bool string() {
    const size_t begin = at_;
    if (peek() == '\'') return fail(at_, "texts need double quotes, not single ones");
    for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      if (static_cast<unsigned char>(text_[at_]) < 0x20) {
        return text_[at_] == '\n' || text_[at_] == '\r'
                   ? fail(begin, "a text opens here that its line does not close")
                   : fail(at_, "a control character stands in a text; write it as \\u00..");
      }
      if (text_[at_] == '\\' && !escape()) return false;
    }
    if (at_ >= text_.size()) return fail(begin, "a text opens here and nothing closes it");
    ++at_;
    return true;
  }

  // What the four digits of \u may be together is jansson's to say.
  bool escape() {
    const size_t begin = at_++;
    if (peek() == 'u') {
      for (int i = 0; i < 4; ++i) {
        ++at_;
        if (std::isxdigit(static_cast<unsigned char>(peek())) == 0) {
          return fail(begin, "\\u needs four hexadecimal digits");
        }
      }
      return true;
    }
    if (at_ < text_.size() && std::string_view("\"\\/bfnrt").find(peek()) != std::string_view::npos)
      return true;
    return fail(begin, "a backslash stands before what JSON does not escape; write \\\\");
  }

  std::string_view take_word() {
    const size_t begin = at_;
    while (at_ < text_.size() && is_word(text_[at_])) ++at_;
    return std::string_view(text_).substr(begin, at_ - begin);
  }

  bool unexpected() {
    return at_ >= text_.size() ? fail(at_, "the file ends here, in the middle")
                               : fail(at_, std::string("'") + peek() + "' is not expected here");
  }

  bool word() {
    const size_t begin = at_;
    const std::string_view taken = take_word();
    if (taken.empty()) return unexpected();
    if (taken == "true" || taken == "false" || taken == "null" || is_number(taken)) return true;
    return fail(begin, word_fault(taken));
  }

  const std::string& text_;
  size_t at_ = 0;
  std::optional<JsonFault> fault_;
};

}  // namespace

JsonPlaces find_places(const std::string& text) { return Follower(text).follow(); }

TextPlace place_of(const std::string& text, size_t offset) {
  TextPlace place;
  for (size_t i = 0; i < std::min(offset, text.size()); ++i) {
    if (text[i] == '\n') {
      ++place.line;
      place.column = 1;
    } else if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      ++place.column;
    }
  }
  return place;
}

}  // namespace tool
