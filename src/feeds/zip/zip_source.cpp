#include "feeds/zip/zip_source.h"

#include <system_error>
#include <utility>

#include "shared/failure.h"
#include "shared/module.h"

namespace linewatch {

namespace {

Outcome<std::unique_ptr<GtfsSource>> open(ZipArchive archive) {
  const Outcome<void*> entry = moduleEntry("libzip", "linewatch_openZip");
  if (!entry) return entry.error();
  Outcome<std::unique_ptr<GtfsSource>> source{nullptr};
  reinterpret_cast<ZipOpening> (*entry)(std::move(archive), source);
  return source;
}

}  // namespace

Outcome<std::unique_ptr<GtfsSource>> openZip(const std::filesystem::path& archive) {
  std::error_code trouble;
  const std::filesystem::file_status status = std::filesystem::status(archive, trouble);
  if (status.type() == std::filesystem::file_type::none)
    return failure(failureCodeOf(trouble), "", "", trouble.message());
  if (!std::filesystem::exists(status))
    return failure(FailureCode::notFound, "", "", "no such file or folder");
  // Reading a pipe or a device might never end.
  if (!std::filesystem::is_regular_file(status))
    return failure(FailureCode::unreadable, "", "", "it is not a file");
  return open(archive);
}

Outcome<std::unique_ptr<GtfsSource>> openZip(Bytes bytes) { return open(std::move(bytes)); }

}  // namespace linewatch
