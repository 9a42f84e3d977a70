#include "feeds/zip/zip_source.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zip.h>

#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using Files = std::vector<std::pair<std::string, std::string>>;

struct Packing {
  zip_int32_t method = ZIP_CM_DEFLATE;
  zip_uint16_t encryption = ZIP_EM_NONE;
};

Bytes zipOf(const Files& files, Packing packing = {}) {
  zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
  zip_source_keep(target);
  zip_t* const archive = zip_open_from_source(target, ZIP_TRUNCATE, nullptr);
  for (const auto& [name, content] : files) {
    zip_source_t* const source = zip_source_buffer(archive, content.data(), content.size(), 0);
    const auto entry =
        static_cast<zip_uint64_t>(zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8));
    zip_set_file_compression(archive, entry, packing.method, 0);
    zip_file_set_encryption(archive, entry, packing.encryption, "secret");
  }
  EXPECT_EQ(zip_close(archive), 0) << zip_strerror(archive);
  zip_stat_t facts;
  zip_source_stat(target, &facts);
  Bytes bytes(facts.size);
  zip_source_open(target);
  zip_source_read(target, bytes.data(), bytes.size());
  zip_source_close(target);
  zip_source_free(target);
  return bytes;
}

std::optional<std::string> fileOf(Bytes bytes, std::string_view name) {
  Outcome<std::unique_ptr<GtfsSource>> source = openZip(std::move(bytes));
  if (!source) return sentenceOf(source.error());
  const Outcome<std::optional<std::string>> file = (*source)->file(name);
  return file ? *file : sentenceOf(file.error());
}

/// Writes over the first place where `from` stands.
Bytes patched(Bytes bytes, const Bytes& from, const Bytes& to) {
  const auto place = std::search(bytes.begin(), bytes.end(), from.begin(), from.end());
  EXPECT_NE(place, bytes.end());
  std::copy(to.begin(), to.end(), place);
  return bytes;
}

TEST(ZipSource, ReadsFilesAtTheTop) {
  const Bytes bytes = zipOf({{"routes.txt", "route_id\n1\n"}, {"empty.txt", ""}, {"more/agency.txt", "x"}});
  EXPECT_EQ(fileOf(bytes, "routes.txt"), "route_id\n1\n");
  EXPECT_EQ(fileOf(bytes, "empty.txt"), "");
  EXPECT_EQ(fileOf(bytes, "agency.txt"), std::nullopt);
  EXPECT_EQ(fileOf(zipOf({{"a.txt", std::string(300'000, 'a')}}), "a.txt"), std::string(300'000, 'a'));
}

TEST(ZipSource, ReadsFilesInASingleFolder) {
  const Files inFolder = {{"feed/gtfs/", ""},
                          {"feed/gtfs/routes.txt", "r"},
                          {"feed/gtfs/agency.txt", "a"},
                          {"__MACOSX/feed/gtfs/._routes.txt", "junk"}};
  EXPECT_EQ(fileOf(zipOf(inFolder), "routes.txt"), "r");
  EXPECT_EQ(fileOf(zipOf({{"feed/routes.txt", "r"}}), "routes.txt"), "r");
  EXPECT_EQ(fileOf(zipOf({{"feed/routes.txt", "r"}, {"feed2/agency.txt", "a"}}), "routes.txt"), std::nullopt);
}

TEST(ZipSource, RefusesOtherFiles) {
  EXPECT_EQ(fileOf({}, "routes.txt"), "it holds no files");
  EXPECT_EQ(fileOf({'<', 'h', 't', 'm', 'l', '>'}, "routes.txt"),
            "it is not a zip archive, or it is incomplete");
  const Bytes whole = zipOf({{"routes.txt", "route_id\n1\n"}});
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_THAT(fileOf(cut, "routes.txt").value_or("none"), testing::StartsWith("it "));
  }
}

TEST(ZipSource, RefusesDamagedEncryptedAndEndlessFiles) {
  const Packing stored{.method = ZIP_CM_STORE};
  const Bytes damaged =
      patched(zipOf({{"routes.txt", "route_id\n1\n"}}, stored), {'i', 'd', '\n', '1'}, {'i', 'd', '\n', '2'});
  EXPECT_EQ(fileOf(damaged, "routes.txt"), "routes.txt: it is damaged");
  const Bytes encrypted = zipOf({{"routes.txt", "r"}}, {.encryption = ZIP_EM_AES_256});
  EXPECT_EQ(fileOf(encrypted, "routes.txt"), "routes.txt: it is encrypted");
  const Bytes bomb = zipOf({{"routes.txt", std::string(kLargestGtfsTable + 1, ' ')}});
  EXPECT_LT(bomb.size(), kLargestGtfsTable / 500);
  EXPECT_EQ(fileOf(bomb, "routes.txt"), "routes.txt: it unpacks to more than 64 MiB");
  // The size that the archive states, in both of its places, is a lie.
  const Bytes size{0x01, 0, 0, 0x04};
  const Bytes liar = patched(patched(bomb, size, {1, 0, 0, 0}), size, {1, 0, 0, 0});
  EXPECT_EQ(fileOf(liar, "routes.txt"), "routes.txt: it unpacks to more than 64 MiB");
}

TEST(ZipSource, RefusesArchivesOfTooManyFiles) {
  Files files;
  for (int i = 0; i <= 10'000; ++i) files.emplace_back(std::to_string(i), "");
  EXPECT_EQ(fileOf(zipOf(files), "routes.txt"), "it holds more than 10000 files");
}

TEST(ZipSource, OpensFilesOnDisk) {
  const TemporaryFolder folder;
  const Bytes bytes = zipOf({{"routes.txt", "r"}});
  const std::string path = folder.write("feed.zip", {bytes.begin(), bytes.end()});
  const Outcome<std::unique_ptr<GtfsSource>> source = openZip(path);
  ASSERT_TRUE(source);
  EXPECT_EQ(**(*source)->file("routes.txt"), "r");
  std::filesystem::remove(path);
  const Outcome<std::unique_ptr<GtfsSource>> missing = openZip(path);
  ASSERT_FALSE(missing);
  EXPECT_EQ(sentenceOf(missing.error()), "no such file or folder");
  EXPECT_EQ(sentenceOf(openZip("/dev/zero").error()), "it is not a file");
}

}  // namespace
}  // namespace linewatch
