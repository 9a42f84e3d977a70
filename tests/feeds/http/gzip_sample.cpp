#include "feeds/http/gzip_sample.h"

#include <stdexcept>

#include <zlib.h>

namespace linewatch {

std::string gzip(const std::string& text) {
  z_stream deflater{};
  constexpr int kGzipWindow = 15 + 16;
  if (deflateInit2(&deflater, Z_BEST_COMPRESSION, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("zlib does not start");
  std::string packed(deflateBound(&deflater, text.size()) + 64, '\0');
  deflater.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  deflater.avail_in = static_cast<uInt>(text.size());
  deflater.next_out = reinterpret_cast<Bytef*>(packed.data());
  deflater.avail_out = static_cast<uInt>(packed.size());
  const int result = deflate(&deflater, Z_FINISH);
  packed.resize(packed.size() - deflater.avail_out);
  deflateEnd(&deflater);
  if (result != Z_STREAM_END) throw std::runtime_error("zlib does not finish");
  return packed;
}

}  // namespace linewatch
