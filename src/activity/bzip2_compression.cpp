#include "activity/bzip2_compression.h"

#include "platform/platform.h"
#include "wire/compressor.h"

namespace linewatch {

std::optional<Bytes> bzip2CompressedData(const Bytes& data) { return platform().compressor().bzip2(data); }

}  // namespace linewatch
