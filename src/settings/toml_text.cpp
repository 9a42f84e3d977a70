#include "settings/toml_text.h"

#include <algorithm>
#include <cstddef>
#include <optional>

// The library is compiled here only; nothing else includes it. It is not linked, because a shared library
// more would make every start slower.
// Its assertions hold for fewer texts than its error messages: "[@" would end the program.
#define TOML_HEADER_ONLY 1
#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#define TOML_ASSERT(condition) static_cast<void>(0)
#ifdef NDEBUG
#undef NDEBUG
#define LINEWATCH_HAD_NDEBUG
#endif
#include <toml++/toml.h>
#ifdef LINEWATCH_HAD_NDEBUG
#define NDEBUG
#endif

namespace linewatch {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Turns the library's places into offsets.
class Offsets {
 public:
  explicit Offsets(std::string_view text) : text_(text) {
    starts_.push_back(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\n') starts_.push_back(i + 1);
    }
  }

  std::size_t operator()(const toml::source_position& place) const {
    if (place.line == 0 || place.line > starts_.size()) return text_.size();
    std::size_t offset = starts_[place.line - 1];
    for (auto column = place.column; column > 1 && offset < text_.size(); --column) {
      ++offset;
      while (offset < text_.size() && isContinuation(text_[offset])) ++offset;
    }
    return offset;
  }

 private:
  /// True for the second and later bytes of a character in UTF-8.
  static bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

  std::string_view text_;
  std::vector<std::size_t> starts_;
};

TextPlace placeAt(const toml::source_position& place) {
  return {std::max<std::size_t>(place.line, 1), std::max<std::size_t>(place.column, 1)};
}

/// The first line that may have a key of very many parts, "a.a.a.…". The library takes a table apart by
/// recursion, and would run out of stack.
std::optional<std::size_t> lineOfDeepKey(std::string_view text) {
  constexpr std::ptrdiff_t kMostDots = 64;
  for (std::size_t line = 1; !text.empty(); ++line) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    if (std::ranges::count(text.substr(0, end), '.') > kMostDots) return line;
    text.remove_prefix(end + 1);
  }
  return std::nullopt;
}

bool isForbiddenControl(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code == 0x7F || (code < 0x20 && byte != '\t' && byte != '\r' && byte != '\n');
}

bool isAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Looks for a character beyond ASCII or a quote where TOML has none: outside strings and comments. The
/// library must not see it, because what it does then is undefined; so is what it does after a backslash that
/// joins lines. Also finds a quote that is not closed.
class CharacterScan {
 public:
  explicit CharacterScan(std::string_view text) : text_(text) {
    // TOML has these nowhere, not even in strings.
    const auto* const control = std::ranges::find_if(text, isForbiddenControl);
    isFound_ = control != text.end();
    if (isFound_)
      place_ = static_cast<std::size_t>(control - text.begin());
    else if (text.starts_with(kByteOrderMark))
      place_ = kByteOrderMark.size();
    while (place_ < text_.size() && !isFound_) step();
  }

  std::optional<TomlFault> fault() const {
    if (!isFound_) return std::nullopt;
    const std::string_view before = text_.substr(0, place_);
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
    return TomlFault{{static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1,
                      static_cast<std::size_t>(std::ranges::count_if(line, isFirstByte)) + 1},
                     kind_};
  }

