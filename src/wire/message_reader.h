#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "shared/value.h"

namespace linewatch {

/// Reads the Protocol Buffers wire encoding (`MessageWriter` shows its layout).
///
/// A value that runs past the end sets the error flag and reads as 0 or empty; the flag stays set. What is
/// read need not be trusted: nothing outside the bytes is touched, and the depth of nesting is bounded. The
/// bytes must outlive the reader.
class MessageReader {
 public:
  /// How deep messages and skipped groups may nest; deeper data does not read.
  static constexpr int kMaxNesting = 100;

  MessageReader(const std::uint8_t* bytes, std::size_t length)
      : begin_(bytes), at_(bytes), end_(bytes + length) {}
  explicit MessageReader(const Bytes& bytes) : MessageReader(bytes.data(), bytes.size()) {}
  explicit MessageReader(Bytes&&) = delete;

  /// In bytes from the start.
  std::size_t position() const { return static_cast<std::size_t>(at_ - begin_); }
  /// Where reading ends: the end of the bytes, or of the nested message that the reader is bounded to.
  std::size_t end() const { return static_cast<std::size_t>(end_ - begin_); }
  bool hasError() const { return hasError_; }
  bool hasMore() const { return at_ < end_ && !hasError_; }

  /// At most ten bytes: when the tenth still announces another, the value is 0, without an error.
  std::uint64_t readVarint() {
    if (at_ < end_ && *at_ < 0x80) [[likely]]
      return *at_++;
    return readLongVarint();
  }

  /// With fewer than eight bytes left the position does not move.
  double readDouble() {
    double value = 0;
    if (remaining() < sizeof value) {
      hasError_ = true;
    } else {
      std::memcpy(&value, at_, sizeof value);
      at_ += sizeof value;
    }
    return value;
  }

  /// A length and as many bytes, taken as UTF-8 unchecked; empty when they run past the end.
  void readString(std::string& text) {
    const auto length = readLength();
    text.assign(reinterpret_cast<const char*>(at_), length.value_or(0));
    at_ += length.value_or(0);
  }

  /// The end to go back to when a nested message is over.
  struct Bound {
    const std::uint8_t* outerEnd;
  };

  /// Reads a length and bounds the reader to that many bytes. None when they run past the end, or when
  /// messages nest too deep.
  std::optional<Bound> boundToMessage() {
    const auto length = readLength();
    if (!length || nesting_ == kMaxNesting) return std::nullopt;
    ++nesting_;
    const Bound bound{end_};
    end_ = at_ + *length;
    return bound;
  }
  /// Goes on behind the nested message, also when it was not read to its end.
  void liftBound(Bound bound) {
    --nesting_;
    at_ = end_;
    end_ = bound.outerEnd;
  }

  /// Passes over the value that follows `tag`, a group with all that it holds. False when it runs past the
  /// end, ends with another group's end, nests too deep, or has no known wire type.
  bool skipValue(std::uint64_t tag);

 private:
  std::size_t remaining() const { return static_cast<std::size_t>(end_ - at_); }
  /// Absent when that many bytes are not left.
  std::optional<std::size_t> readLength() {
    const std::uint64_t length = readVarint();
    if (hasError_ || length > remaining()) {
      hasError_ = true;
      return std::nullopt;
    }
    return length;
  }
  std::uint64_t readLongVarint();
  bool skipBytes(std::size_t count);
  bool skipGroup(std::uint64_t fieldNumber);

  const std::uint8_t* begin_;
  const std::uint8_t* at_;
  const std::uint8_t* end_;
  int nesting_ = 0;
  bool hasError_ = false;
};

}  // namespace linewatch
