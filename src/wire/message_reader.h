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
/// A value that runs past the end sets the error flag, which stays set, and reads as 0 or empty. Any bytes
/// are safe to read: the reader stays within them and limits nesting. The bytes must outlive the reader.
class MessageReader {
 public:
  /// The limit of nesting for messages and skipped groups; reading fails beyond it.
  static constexpr int kMaxNesting = 100;

  MessageReader(const std::uint8_t* bytes, std::size_t length)
      : begin_(bytes), at_(bytes), end_(bytes + length) {}
  explicit MessageReader(const Bytes& bytes) : MessageReader(bytes.data(), bytes.size()) {}
  explicit MessageReader(Bytes&&) = delete;

  /// The number of bytes read so far.
  std::size_t position() const { return static_cast<std::size_t>(at_ - begin_); }
  /// The position where reading ends: the end of the bytes, or that of the nested message being read.
  std::size_t end() const { return static_cast<std::size_t>(end_ - begin_); }
  bool hasError() const { return hasError_; }
  bool hasMore() const { return at_ < end_ && !hasError_; }

  /// Reads at most ten bytes. When the tenth byte has its continuation bit set, the value is 0, without an
  /// error.
  std::uint64_t readVarint() {
    if (at_ < end_ && *at_ < 0x80) [[likely]]
      return *at_++;
    return readLongVarint();
  }

  /// With fewer than eight bytes left, the position does not move and the error flag is set.
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

  /// Reads a length and that many bytes, which are not checked to be UTF-8; empty when they run past the end.
  void readString(std::string& text) {
    const auto length = readLength();
    text.assign(reinterpret_cast<const char*>(at_), length.value_or(0));
    at_ += length.value_or(0);
  }

  /// The end to restore after a nested message.
  struct Bound {
    const std::uint8_t* outerEnd;
  };

  /// Reads a length and bounds the reader to that many bytes. Absent when they run past the end or messages
  /// nest too deep.
  std::optional<Bound> boundToMessage() {
    const auto length = readLength();
    if (!length || nesting_ == kMaxNesting) return std::nullopt;
    ++nesting_;
    const Bound bound{end_};
    end_ = at_ + *length;
    return bound;
  }
  /// Continues after the nested message, even when it was not read to its end.
  void liftBound(Bound bound) {
    --nesting_;
    at_ = end_;
    end_ = bound.outerEnd;
  }

  /// Skips the value after `tag`; a group is skipped with its contents. False when the value runs past the
  /// end, nests too deep or has an unknown wire type, or when a group ends with another group's end tag.
  bool skipValue(std::uint64_t tag);

 private:
  std::size_t remaining() const { return static_cast<std::size_t>(end_ - at_); }
  /// Absent when fewer bytes are left.
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