 private:
  void step() {
    const char c = text_[place_];
    if (c == '#') {
      place_ = std::min(text_.find('\n', place_), text_.size());
    } else if ((c == '"' || c == '\'') && mayBeginString()) {
      skipString(std::string(text_.substr(place_, 3) == std::string(3, c) ? 3 : 1, c));
    } else if (isAscii(c) && c != '"' && c != '\'') {
      ++place_;
    } else {
      isFound_ = true;
    }
  }
  /// A quote that follows other characters begins no string: the library reads on as if it were a number.
  bool mayBeginString() const {
    constexpr std::string_view kBefore = " \t\r\n=,[{.";
    return place_ == 0 || !isAscii(text_[place_ - 1]) ||
           kBefore.find(text_[place_ - 1]) != std::string_view::npos;
  }
  void skipString(const std::string& quotes) {
    constexpr int kMostQuotesBeforeEnd = 2;
    const bool isLong = quotes.size() > 1;
    const std::size_t begin = place_;
    place_ += quotes.size();
    while (place_ < text_.size() && !isFound_ && !text_.substr(place_).starts_with(quotes)) {
      if (!isLong && text_[place_] == '\n') return foundOpenQuote(begin);
      if (quotes.front() == '"' && text_[place_] == '\\')
        skipEscape();
      else
        ++place_;
    }
    if (isFound_) return;
    if (place_ == text_.size()) return foundOpenQuote(begin);
    place_ += quotes.size();
    // The last quotes of a long string may be part of it.
    for (int i = 0; isLong && i < kMostQuotesBeforeEnd && text_.substr(place_).starts_with(quotes.front());
         ++i)
      ++place_;
  }
  void foundOpenQuote(std::size_t place) {
    isFound_ = true;
    place_ = place;
    kind_ = TomlFault::Kind::openQuote;
  }
  void skipEscape() {
    const std::size_t end = text_.find_first_not_of(" \t\r\n", place_ + 1);
    const std::string_view blanks = text_.substr(place_ + 1, end - std::min(end, place_ + 1));
    if (blanks.find('\n') == std::string_view::npos) {
      place_ = std::min(place_ + 2, text_.size());
      return;
    }
    place_ = std::min(end, text_.size());
    isFound_ = place_ < text_.size() && !isAscii(text_[place_]);
  }

  std::string_view text_;
  std::size_t place_ = 0;
  bool isFound_ = false;
  TomlFault::Kind kind_ = TomlFault::Kind::strayCharacter;
};

/// The library's sentences are not shown: they are about its parser, and take several lines.
TomlFault faultOf(const toml::parse_error& error) {
  const bool isRepeated = error.description().find("redefine") != std::string_view::npos;
  return {placeAt(error.source().begin),
          isRepeated ? TomlFault::Kind::repeatedKey : TomlFault::Kind::unreadable};
}

std::size_t endOf(const toml::node& node, const Offsets& offsets) {
  std::size_t end = offsets(node.source().end);
  if (const toml::table* const table = node.as_table()) {
    for (const auto& [key, value] : *table) end = std::max(end, endOf(value, offsets));
  }
  return end;
}

decltype(TomlEntry::value) valueOf(const toml::node& node) {
  if (const auto* const value = node.as_boolean()) return value->get();
  if (const auto* const value = node.as_integer()) return value->get();
  if (const auto* const value = node.as_string()) return value->get();
  return TomlEntry::Other();
}

TomlEntry entryOf(const toml::key& key, const toml::node& node, const Offsets& offsets) {
  TomlEntry entry{.key = std::string(key.str()),
                  .value = valueOf(node),
                  .keyPlace = placeAt(key.source().begin),
                  .valuePlace = placeAt(node.source().begin),
                  .keyBegin = offsets(key.source().begin),
                  .valueRange = {offsets(node.source().begin), offsets(node.source().end)}};
  // The bracket of a section comes before its name.
  entry.isSection = entry.valueRange.begin < entry.keyBegin;
  entry.end = endOf(node, offsets);
  return entry;
}

}  // namespace

std::variant<std::vector<TomlEntry>, TomlFault> parseToml(std::string_view text) {
  if (const auto line = lineOfDeepKey(text)) return TomlFault{{*line, 1}, TomlFault::Kind::tooManyDots};
  if (const auto fault = CharacterScan(text).fault()) return *fault;
  const toml::parse_result parsed = toml::parse(text);
  if (!parsed) return faultOf(parsed.error());
  const Offsets offsets(text);
  std::vector<TomlEntry> entries;
  for (const auto& [key, node] : parsed.table()) entries.push_back(entryOf(key, node, offsets));
  std::ranges::sort(entries, {}, &TomlEntry::keyBegin);
  return entries;
}

bool differOnlyIn(std::string_view key, std::string_view before, std::string_view after) {
  toml::parse_result one = toml::parse(before);
  toml::parse_result other = toml::parse(after);
  if (!one || !other) return false;
  one.table().erase(key);
  other.table().erase(key);
  return one.table() == other.table();
}

std::string tomlString(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') quoted += '\\';
    if (code >= 0x20 && code != 0x7F) {
      quoted += c;
    } else {
      quoted.append("\\u00").append({kDigits[code >> 4U], kDigits[code & 0xFU]});
    }
  }
  return quoted + '"';
}

}  // namespace linewatch
