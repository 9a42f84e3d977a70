#pragma once

#include <optional>

#include "platform/value.h"

namespace linewatch {

/// The bytes as one bzip2 stream; none when they cannot be compressed (libbz2 fails, or more than 4 GiB).
/// Any thread.
std::optional<Bytes> bzip2CompressedData(const Bytes& data);

}  // namespace linewatch
