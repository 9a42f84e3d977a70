#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "shared/date.h"
#include "shared/shared_text.h"

namespace linewatch {

/// Something that an incident affects.
class TransitIncidentEntity {
 public:
  virtual ~TransitIncidentEntity() = default;
  virtual std::uint64_t muid() const = 0;
  virtual bool hasNextStopIDs() const = 0;
  /// Absent when the entity is not about stops.
  virtual std::optional<std::vector<std::uint64_t>> nextStopIDs() const = 0;
};

using TransitIncidentEntities = std::vector<std::shared_ptr<const TransitIncidentEntity>>;

/// A disruption of service on one or more lines. Two records with one `muid` are the same incident.
///
/// Read on any thread; a record that others can see does not change.
class TransitIncident {
 public:
  virtual ~TransitIncident() = default;

  virtual std::uint64_t muid() const = 0;
  /// True when nothing runs.
  virtual bool isBlockingIncident() const = 0;
  /// Absent: since always.
  virtual std::optional<Date> startDate() const = 0;
  /// Absent: until further notice.
  virtual std::optional<Date> endDate() const = 0;
  virtual const OptionalText& title() const = 0;
  virtual const OptionalText& summary() const = 0;
  virtual const OptionalText& fullDescription() const = 0;
  virtual const OptionalText& messageForRoutePlanning() const = 0;
  virtual const OptionalText& messageForRouteStepping() const = 0;
  virtual const OptionalText& messageForNonRoutable() const = 0;
  /// A page with more about it.
  virtual const OptionalText& infoURL() const = 0;
  virtual std::int64_t iconType() const = 0;
  virtual std::optional<Date> creationDate() const = 0;
  virtual std::optional<Date> lastUpdated() const = 0;
  virtual const TransitIncidentEntities& affectedEntities() const = 0;
};

using SharedIncident = std::shared_ptr<const TransitIncident>;
using TransitIncidents = std::vector<SharedIncident>;

}  // namespace linewatch
