#include "wire/message_writer.h"

#include <algorithm>
#include <new>

namespace linewatch {

void MessageWriter::grow(std::size_t more) {
  const std::size_t used = size();
  const std::size_t capacity = std::max(2 * static_cast<std::size_t>(end_ - begin_), used + more);
  auto* const memory = static_cast<std::uint8_t*>(std::realloc(heap_.get(), capacity));
  if (!memory) throw std::bad_alloc();
  if (!heap_) std::memcpy(memory, inPlace_, used);
  static_cast<void>(heap_.release());  // realloc owns the old memory now
  heap_.reset(memory);
  begin_ = memory;
  at_ = memory + used;
  end_ = memory + capacity;
}

void MessageWriter::insertLongLength(std::size_t bodyOffset, std::size_t length) {
  reserve(kMaxVarintSize);
  const std::size_t lengthSize = (static_cast<std::size_t>(std::bit_width(length)) + 6) / 7;
  std::uint8_t* const prefix = begin_ + bodyOffset - 1;
  std::memmove(prefix + lengthSize, prefix + 1, length);
  at_ = prefix;
  putVarint(length);
  at_ += length;
}

}  // namespace linewatch
