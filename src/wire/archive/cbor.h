#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <nlohmann/json.hpp>

#include "shared/value.h"

namespace linewatch::cbor {

using Json = nlohmann::json;

/// How values stand in CBOR (RFC 8949, by way of nlohmann::json):
///
///     boolean, double, text, bytes   the same in CBOR; a negative zero as zero
///     signed integer                 an integer of either sign
///     dictionary                     a map with text keys, in byte order of the keys
///     everything else                an array that starts with the number of its kind:
///       0 unsigned integer           [0, integer]
///       1 array                      [1, element…]
///       2 error                      [2, domain: text, code: integer, info: map]
///       3 list of archived objects   [3, element…]
///       4 archived object            [4, class name: text, {key: value…}]
///
/// The first two are all that a plain value needs; a keyed archive has the other three besides. Texts need
/// not be UTF-8. Equal values give identical bytes.
enum class Kind : std::uint8_t { unsignedInteger = 0, array, error, list, object };

/// How deep a value may nest.
inline constexpr int kMaximumDepth = 200;
/// How many CBOR items there may be in all. A few bytes can stand for an item that fills a hundred of memory.
inline constexpr std::size_t kMaximumItemCount = 1'000'000;

/// An array that starts with its kind.
Json tagged(Kind kind);
/// The kind of such an array; absent when it is no such array.
std::optional<Kind> kindOf(const Json& json);

/// Absent when the value holds an object of the process, or nests deeper than `depth` levels.
std::optional<Json> jsonOf(const Value& value, int depth = kMaximumDepth);
/// Absent when the JSON value does not stand for a plain value.
std::optional<Value> valueOf(const Json& json);

/// What the bytes hold; absent when they are not one whole CBOR item of the kinds above, or one beyond the
/// limits.
std::optional<Json> read(std::span<const std::uint8_t> bytes,
                         std::size_t maximumItemCount = kMaximumItemCount);

/// Whether there are not too many items in it to be read again.
bool canBeRead(const Json& json, std::size_t maximumItemCount = kMaximumItemCount);

/// A plain value as bytes and back; absent as above, or when there are too many items in it.
std::optional<Bytes> bytesOf(const Value& value);
std::optional<Value> valueIn(std::span<const std::uint8_t> bytes);

}  // namespace linewatch::cbor
