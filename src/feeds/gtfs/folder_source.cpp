#include "feeds/gtfs/folder_source.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

namespace fs = std::filesystem;

/// None when the file cannot be read; `errno` says why.
std::optional<std::string> contentsOf(const fs::path& path, std::uintmax_t size) {
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (stream) stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return stream ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace

FolderSource::FolderSource(fs::path folder) : folder_(std::move(folder)) {}

Outcome<std::optional<std::string>> FolderSource::file(std::string_view name) {
  std::error_code trouble;
  if (!fs::is_directory(folder_, trouble))
    return failure(trouble ? failureCodeOf(trouble) : FailureCode::unreadable, "", "",
                   trouble ? trouble.message() : "it is not a folder");
  const auto failed = [name](const std::string& why) {
    return failure(FailureCode::unreadable, name, "", why);
  };
  const fs::path path = folder_ / name;
  const fs::file_status status = fs::status(path, trouble);
  if (status.type() == fs::file_type::not_found) return std::optional<std::string>();
  if (status.type() == fs::file_type::none) return failed(trouble.message());
  // Reading a pipe or a device might never end.
  if (status.type() != fs::file_type::regular) return failed("it is not a file");
  const std::uintmax_t size = fs::file_size(path, trouble);
  if (trouble) return failed(trouble.message());
  if (size > kLargestGtfsTable)
    return failure(FailureCode::tooLarge, name, "", "it is larger than " + sizeInWords(kLargestGtfsTable));
  auto contents = contentsOf(path, size);
  if (!contents) return failed(errno == 0 ? "it cannot be read" : std::generic_category().message(errno));
  return contents;
}

}  // namespace linewatch
