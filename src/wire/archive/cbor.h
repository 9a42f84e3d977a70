#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <nlohmann/json.hpp>

#include "shared/value.h"

namespace linewatch::cbor {

using Json = nlohmann::json;

/// Values as CBOR (RFC 8949), written and parsed by nlohmann::json:
///
///     boolean, double, text, bytes   the same in CBOR; a negative zero becomes zero
///     signed integer                 an integer of either sign
///     dictionary                     a map with text keys, in byte order of the keys
///     anything else                  an array that starts with the number of its kind:
///       0 unsigned integer           [0, integer]
///       1 array                      [1, element…]
///       2 error                      [2, domain: text, code: integer, info: map]
///       3 list of archived objects   [3, element…]
///       4 archived object            [4, class name: text, {key: value…}]
///
/// A plain value uses the first two kinds, a keyed archive all five. Texts need not be UTF-8. Equal values
/// give identical bytes.
enum class Kind : std::uint8_t { unsignedInteger = 0, array, error, list, object };

/// The limit of nesting for values.
inline constexpr int kMaximumDepth = 200;
/// The limit of the number of CBOR items: an item of one byte takes about a hundred bytes of memory.
inline constexpr std::size_t kMaximumItemCount = 1'000'000;

/// An array that holds only the number of the kind.
Json tagged(Kind kind);
/// The kind that an array starts with; absent when the JSON value is not such an array.
std::optional<Kind> kindOf(const Json& json);

/// The JSON form of the value; absent when it holds an in-memory object or nests deeper than `depth` levels.
std::optional<Json> jsonOf(const Value& value, int depth = kMaximumDepth);
/// The plain value of a JSON form; absent when the JSON value is not one.
std::optional<Value> valueOf(const Json& json);

/// The JSON form in the bytes; absent when they are not exactly one CBOR item, hold a null, or exceed a
/// limit.
std::optional<Json> read(std::span<const std::uint8_t> bytes,
                         std::size_t maximumItemCount = kMaximumItemCount);

/// Whether the JSON form has few enough items to be read again.
bool canBeRead(const Json& json, std::size_t maximumItemCount = kMaximumItemCount);

/// Writes and reads a plain value. Absent for the reasons above, or when the value has too many items.
std::optional<Bytes> bytesOf(const Value& value);
std::optional<Value> valueIn(std::span<const std::uint8_t> bytes);

}  // namespace linewatch::cbor
