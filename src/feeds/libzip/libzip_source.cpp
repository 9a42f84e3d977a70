#include <algorithm>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include <zip.h>

#include "feeds/zip/zip_source.h"
#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

// A feed has a few dozen tables.
constexpr zip_int64_t kMostEntries = 10'000;
constexpr std::size_t kBlock = std::size_t{64} << 10U;

struct ZipCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
  void operator()(zip_file_t* file) const { zip_fclose(file); }
  void operator()(zip_source_t* source) const { zip_source_free(source); }
};

using Archive = std::unique_ptr<zip_t, ZipCloser>;
using ArchivedFile = std::unique_ptr<zip_file_t, ZipCloser>;
using ArchiveBytes = std::unique_ptr<zip_source_t, ZipCloser>;

class ZipError {
 public:
  ZipError() { zip_error_init(&error_); }
  ZipError(const ZipError&) = delete;
  ZipError& operator=(const ZipError&) = delete;
  ~ZipError() { zip_error_fini(&error_); }

  zip_error_t* get() { return &error_; }

 private:
  zip_error_t error_{};
};

/// A sentence for the user, from the library where there is none here.
std::string reasonFor(zip_error_t* error) {
  switch (zip_error_code_zip(error)) {
    case ZIP_ER_NOZIP:
      return "it is not a zip archive, or it is incomplete";
    case ZIP_ER_COMPNOTSUPP:
      return "its compression method is not supported";
    case ZIP_ER_CRC:
    case ZIP_ER_EOF:
    case ZIP_ER_INCONS:
    case ZIP_ER_INVAL:
    case ZIP_ER_ZLIB:
      return "it is damaged";
    case ZIP_ER_OPEN:
    case ZIP_ER_READ:
    case ZIP_ER_SEEK:
      return std::generic_category().message(zip_error_code_system(error));
    default:
      return zip_error_strerror(error);
  }
}

/// False for folders and for the second tree that some tools add.
bool isOfTheFeed(std::string_view entry) { return !entry.starts_with("__MACOSX/") && !entry.ends_with('/'); }

/// The folder that holds all entries of the feed, with its slash; empty for the top.
std::string commonFolder(zip_t* archive) {
  std::optional<std::string> common;
  for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
    const char* const name = zip_get_name(archive, static_cast<zip_uint64_t>(i), 0);
    if (name == nullptr || !isOfTheFeed(name)) continue;
    const std::string_view entry = name;
    if (!common) common = entry;
    const auto parting = std::mismatch(common->begin(), common->end(), entry.begin(), entry.end()).first;
    common->resize(static_cast<std::size_t>(parting - common->begin()));
    common->resize(common->rfind('/') + 1);
  }
  return common.value_or("");
}

Error tooLarge(std::string_view name) {
  return failure(FailureCode::tooLarge, name, "",
                 "it unpacks to more than " + sizeInWords(kLargestGtfsTable));
}

class ZipSource final : public GtfsSource {
 public:
  ZipSource(ZipArchive input, Archive archive)
      : input_(std::move(input)), archive_(std::move(archive)), folder_(commonFolder(archive_.get())) {}

  Outcome<std::optional<std::string>> file(std::string_view name) override;

 private:
  Outcome<std::optional<std::string>> unpacked(zip_uint64_t entry, std::string_view name);

  /// `archive_` reads the bytes of this vector; moving the vector keeps their address.
  ZipArchive input_;
  Archive archive_;
  std::string folder_;
};

Outcome<std::optional<std::string>> ZipSource::file(std::string_view name) {
  const std::string path = folder_ + std::string(name);
  const zip_int64_t entry = zip_name_locate(archive_.get(), path.c_str(), 0);
  if (entry < 0) return std::optional<std::string>();
  zip_stat_t facts;
  if (zip_stat_index(archive_.get(), static_cast<zip_uint64_t>(entry), 0, &facts) != 0) {
    return failure(FailureCode::malformed, name, "", reasonFor(zip_get_error(archive_.get())));
  }
  if ((facts.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && facts.encryption_method != ZIP_EM_NONE) {
    return failure(FailureCode::unsupported, name, "", "it is encrypted");
  }
  if ((facts.valid & ZIP_STAT_SIZE) != 0 && facts.size > kLargestGtfsTable) {
    return tooLarge(name);
  }
  return unpacked(static_cast<zip_uint64_t>(entry), name);
}

/// Reads to the end, where libzip compares the checksum. The size stated in the archive may be wrong.
Outcome<std::optional<std::string>> ZipSource::unpacked(zip_uint64_t entry, std::string_view name) {
  const ArchivedFile file(zip_fopen_index(archive_.get(), entry, 0));
  if (!file) return failure(FailureCode::malformed, name, "", reasonFor(zip_get_error(archive_.get())));
  std::string bytes;
  for (;;) {
    const std::size_t size = bytes.size();
    if (size > kLargestGtfsTable) return tooLarge(name);
    bytes.resize(size + kBlock);
    const zip_int64_t count = zip_fread(file.get(), bytes.data() + size, kBlock);
    if (count < 0)
      return failure(FailureCode::malformed, name, "", reasonFor(zip_file_get_error(file.get())));
    bytes.resize(size + static_cast<std::size_t>(count));
    if (count == 0) return std::optional(std::move(bytes));
  }
}

ArchiveBytes packedBytes(const ZipArchive& archive, ZipError& error) {
  if (const auto* const bytes = std::get_if<Bytes>(&archive))
    return ArchiveBytes(zip_source_buffer_create(bytes->data(), bytes->size(), 0, error.get()));
  const auto& file = std::get<std::filesystem::path>(archive);
  return ArchiveBytes(zip_source_file_create(file.c_str(), 0, -1, error.get()));
}

Outcome<std::unique_ptr<GtfsSource>> opened(ZipArchive input) {
  ZipError error;
  ArchiveBytes packed = packedBytes(input, error);
  Archive archive(packed ? zip_open_from_source(packed.get(), ZIP_RDONLY, error.get()) : nullptr);
  if (!archive) return failure(FailureCode::malformed, "", "", reasonFor(error.get()));
  (void)packed.release();  // now owned by the archive
  const zip_int64_t entries = zip_get_num_entries(archive.get(), 0);
  if (entries == 0) return failure(FailureCode::malformed, "", "", "it holds no files");
  if (entries > kMostEntries)
    return failure(FailureCode::tooLarge, "", "",
                   "it holds more than " + std::to_string(kMostEntries) + " files");
  return std::unique_ptr<GtfsSource>(std::make_unique<ZipSource>(std::move(input), std::move(archive)));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void linewatch_openZip(
    ZipArchive archive, Outcome<std::unique_ptr<GtfsSource>>& source) {
  source = opened(std::move(archive));
}

}  // namespace linewatch
