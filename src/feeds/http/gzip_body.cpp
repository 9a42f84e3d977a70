#include "feeds/http/gzip_body.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include <zlib.h>

#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr std::size_t kInflateBlock = std::size_t{64} << 10U;
// The largest window is 15. Adding 16 selects the gzip format.
constexpr int kGzipWindow = 15 + 16;

Error damaged(std::string_view why) { return failure(FailureCode::malformed, "", "", why); }

}  // namespace

struct GzipBody::Stream {
  Stream() { isOpen = inflateInit2(&inflater, kGzipWindow) == Z_OK; }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { inflateEnd(&inflater); }

  z_stream inflater{};
  bool isOpen = false;
  /// True when a member has ended and been checked, and the next one has not begun.
  bool memberEnded = false;
};

GzipBody::GzipBody(std::size_t maximumBytes)
    : maximumBytes_(maximumBytes), stream_(std::make_unique<Stream>()) {}

GzipBody::~GzipBody() = default;

std::optional<Error> GzipBody::take(std::string_view piece, Bytes& unpacked) {
  z_stream& inflater = stream_->inflater;
  if (!stream_->isOpen) return damaged("the gzip stream cannot be unpacked");
  inflater.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
  inflater.avail_in = static_cast<uInt>(piece.size());
  std::array<std::uint8_t, kInflateBlock> block;
  do {
    if (stream_->memberEnded) {
      if (inflater.avail_in == 0) return std::nullopt;
      inflateReset(&inflater);
      stream_->memberEnded = false;
    }
    inflater.next_out = block.data();
    inflater.avail_out = block.size();
    const int result = inflate(&inflater, Z_NO_FLUSH);
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
      return damaged("the answer's gzip stream is damaged");
    const std::size_t count = block.size() - inflater.avail_out;
    if (count > maximumBytes_ - std::min(unpacked.size(), maximumBytes_))
      return failure(FailureCode::tooLarge, "", "", "it unpacks to more than " + sizeInWords(maximumBytes_));
    unpacked.insert(unpacked.end(), block.data(), block.data() + count);
    stream_->memberEnded = result == Z_STREAM_END;
  } while (inflater.avail_in > 0 || inflater.avail_out == 0);
  return std::nullopt;
}

std::optional<Error> GzipBody::finish() const {
  if (stream_->memberEnded) return std::nullopt;
  return damaged("the answer's gzip stream is cut off");
}

}  // namespace linewatch
