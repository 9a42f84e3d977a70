#include "companion/handed_over.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

#include <bzlib.h>

#include "activity/user_activity_data.h"
#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

// A record is a few kilobytes; what unpacks to more is not one.
constexpr std::size_t kLargestRecord = 64 * kMebibyte;
constexpr std::array<std::uint8_t, 3> kBzip2Magic = {'B', 'Z', 'h'};
// Under which the rows' activities carry their bytes.
constexpr std::array<const char*, 2> kByteKeys = {kActivityRecordKey, kIncidentListKey};

bool isPacked(const Bytes& bytes) {
  return std::ranges::equal(kBzip2Magic, std::span(bytes).first(std::min<std::size_t>(3, bytes.size())));
}

Outcome<Bytes> unpacked(const std::string& name, Bytes packed) {
  bz_stream stream{};
  if (BZ2_bzDecompressInit(&stream, 0, 0) != BZ_OK) return failure(name, "", "no memory to unpack it");
  stream.next_in = reinterpret_cast<char*>(packed.data());
  stream.avail_in = static_cast<unsigned>(packed.size());
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
  if (bytes.size() > kLargestRecord) return failure(name, "", "unpacks to more than any record");
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

}  // namespace

Outcome<HandedOver> handedOver(const std::string& name, Bytes bytes, KeyedArchiver& archiver) {
  if (isPacked(bytes)) {
    auto whole = unpacked(name, std::move(bytes));
    if (!whole) return whole.error();
    bytes = std::move(*whole);
  }
  if (auto incidents = incidentsIn(bytes, archiver)) return HandedOver(std::move(*incidents));
  if (bytes.empty()) return failure(name, "", "it is empty");
  auto activity = messageWithData<RovaActivity>(bytes);
  if (!activity) return failure(name, "", "neither an activity record nor an incident list");
  return HandedOver(std::shared_ptr<const RovaActivity>(std::move(activity)));
}

Outcome<Bytes> bytesCarriedBy(const UserActivity& activity) {
  for (const char* const key : kByteKeys) {
    const auto entry = activity.userInfo.find(key);
    const auto* const bytes = entry == activity.userInfo.end() ? nullptr : entry->second.get<Bytes>();
    if (bytes) return *bytes;
  }
  return failure(activity.activityType, "", "carries neither a record nor an incident list");
}

}  // namespace linewatch
