#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/transit_records.h"
#include "wire/codable_message.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

struct RecordFields;

struct TransitStorageEntityFields {
  std::uint64_t muid = 0;
  bool hasNextStopIDs = false;
  std::optional<std::vector<std::uint64_t>> nextStopIDs;
};

/// Something that an incident affects, as it is stored.
class TransitStorageIncidentEntity final : public TransitIncidentEntity {
 public:
  using Fields = TransitStorageEntityFields;

  TransitStorageIncidentEntity() = default;
  explicit TransitStorageIncidentEntity(const TransitIncidentEntity& entity);

  std::uint64_t muid() const override { return fields_.muid; }
  bool hasNextStopIDs() const override { return fields_.hasNextStopIDs; }
  std::optional<std::vector<std::uint64_t>> nextStopIDs() const override { return fields_.nextStopIDs; }

 private:
  friend struct RecordFields;
  Fields fields_;
};

/// A snapshot of an incident that can be stored: it answers as the incident did when it was made. A message,
/// and an object of keyed archives. A service that answers with snapshots spares those who store them a copy.
class TransitStorageIncident final : public FieldedMessage<TransitStorageIncident>,
                                     public TransitIncidentRecord,
                                     public Archivable {
 public:
  using Fields = TransitIncidentFields;
  static constexpr std::string_view kArchiveClassName = "TransitStorageIncident";

  TransitStorageIncident() : TransitIncidentRecord(TransitIncidentFields{}) {}
  explicit TransitStorageIncident(const TransitIncident& incident);
  explicit TransitStorageIncident(TransitIncidentFields fields);
  /// The incident as it is now: itself when it is a snapshot already, which nothing changes.
  static std::shared_ptr<const TransitStorageIncident> of(const SharedIncident& incident);

  std::string_view archiveClassName() const override { return kArchiveClassName; }
  void encodeWithCoder(KeyedCoder& coder) const override;
  /// Null when the archived bytes do not read as an incident.
  static std::shared_ptr<const Archivable> makeWithDecoder(KeyedDecoder& decoder);

 private:
  friend struct RecordFields;
};

extern template class FieldedMessage<TransitStorageIncident>;

}  // namespace linewatch
