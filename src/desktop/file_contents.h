#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/outcome.h"

namespace linewatch::desktop {

/// No file that the user names is read beyond this.
inline constexpr std::size_t kLargestFile = std::size_t{64} << 20U;

/// The bytes of a file, or an error that reads "FILE: why". A file that goes on beyond `maximumBytes`, as
/// some devices do for ever, is an error.
Outcome<std::string> contentsOf(const std::filesystem::path& file, std::size_t maximumBytes = kLargestFile);

/// Writes a file whole or not at all: what it held stays until the new bytes are on the disk. A link stays
/// one, and what is no plain file, a pipe or /dev/stdout, is written as it is. An error reads "FILE: why".
std::optional<Error> writeWhole(const std::filesystem::path& file, std::string_view bytes);

}  // namespace linewatch::desktop
