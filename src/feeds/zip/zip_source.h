#pragma once

#include <filesystem>
#include <memory>
#include <variant>

#include "feeds/gtfs/gtfs_source.h"
#include "shared/value.h"

namespace linewatch {

/// Opens the tables of a feed in a zip archive, at its top or all in one folder. A damaged or encrypted
/// archive is an error. The first call loads libzip.
Outcome<std::unique_ptr<GtfsSource>> openZip(const std::filesystem::path& archive);

/// The same for an archive in memory.
Outcome<std::unique_ptr<GtfsSource>> openZip(Bytes bytes);

/// An archive in a file or in memory, and the function of the module that opens it.
using ZipArchive = std::variant<std::filesystem::path, Bytes>;
using ZipOpening = void (*)(ZipArchive archive, Outcome<std::unique_ptr<GtfsSource>>& source);

}  // namespace linewatch
