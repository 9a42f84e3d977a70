#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/transit_records.h"
#include "wire/codable_message.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

struct RecordFields;

/// A stored line: a line's fields and those of its item. The incidents are `TransitStorageIncident`s.
struct TransitStorageLineFields : TransitLineFields {
  TransitIncidents incidents;
  bool hasIncidentComponent = false;
  bool isIncidentsTTLExpired = false;
  std::optional<std::vector<SharedArtwork>> labelItems;
  OptionalText attribution;
  std::optional<MapRegion> mapRegion;
  OptionalText encyclopedicInfo;
  bool hasEncyclopedicInfo = false;
};

/// A snapshot of a line and its incidents that can be stored: it answers as the item did when it was made. A
/// message, and an object of keyed archives.
class TransitStorageLineItem final : public FieldedMessage<TransitStorageLineItem>,
                                     public TransitLineOfFields<TransitStorageLineItem>,
                                     public Archivable {
 public:
  using Fields = TransitStorageLineFields;
  static constexpr std::string_view kArchiveClassName = "TransitStorageLineItem";

  TransitStorageLineItem() = default;
  explicit TransitStorageLineItem(const TransitLineItem& item);

  const TransitLineFields& line() const { return fields_; }
  const TransitIncidents& incidents() const override { return fields_.incidents; }
  bool hasIncidentComponent() const override { return fields_.hasIncidentComponent; }
  bool isIncidentsTTLExpired() const override { return fields_.isIncidentsTTLExpired; }
  std::optional<std::vector<SharedArtwork>> labelItems() const override { return fields_.labelItems; }
  OptionalText attribution() const override { return fields_.attribution; }
  std::optional<MapRegion> mapRegion() const override { return fields_.mapRegion; }
  OptionalText encyclopedicInfo() const override { return fields_.encyclopedicInfo; }
  bool hasEncyclopedicInfo() const override { return fields_.hasEncyclopedicInfo; }

  std::string_view archiveClassName() const override { return kArchiveClassName; }
  void encodeWithCoder(KeyedCoder& coder) const override;
  /// Null when the archived bytes do not read as a line.
  static std::shared_ptr<const Archivable> makeWithDecoder(KeyedDecoder& decoder);

 private:
  friend struct RecordFields;
  Fields fields_;
};

extern template class FieldedMessage<TransitStorageLineItem>;

}  // namespace linewatch
