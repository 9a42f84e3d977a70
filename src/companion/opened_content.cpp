#include "companion/opened_content.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include <bzlib.h>

#include "activity/user_activity_data.h"
#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

// Records have a few kilobytes. A file that unpacks to more than this is not a record.
constexpr std::size_t kLargestRecord = 64 * kMebibyte;
constexpr std::string_view kBzip2Magic = "BZh";
// The keys in a row activity's user info for encoded content.
constexpr std::array<const char*, 2> kContentKeys = {kActivityRecordKey, kIncidentListKey};

bool beginsLikeBzip2(const Bytes& bytes) {
  return bytes.size() >= kBzip2Magic.size() &&
         std::equal(kBzip2Magic.begin(), kBzip2Magic.end(), bytes.begin());
}

Outcome<Bytes> decompressed(const std::string& name, const Bytes& compressed) {
  bz_stream stream{};
  if (BZ2_bzDecompressInit(&stream, 0, 0) != BZ_OK) return failure(name, "", "no memory to decompress it");
  stream.next_in = const_cast<char*>(reinterpret_cast<const char*>(compressed.data()));
  stream.avail_in = static_cast<unsigned>(compressed.size());
  Bytes bytes;
  std::array<char, 65536> buffer{};
  int status = BZ_OK;
  while (status == BZ_OK && bytes.size() <= kLargestRecord) {
    stream.next_out = buffer.data();
    stream.avail_out = buffer.size();
    status = BZ2_bzDecompress(&stream);
    bytes.insert(bytes.end(), buffer.data(), stream.next_out);
    if (status == BZ_OK && stream.avail_in == 0 && stream.avail_out > 0) break;  // cut short
  }
  BZ2_bzDecompressEnd(&stream);
  if (status == BZ_STREAM_END) return bytes;
  if (bytes.size() > kLargestRecord) return failure(name, "", "it unpacks to more than any record");
  return failure(name, "",
                 status == BZ_OK ? "the compressed data is cut short" : "the compressed data is damaged");
}

std::optional<StoredIncidents> incidentsIn(const Bytes& bytes, KeyedArchiver& archiver) {
  const std::unique_ptr<KeyedUnarchiver> reader = archiver.openForReading(bytes);
  if (!reader) return std::nullopt;
  reader->setFactory(std::string(TransitStorageIncident::kArchiveClassName),
                     TransitStorageIncident::makeWithDecoder);
  std::optional<Error> error;
  const auto root = reader->decodeTopLevelObject(
      {std::string(kArchivedArrayClass), std::string(TransitStorageIncident::kArchiveClassName)}, error);
  const auto* const list = root && !error ? std::get_if<ArchivedList>(&root->contents) : nullptr;
  if (!list) return std::nullopt;
  StoredIncidents incidents;
  for (const ArchivedObject& entry : *list) {
    const auto* const object = std::get_if<std::shared_ptr<const Archivable>>(&entry.contents);
    auto incident = object ? std::dynamic_pointer_cast<const TransitStorageIncident>(*object) : nullptr;
    if (!incident) return std::nullopt;
    incidents.push_back(std::move(incident));
  }
  return incidents;
}

using SharedActivity = std::shared_ptr<const RovaActivity>;

Outcome<OpenedContent> decodeUncompressed(const std::string& name, const Bytes& bytes,
                                          KeyedArchiver& archiver) {
  if (auto incidents = incidentsIn(bytes, archiver)) return OpenedContent(std::move(*incidents));
  if (bytes.empty()) return failure(name, "", "it is empty");
  auto record = messageWithData<RovaActivity>(bytes);
  if (!record) return failure(name, "", "it is neither an activity record nor an incident list");
  return OpenedContent(SharedActivity(std::move(record)));
}

}  // namespace

Outcome<OpenedContent> decodeOpenedContent(const std::string& name, const Bytes& bytes,
                                           KeyedArchiver& archiver) {
  if (bytes.empty()) return failure(name, "", "it is empty");
  if (!beginsLikeBzip2(bytes)) return decodeUncompressed(name, bytes, archiver);
  const auto content = decompressed(name, bytes);
  if (content) return decodeUncompressed(name, *content, archiver);
  // "BZh" is also a valid start of a record: field 8 with 90 bytes, the first one an "h".
  if (auto record = messageWithData<RovaActivity>(bytes)) return OpenedContent(SharedActivity(record));
  return content.error();
}

Outcome<Bytes> contentBytes(const UserActivity& activity) {
  for (const char* const key : kContentKeys) {
    const auto entry = activity.userInfo.find(key);
    const auto* const bytes = entry == activity.userInfo.end() ? nullptr : entry->second.get<Bytes>();
    if (bytes) return *bytes;
  }
  return failure(activity.activityType, "", "it carries neither a record nor an incident list");
}

}  // namespace linewatch
