#pragma once

#include <string>

namespace linewatch {

/// An address as text. It is not checked.
struct URL {
  std::string absoluteString;

  bool operator==(const URL&) const = default;
};

}  // namespace linewatch
