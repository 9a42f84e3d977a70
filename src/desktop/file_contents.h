#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "platform/outcome.h"

namespace linewatch::desktop {

/// No file that the user names is read beyond this.
inline constexpr std::size_t kLargestFile = std::size_t{64} << 20U;

/// The bytes of a file, or an error that reads "FILE: why". A file that goes on beyond `maximumBytes`, as
/// some devices do for ever, is an error.
Outcome<std::string> contentsOf(const std::filesystem::path& file, std::size_t maximumBytes = kLargestFile);

}  // namespace linewatch::desktop
