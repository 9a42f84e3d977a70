#include "app/opened_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include <bzlib.h>
#include <nlohmann/json.hpp>

#include "activity/rova_activity.h"
#include "desktop/file_contents.h"
#include "platform/json_text.h"
#include "platform/keyed_archiver.h"
#include "platform/transit_storage_incident.h"

namespace linewatch::app {

namespace {

using desktop::failure;
using desktop::Outcome;

// A record is a few kilobytes; what unpacks to more is not one.
constexpr std::size_t kLargestRecord = std::size_t{64} << 20U;
constexpr std::array<std::uint8_t, 3> kBzip2Magic = {'B', 'Z', 'h'};

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

Outcome<Dictionary> recordForm(const std::string& name, const Bytes& bytes) {
  if (bytes.empty()) return failure(name, "", "the file is empty");
  const auto activity = messageWithData<RovaActivity>(bytes);
  if (!activity) return failure(name, "", "neither an activity record nor an incident list");
  return activity->dictionaryRepresentation();
}

std::optional<Array> incidentForms(const Bytes& bytes, KeyedArchiver& archiver) {
  const std::unique_ptr<KeyedUnarchiver> reader = archiver.openForReading(bytes);
  if (!reader) return std::nullopt;
  reader->setFactory(std::string(TransitStorageIncident::kArchiveClassName),
                     TransitStorageIncident::makeWithDecoder);
  std::optional<Error> error;
  const auto root = reader->decodeTopLevelObject(
      {std::string(kArchivedArrayClass), std::string(TransitStorageIncident::kArchiveClassName)}, error);
  const auto* const list = root && !error ? std::get_if<ArchivedList>(&root->contents) : nullptr;
  if (!list) return std::nullopt;
  Array forms;
  for (const ArchivedObject& entry : *list) {
    const auto* const object = std::get_if<std::shared_ptr<const Archivable>>(&entry.contents);
    const auto incident = object ? std::dynamic_pointer_cast<const TransitStorageIncident>(*object) : nullptr;
    if (!incident) return std::nullopt;
    forms.emplace_back(incident->dictionaryRepresentation());
  }
  return forms;
}

}  // namespace

Outcome<std::string> openedText(const std::string& file, KeyedArchiver& archiver) {
  const Outcome<std::string> contents = desktop::contentsOf(file);
  if (!contents) return contents.error();
  Outcome<Bytes> bytes = Bytes(contents->begin(), contents->end());
  Value form{Dictionary()};
  if (std::ranges::equal(kBzip2Magic, std::span(*bytes).first(std::min<std::size_t>(3, bytes->size())))) {
    bytes = unpacked(file, std::move(*bytes));
    if (!bytes) return bytes.error();
  }
  if (auto incidents = incidentForms(*bytes, archiver)) {
    form = std::move(*incidents);
  } else {
    Outcome<Dictionary> record = recordForm(file, *bytes);
    if (!record) return record.error();
    form = std::move(*record);
  }
  return nlohmann::ordered_json::parse(jsonText(form)).dump(2) + "\n";
}

}  // namespace linewatch::app
