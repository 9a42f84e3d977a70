#pragma once

#include <string>

#include "platform/error.h"

namespace linewatch::desktop {

/// The sentence of an error, as a user gets to read it.
inline std::string sentence(const Error& error) {
  return *error.info.at(kLocalizedDescriptionKey).get<std::string>();
}

}  // namespace linewatch::desktop
