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

/// The fields of a stored line item. The incidents are `TransitStorageIncident`s.
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

/// A copy of a line item with its incidents that can be written as a message and put into a keyed archive. It
/// keeps the values that the item had when the copy was made.
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
  /// Null when the archived bytes are not a line item.
  static std::shared_ptr<const Archivable> makeWithDecoder(KeyedDecoder& decoder);

 private:
  friend struct RecordFields;
  Fields fields_;
};

extern template class FieldedMessage<TransitStorageLineItem>;

}  // namespace linewatch
