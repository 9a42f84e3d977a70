#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "desktop/feeds/gtfs_source.h"
#include "platform/value.h"

namespace linewatch::desktop {

/// The tables of a feed in a zip archive, at its top or all in one folder of it. What is damaged, encrypted
/// or no archive at all is an error that names the archive. The reader of archives is loaded on first use.
Outcome<std::unique_ptr<GtfsSource>> openZip(const std::filesystem::path& archive);

/// The same for an archive in memory, of which errors speak as `name`.
Outcome<std::unique_ptr<GtfsSource>> openZip(Bytes bytes, std::string name);

/// What passes between the program and its module: a file when there are no bytes.
struct ZipArchive {
  std::string name;
  std::optional<Bytes> bytes;
};
using ZipOpening = void (*)(ZipArchive archive, Outcome<std::unique_ptr<GtfsSource>>& source);

}  // namespace linewatch::desktop
