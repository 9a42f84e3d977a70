#include "record_content.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <variant>

#include <bzlib.h>

#include "activity/rova_activity.h"
#include "list/list_dictionary_form.h"
#include "platform/platform.h"
#include "platform/transit_storage_incident.h"
#include "platform/url_display_options.h"

namespace linewatch::worlds {

namespace {

constexpr std::size_t kLargestRecord = 1 << 20;
constexpr std::string_view kUndecodable = "undecodable";

std::string textOf(const SharedArtwork& artwork) {
  return artwork ? description(dictionaryForm(*artwork)) : "-";
}
std::string textOf(const OptionalText& text) { return text ? "'" + *text + "'" : "-"; }
std::string textOf(const std::optional<Date>& date) { return date ? std::to_string(secondsOf(*date)) : "-"; }

std::string textOf(const TransitIncident& incident) {
  return std::to_string(incident.muid()) + (incident.isBlockingIncident() ? "!" : "") + " " +
         textOf(incident.title()) + " " + textOf(incident.summary()) + " " + textOf(incident.startDate()) +
         ".." + textOf(incident.endDate());
}

std::optional<Bytes> decompressed(const Bytes& compressed) {
  Bytes bytes(kLargestRecord);
  auto size = static_cast<unsigned>(bytes.size());
  std::string source(compressed.begin(), compressed.end());
  const int status = BZ2_bzBuffToBuffDecompress(reinterpret_cast<char*>(bytes.data()), &size, source.data(),
                                                static_cast<unsigned>(source.size()), 0, 0);
  if (status != BZ_OK) return std::nullopt;
  bytes.resize(size);
  return bytes;
}

std::string recordContent(const Bytes& compressed) {
  const auto bytes = decompressed(compressed);
  const auto record = bytes ? messageWithData<RovaActivity>(*bytes) : nullptr;
  if (!record || !record->lineItem() || !record->displayOptions()) return std::string(kUndecodable);
  return "map " + std::to_string(record->displayOptions()->mapType()) + " " +
         worlds::textOf(*record->lineItem());
}

std::string incidentListContent(const Bytes& bytes) {
  const auto reader = platform().keyedArchiver().openForReading(bytes);
  if (!reader) return std::string(kUndecodable);
  const std::string kind(TransitStorageIncident::kArchiveClassName);
  reader->setFactory(kind, TransitStorageIncident::makeWithDecoder);
  std::optional<Error> error;
  const auto root = reader->decodeTopLevelObject({std::string(kArchivedArrayClass), kind}, error);
  const auto* list = root ? std::get_if<ArchivedList>(&root->contents) : nullptr;
  if (error || !list) return std::string(kUndecodable);
  TransitIncidents incidents;
  for (const ArchivedObject& entry : *list) {
    const auto* object = std::get_if<std::shared_ptr<const Archivable>>(&entry.contents);
    incidents.push_back(object ? std::dynamic_pointer_cast<const TransitStorageIncident>(*object) : nullptr);
  }
  return worlds::textOf(incidents);
}

}  // namespace

std::string textOf(const TransitIncidents& incidents) {
  std::string text = "[";
  for (const SharedIncident& incident : incidents) {
    text += incident ? textOf(*incident) + "; " : std::string(kUndecodable);
  }
  return text + "]";
}

std::string textOf(const TransitLineItem& line) {
  const auto& system = line.system();
  return std::to_string(line.muid()) + " '" + line.name() + "' " + textOf(line.alternateArtwork()) + " " +
         (system ? "'" + system->name + "' " + textOf(system->artwork) : "-") + " " +
         textOf(line.incidents());
}

std::string contentOf(const Bytes& bytes) {
  // The same bytes come back with every list.
  static std::unordered_map<std::string, std::string> known;
  if (known.size() > 2000) known.clear();
  const auto [entry, isNew] = known.try_emplace(std::string(bytes.begin(), bytes.end()));
  if (isNew)
    entry->second = entry->first.starts_with("BZh") ? recordContent(bytes) : incidentListContent(bytes);
  return entry->second;
}

}  // namespace linewatch::worlds
