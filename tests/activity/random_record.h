#pragma once

#include <cmath>
#include <iterator>
#include <limits>
#include <random>
#include <string>

#include "platform/transit_record_fields.h"
#include "wire/message_fields.h"

namespace linewatch {

/// Fills records of every kind by their field tables: each field is present half the time, with values that
/// favour the edges of their types. The seed determines the record.
class RandomRecord {
 public:
  explicit RandomRecord(std::uint64_t seed) : random_(seed) {}

  template <class Record>
  void fill(Record& record) {
    auto& target = RecordFields::of(record);
    fields::forEachField<Record>([&](const auto& field) {
      if (oneOf(2) == 0) fillField(field.in(target));
    });
  }

  std::uint64_t oneOf(std::uint64_t count) { return random_() % count; }

 private:
  template <class Held>
  void fillField(Held& held) {
    if constexpr (fields::List<Held>::value) {
      // An empty list leaves no trace in the bytes.
      auto& elements = fields::List<Held>::present(held);
      for (std::uint64_t left = 1 + oneOf(3); left > 0; --left) {
        auto& element = elements.emplace_back();
        fillValue(fields::Holder<std::remove_cvref_t<decltype(element)>>::fresh(element));
      }
    } else {
      fillValue(fields::Holder<Held>::fresh(held));
    }
  }

  template <class Value>
  void fillValue(Value& value) {
    if constexpr (MessageEnumeration<Value>) {
      value = static_cast<Value>(oneOf(kEnumerationNames<Value>.size()));
    } else if constexpr (std::same_as<Value, bool>) {
      value = oneOf(2) != 0;
    } else if constexpr (std::integral<Value>) {
      value = static_cast<Value>(number());
    } else if constexpr (std::same_as<Value, double>) {
      value = real();
    } else if constexpr (std::same_as<Value, Date>) {
      value = Date(Seconds(real()));
    } else if constexpr (std::same_as<Value, std::string>) {
      value = text();
    } else if constexpr (std::same_as<Value, fields::PackedNumbers>) {
      for (std::uint64_t left = 1 + oneOf(4); left > 0; --left) value.push_back(number());
    } else {
      fill(value);
    }
  }

  /// A number of random length in bits, near a power of two.
  std::uint64_t number() { return (std::uint64_t{1} << oneOf(64)) + oneOf(3) - 1; }

  double real() {
    const double edges[] = {0,
                            -0.0,
                            1,
                            std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::denorm_min(),
                            -std::numeric_limits<double>::max()};
    const auto edge = oneOf(2 * std::size(edges));
    if (edge < std::size(edges)) return edges[edge];
    return std::ldexp(static_cast<double>(static_cast<std::int64_t>(random_())),
                      -static_cast<int>(oneOf(80)));
  }

  /// A short text, or one whose length does not fit into one byte.
  std::string text() {
    std::string text;
    for (std::uint64_t left = oneOf(8) == 0 ? oneOf(300) : oneOf(12); left > 0; --left) {
      text += oneOf(4) == 0 ? std::string("ü") : std::string(1, static_cast<char>(' ' + oneOf(95)));
    }
    return text;
  }

  std::mt19937_64 random_;
};

}  // namespace linewatch
