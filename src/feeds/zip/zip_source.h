#pragma once

#include <filesystem>
#include <memory>
#include <variant>

#include "feeds/gtfs/gtfs_source.h"
#include "shared/value.h"

namespace linewatch {

/// The tables of a feed in a zip archive, at its top or all in one folder of it. What is damaged, encrypted
/// or no archive at all is an error. The reader of archives is loaded on first use.
Outcome<std::unique_ptr<GtfsSource>> openZip(const std::filesystem::path& archive);

/// The same for an archive in memory.
Outcome<std::unique_ptr<GtfsSource>> openZip(Bytes bytes);

/// What passes between the program and its module: an archive in a file, or in memory.
using ZipArchive = std::variant<std::filesystem::path, Bytes>;
using ZipOpening = void (*)(ZipArchive archive, Outcome<std::unique_ptr<GtfsSource>>& source);

}  // namespace linewatch
