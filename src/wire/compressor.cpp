#include "wire/compressor.h"

#include <algorithm>
#include <limits>

#include <bzlib.h>

namespace linewatch {

namespace {

/// The smallest block size that holds all the data. libbz2 allocates eight times the block size, and records
/// are small.
int blockSizeFor(std::size_t size) {
  constexpr std::size_t kUnit = 100'000, kLargest = 9;
  return static_cast<int>(std::min(kLargest, 1 + size / kUnit));
}

}  // namespace

std::optional<Bytes> LibraryCompressor::bzip2(const Bytes& data) {
  const std::size_t room =
      data.size() + data.size() / 100 + 600;  // the size that libbz2 documents for the worst case
  if (room > std::numeric_limits<unsigned>::max()) return std::nullopt;
  Bytes compressed(room);
  auto size = static_cast<unsigned>(room);
  // libbz2 does not write to its source, but its parameter is not const.
  char* const source = reinterpret_cast<char*>(const_cast<std::uint8_t*>(data.data()));
  char empty = 0;
  const int status = BZ2_bzBuffToBuffCompress(reinterpret_cast<char*>(compressed.data()), &size,
                                              source ? source : &empty, static_cast<unsigned>(data.size()),
                                              blockSizeFor(data.size()), /*verbosity=*/0, /*workFactor=*/0);
  if (status != BZ_OK) return std::nullopt;
  compressed.resize(size);
  compressed.shrink_to_fit();
  return compressed;
}

}  // namespace linewatch
