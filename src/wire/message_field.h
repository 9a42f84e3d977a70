#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <utility>

namespace linewatch {

/// A scalar with its presence flag. Clearing the flag does not change the value.
template <class T>
struct Flagged {
  T value{};
  bool isPresent = false;
};

template <std::uint32_t kNumber>
struct FieldNumber {};

/// One field of a record: its number on the wire, its member, and its name in the dictionary form.
///
/// The type of the member decides how the field is written and when it is present:
///
///     Flagged<T>              a scalar, present when its flag is set
///     T                       a scalar or text, present when it is not 0 or empty
///     std::optional<T>        a scalar, text, record or packed list of numbers, present when it has a value
///     std::shared_ptr<T>      a nested record or message, present when not null; merging changes it in
///                             place, or replaces it by a merged copy when T is const
///     std::vector<std::shared_ptr<T>>, also optional
///                             a repeated record or message, written as one entry for each element; no
///                             element is null
template <std::uint32_t kNumber, auto kMember>
struct Field {
  static constexpr std::uint32_t number = kNumber;
  std::string_view name;

  template <class Record>
  static constexpr auto& in(Record& record) {
    return record.*kMember;
  }
};

/// The fields of a record in ascending order of their numbers, as the tuple `fields`.
///
/// A message that declares its fields with the macros of `message_fields_begin.inc` gets its table from those
/// declarations, up to its `kLastFieldNumber`. A plain struct specialises the table.
template <class Record>
struct FieldTable {
 private:
  template <std::size_t kNumber>
  static constexpr bool hasField = requires {
    Record::field(FieldNumber<kNumber>{});
  };

  template <std::size_t... kNumbers>
  static constexpr std::array<bool, sizeof...(kNumbers)> presence(std::index_sequence<kNumbers...>) {
    return {hasField<kNumbers>...};
  }
  static constexpr auto kPresence = presence(std::make_index_sequence<Record::kLastFieldNumber + 1>{});

  static constexpr std::size_t count() {
    std::size_t found = 0;
    for (const bool isField : kPresence) found += isField;
    return found;
  }
  static constexpr auto numbers() {
    std::array<std::uint32_t, count()> found{};
    std::size_t next = 0;
    for (std::uint32_t number = 0; number < kPresence.size(); ++number)
      if (kPresence[number]) found[next++] = number;
    return found;
  }
  template <std::size_t... kIndexes>
  static constexpr auto collect(std::index_sequence<kIndexes...>) {
    return std::tuple{Record::field(FieldNumber<numbers()[kIndexes]>{})...};
  }

 public:
  static constexpr auto fields = collect(std::make_index_sequence<count()>{});
};

}  // namespace linewatch
