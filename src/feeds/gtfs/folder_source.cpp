#include "feeds/gtfs/folder_source.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileBlock = std::size_t{128} << 10U;

/// `errno` says why when the read failed.
Error unreadableTable(std::string_view name) {
  return failure(FailureCode::unreadable, name, "",
                 errno == 0 ? "it cannot be read" : std::generic_category().message(errno));
}

}  // namespace

FolderSource::FolderSource(fs::path folder) : folder_(std::move(folder)) {}

Outcome<std::optional<std::string>> FolderSource::file(std::string_view name) {
  const auto size = sizeOf(name);
  if (!size) return size.error();
  if (!*size) return std::optional<std::string>();
  errno = 0;
  std::ifstream stream(folder_ / name, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(**size), '\0');
  if (stream) stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return stream ? Outcome(std::optional(std::move(bytes))) : unreadableTable(name);
}

Outcome<bool> FolderSource::read(std::string_view name, const PieceTaker& take) {
  const auto size = sizeOf(name);
  if (!size) return size.error();
  if (!*size) return false;
  errno = 0;
  std::ifstream stream;
  stream.rdbuf()->pubsetbuf(nullptr, 0);
  stream.open(folder_ / name, std::ios::binary);
  std::vector<char> block(kFileBlock);
  bool isWanted = true;
  for (std::uintmax_t left = **size; stream && isWanted && left > 0;) {
    const auto count = std::min<std::uintmax_t>(left, block.size());
    if (!stream.read(block.data(), static_cast<std::streamsize>(count))) break;
    isWanted = take({block.data(), static_cast<std::size_t>(count)});
    left -= count;
  }
  return stream ? Outcome<bool>(true) : unreadableTable(name);
}

Outcome<std::optional<std::uintmax_t>> FolderSource::sizeOf(std::string_view name) const {
  std::error_code trouble;
  if (!fs::is_directory(folder_, trouble))
    return failure(trouble ? failureCodeOf(trouble) : FailureCode::unreadable, "", "",
                   trouble ? trouble.message() : "it is not a folder");
  const auto failed = [name](const std::string& why) {
    return failure(FailureCode::unreadable, name, "", why);
  };
  const fs::path path = folder_ / name;
  const fs::file_status status = fs::status(path, trouble);
  if (status.type() == fs::file_type::not_found) return std::optional<std::uintmax_t>();
  if (status.type() == fs::file_type::none) return failed(trouble.message());
  // Reading a pipe or a device might never end.
  if (status.type() != fs::file_type::regular) return failed("it is not a file");
  const std::uintmax_t size = fs::file_size(path, trouble);
  if (trouble) return failed(trouble.message());
  if (size > kLargestGtfsTable)
    return failure(FailureCode::tooLarge, name, "", "it is larger than " + sizeInWords(kLargestGtfsTable));
  return std::optional(size);
}

}  // namespace linewatch
