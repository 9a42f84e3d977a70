#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "shared/value.h"

namespace linewatch {

/// Writes the Protocol Buffers wire encoding, field by field, in the order of the calls:
///
///     field    = tag value            tag = varint of (field number << 3 | wire type)
///     varint   = seven bits a byte, low bits first, the high bit set on every byte but the last
///     0        varint                 1   eight bytes, little endian
///     2        varint length, bytes   (a text or a nested message)
///
/// Writing does not fail. Not thread-safe.
class MessageWriter {
 public:
  enum class WireType : std::uint8_t { varint = 0, fixed64 = 1, lengthDelimited = 2 };

  MessageWriter() = default;
  MessageWriter(const MessageWriter&) = delete;
  MessageWriter& operator=(const MessageWriter&) = delete;

  void writeVarintField(std::uint32_t number, std::uint64_t value) {
    reserve(2 * kMaxVarintSize);
    putTag(number, WireType::varint);
    putVarint(value);
  }

  void writeDoubleField(std::uint32_t number, double value) {
    reserve(kMaxVarintSize + sizeof value);
    putTag(number, WireType::fixed64);
    static_assert(std::endian::native == std::endian::little);
    std::memcpy(at_, &value, sizeof value);
    at_ += sizeof value;
  }

  void writeStringField(std::uint32_t number, std::string_view text) {
    reserve(2 * kMaxVarintSize + text.size());
    putTag(number, WireType::lengthDelimited);
    putVarint(text.size());
    if (text.empty()) return;
    std::memcpy(at_, text.data(), text.size());
    at_ += text.size();
  }

  /// A varint without a tag, for a packed list.
  void writeVarint(std::uint64_t value) {
    reserve(kMaxVarintSize);
    putVarint(value);
  }

  /// The start of a nested message.
  struct Mark {
    std::size_t bodyOffset;
  };

  /// Everything written between the two calls becomes the length-delimited value of the field.
  Mark beginMessage(std::uint32_t number) {
    reserve(kMaxVarintSize + 1);
    putTag(number, WireType::lengthDelimited);
    ++at_;  // most lengths take one byte; endMessage makes room for the others
    return {size()};
  }
  void endMessage(Mark mark) {
    const std::size_t length = size() - mark.bodyOffset;
    if (length < 0x80) {
      begin_[mark.bodyOffset - 1] = static_cast<std::uint8_t>(length);
    } else {
      insertLongLength(mark.bodyOffset, length);
    }
  }

  std::size_t size() const { return static_cast<std::size_t>(at_ - begin_); }
  /// All bytes written so far.
  Bytes bytes() const { return Bytes(begin_, at_); }

 private:
  static constexpr std::size_t kMaxVarintSize = 10;
  /// Records of the usual size need no memory from the heap.
  static constexpr std::size_t kInPlaceSize = 1024;

  struct Free {
    void operator()(std::uint8_t* memory) const { std::free(memory); }
  };

  void reserve(std::size_t more) {
    if (static_cast<std::size_t>(end_ - at_) < more) [[unlikely]]
      grow(more);
  }
  void putTag(std::uint32_t number, WireType type) {
    putVarint(number << 3 | static_cast<std::uint32_t>(type));
  }
  void putVarint(std::uint64_t value) {
    while (value >= 0x80) {
      *at_++ = static_cast<std::uint8_t>(value | 0x80);
      value >>= 7;
    }
    *at_++ = static_cast<std::uint8_t>(value);
  }
  void grow(std::size_t more);
  void insertLongLength(std::size_t bodyOffset, std::size_t length);

  std::uint8_t inPlace_[kInPlaceSize];
  std::unique_ptr<std::uint8_t, Free> heap_;
  std::uint8_t* begin_ = inPlace_;
  std::uint8_t* at_ = inPlace_;
  std::uint8_t* end_ = inPlace_ + kInPlaceSize;
};

}  // namespace linewatch
