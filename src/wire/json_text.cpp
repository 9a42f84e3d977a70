#include "wire/json_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <variant>

namespace linewatch {

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";
/// 2^53: above it a double cannot hold every whole number.
constexpr double kLargestExactWhole = 9007199254740992.0;

std::uint8_t byteAt(std::string_view text, std::size_t place) {
  return place < text.size() ? static_cast<std::uint8_t>(text[place]) : 0;
}

bool isWithin(std::uint8_t byte, std::uint8_t low, std::uint8_t high) { return byte >= low && byte <= high; }

/// The length of the UTF-8 sequence at `place`; 0 when it is malformed. The bounds of the second byte exclude
/// overlong forms, surrogates, and code points above U+10FFFF.
std::size_t lengthOfCodePoint(std::string_view text, std::size_t place) {
  const std::uint8_t first = byteAt(text, place);
  if (first < 0x80) return 1;
  if (!isWithin(first, 0xC2, 0xF4)) return 0;
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  const std::uint8_t low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (!isWithin(byteAt(text, place + 1), low, high)) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (!isWithin(byteAt(text, place + i), 0x80, 0xBF)) return 0;
  }
  return length;
}

void appendUnicodeEscape(std::string& json, std::uint8_t code) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  json.append("\\u00").append(1, kDigits[code >> 4]).append(1, kDigits[code & 15]);
}

/// The second byte of a C1 control, U+0080 to U+009F: terminals obey these too. 0 for other characters.
std::uint8_t c1Control(std::string_view character) {
  const bool isControl = character.size() == 2 && byteAt(character, 0) == 0xC2 && byteAt(character, 1) < 0xA0;
  return isControl ? byteAt(character, 1) : 0;
}

void appendEscaped(std::string& json, char character) {
  switch (character) {
    case '"':
      json += "\\\"";
      return;
    case '\\':
      json += "\\\\";
      return;
    case '\n':
      json += "\\n";
      return;
    case '\t':
      json += "\\t";
      return;
    default:
      break;
  }
  constexpr std::uint8_t kDelete = 0x7F;
  if (const auto code = static_cast<std::uint8_t>(character); code >= 0x20 && code != kDelete) {
    json += character;
  } else {
    appendUnicodeEscape(json, code);
  }
}

void appendQuoted(std::string& json, std::string_view text) {
  json += '"';
  for (std::size_t place = 0; place < text.size();) {
    const std::size_t length = lengthOfCodePoint(text, place);
    if (length == 1) {
      appendEscaped(json, text[place]);
    } else if (const std::uint8_t control = c1Control(text.substr(place, length))) {
      appendUnicodeEscape(json, control);
    } else {
      json += length == 0 ? kReplacementCharacter : text.substr(place, length);
    }
    place += length == 0 ? 1 : length;
  }
  json += '"';
}

template <class Number>
void appendNumber(std::string& json, Number number) {
  std::array<char, 32> digits;
  json.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void appendBase64(std::string& json, const Bytes& bytes) {
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  json += '"';
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const auto at = [&](std::size_t k) -> std::uint32_t { return k < bytes.size() ? bytes[k] : 0; };
    const std::uint32_t group = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
    json += kAlphabet[group >> 18];
    json += kAlphabet[group >> 12 & 63];
    json += i + 1 < bytes.size() ? kAlphabet[group >> 6 & 63] : '=';
    json += i + 2 < bytes.size() ? kAlphabet[group & 63] : '=';
  }
  json += '"';
}

void append(std::string& json, const Value& value);

struct Append {
  std::string& json;

  void operator()(bool value) const { json += value ? "true" : "false"; }
  void operator()(std::int64_t value) const { appendNumber(json, value); }
  void operator()(std::uint64_t value) const { appendNumber(json, value); }
  void operator()(double value) const {
    if (!std::isfinite(value)) {
      json += "null";
    } else if (std::trunc(value) == value && std::fabs(value) < kLargestExactWhole) {
      appendNumber(json, static_cast<std::int64_t>(value));
    } else {
      appendNumber(json, value);
    }
  }
  void operator()(const std::string& value) const { appendQuoted(json, value); }
  void operator()(const Bytes& value) const { appendBase64(json, value); }
  void operator()(const Array& value) const {
    json += '[';
    bool isFirst = true;
    for (const Value& element : value) {
      if (!std::exchange(isFirst, false)) json += ", ";
      append(json, element);
    }
    json += ']';
  }
  void operator()(const Dictionary& value) const {
    json += '{';
    bool isFirst = true;
    for (const auto& [key, element] : value) {
      if (!std::exchange(isFirst, false)) json += ", ";
      appendQuoted(json, key);
      json += ": ";
      append(json, element);
    }
    json += '}';
  }
  void operator()(const std::shared_ptr<const Object>& value) const {
    if (value) {
      appendQuoted(json, value->description());
    } else {
      json += "null";
    }
  }
};

void append(std::string& json, const Value& value) { std::visit(Append{json}, value.storage()); }

}  // namespace

std::string jsonText(const Value& value) {
  std::string json;
  append(json, value);
  return json;
}

std::string jsonText(const Dictionary& dictionary) {
  std::string json;
  Append{json}(dictionary);
  return json;
}

std::string jsonQuoted(std::string_view text) {
  std::string json;
  appendQuoted(json, text);
  return json;
}

}  // namespace linewatch
