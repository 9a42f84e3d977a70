#pragma once

#include <optional>

#include "shared/value.h"

namespace linewatch {

/// The bytes as one bzip2 stream, made by the platform's compressor; none when they cannot be compressed.
std::optional<Bytes> bzip2CompressedData(const Bytes& data);

}  // namespace linewatch
