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

/// A stored copy of something that an incident affects.
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

/// A copy of an incident that can be written as a message and put into a keyed archive. It keeps the values
/// that the incident had when the copy was made.
class TransitStorageIncident final : public FieldedMessage<TransitStorageIncident>,
                                     public TransitIncidentRecord,
                                     public Archivable {
 public:
  using Fields = TransitIncidentFields;
  static constexpr std::string_view kArchiveClassName = "TransitStorageIncident";

  TransitStorageIncident() : TransitIncidentRecord(TransitIncidentFields{}) {}
  explicit TransitStorageIncident(const TransitIncident& incident);
  explicit TransitStorageIncident(TransitIncidentFields fields);
  /// A copy of the incident; the incident itself when it is a `TransitStorageIncident` already.
  static std::shared_ptr<const TransitStorageIncident> of(const SharedIncident& incident);

  std::string_view archiveClassName() const override { return kArchiveClassName; }
  void encodeWithCoder(KeyedCoder& coder) const override;
  /// Null when the archived bytes are not an incident.
  static std::shared_ptr<const Archivable> makeWithDecoder(KeyedDecoder& decoder);

 private:
  friend struct RecordFields;
};

extern template class FieldedMessage<TransitStorageIncident>;

}  // namespace linewatch
