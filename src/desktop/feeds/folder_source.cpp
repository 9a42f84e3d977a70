#include "desktop/feeds/folder_source.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace linewatch::desktop {

namespace {

namespace fs = std::filesystem;

Outcome<std::optional<std::string>> contentsOf(const fs::path& path, std::uintmax_t size) {
  std::ifstream stream(path, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (stream) stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!stream) return failure(path.string(), "", "it cannot be read");
  return std::optional(std::move(bytes));
}

}  // namespace

FolderSource::FolderSource(fs::path folder) : folder_(std::move(folder)) {}

Outcome<std::optional<std::string>> FolderSource::file(std::string_view name) {
  std::error_code trouble;
  if (!fs::is_directory(folder_, trouble)) {
    return failure(folder_.string(), "", trouble ? trouble.message() : "it is not a folder");
  }
  const fs::path path = folder_ / name;
  const fs::file_status status = fs::status(path, trouble);
  if (status.type() == fs::file_type::not_found) return std::optional<std::string>();
  // A pipe or a device could keep its reader waiting for ever.
  if (status.type() != fs::file_type::regular) return failure(path.string(), "", "it is not a file");
  const std::uintmax_t size = fs::file_size(path, trouble);
  if (trouble) return failure(path.string(), "", trouble.message());
  if (size > kLargestGtfsTable) return failure(path.string(), "", "it is larger than " + largestGtfsTable());
  return contentsOf(path, size);
}

}  // namespace linewatch::desktop
