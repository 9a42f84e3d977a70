#pragma once

#include <optional>

#include "wire/archive/cbor.h"
#include "wire/keyed_archiver.h"

namespace linewatch::cbor {

/// The JSON form of `root` in an archive; absent when a part of it cannot be archived.
std::optional<Json> archived(const ArchivedObject& root, bool requiringSecureCoding);

}  // namespace linewatch::cbor
