#pragma once

#include <optional>

#include "shared/value.h"

namespace linewatch {

/// Compresses the bytes into one bzip2 stream with the platform's compressor; none when that fails.
std::optional<Bytes> bzip2CompressedData(const Bytes& data);

}  // namespace linewatch
