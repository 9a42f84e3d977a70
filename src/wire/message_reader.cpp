#include "wire/message_reader.h"

namespace linewatch {

std::uint64_t MessageReader::readLongVarint() {
  constexpr int kMaxBits = 70;
  std::uint64_t value = 0;
  for (int shift = 0; shift < kMaxBits; shift += 7) {
    if (at_ == end_) {
      hasError_ = true;
      return 0;
    }
    const std::uint64_t byte = *at_++;
    value |= (byte & 0x7F) << shift;
    if (byte < 0x80) return value;
  }
  return 0;
}

bool MessageReader::skipValue(std::uint64_t tag) {
  switch (tag & 7) {
    case 0:
      readVarint();
      return !hasError_;
    case 1:
      return skipBytes(8);
    case 2: {
      const auto length = readLength();
      return length && skipBytes(*length);
    }
    case 3:
      return skipGroup(tag >> 3);
    case 5:
      return skipBytes(4);
    default:
      hasError_ = true;
      return false;
  }
}

bool MessageReader::skipBytes(std::size_t count) {
  if (remaining() < count) {
    hasError_ = true;
    return false;
  }
  at_ += count;
  return true;
}

bool MessageReader::skipGroup(std::uint64_t fieldNumber) {
  if (nesting_ == kMaxNesting) {
    hasError_ = true;
    return false;
  }
  ++nesting_;
  for (;;) {
    const std::uint64_t tag = readVarint();
    if (hasError_) return false;
    if ((tag & 7) == 4) {
      --nesting_;
      hasError_ = tag >> 3 != fieldNumber;
      return !hasError_;
    }
    if (!skipValue(tag)) return false;
  }
}

}  // namespace linewatch
