#pragma once

#include <string>

namespace linewatch {

/// The text as a gzip member.
std::string gzip(const std::string& text);

}  // namespace linewatch
