#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace linewatch {

/// A place in a text; both are counted from 1, the column in characters.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;

  bool operator==(const TextPlace&) const = default;
};

/// A range of bytes.
struct TextRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool operator==(const TextRange&) const = default;
};

/// An entry of a TOML file's top-level table.
struct TomlEntry {
  /// Any other value, e.g. a date or a table.
  using Other = std::monostate;

  std::string key;
  std::variant<Other, bool, std::int64_t, std::string> value;
  TextPlace keyPlace, valuePlace;
  std::size_t keyBegin = 0;
  TextRange valueRange;
  /// The end of all that belongs to the entry, e.g. of the last of several lines "companion.x = 1".
  std::size_t end = 0;
  /// Whether the entry is a section, "[window]", and not a line "key = value".
  bool isSection = false;
};

/// The first mistake in a text that is not TOML.
struct TomlFault {
  enum class Kind : std::uint8_t { tooManyDots, strayCharacter, openQuote, repeatedKey, unreadable };

  TextPlace place;
  Kind kind = Kind::unreadable;
};

/// Parses a TOML file. The entries are in the order of the file.
std::variant<std::vector<TomlEntry>, TomlFault> parseToml(std::string_view text);

/// Whether both texts are TOML and the same but for the value of the top-level key.
bool differOnlyIn(std::string_view key, std::string_view before, std::string_view after);

/// The text as a TOML string on one line, with its quotes.
std::string tomlString(std::string_view text);

}  // namespace linewatch
