#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "shared/date.h"
#include "shared/shared_text.h"

namespace linewatch {

/// A line, stop or other part of the network that an incident affects.
class TransitIncidentEntity {
 public:
  virtual ~TransitIncidentEntity() = default;
  virtual std::uint64_t muid() const = 0;
  virtual bool hasNextStopIDs() const = 0;
  /// Absent when the entity is not about stops.
  virtual std::optional<std::vector<std::uint64_t>> nextStopIDs() const = 0;
};

using TransitIncidentEntities = std::vector<std::shared_ptr<const TransitIncidentEntity>>;

/// A disruption of service on one or more lines. Records with the same `muid` are the same incident.
///
/// Readable on any thread: a shared record never changes.
class TransitIncident {
 public:
  virtual ~TransitIncident() = default;

  virtual std::uint64_t muid() const = 0;
  /// True when nothing runs.
  virtual bool isBlockingIncident() const = 0;
  /// When the incident begins; absent when it has no beginning.
  virtual std::optional<Date> startDate() const = 0;
  /// When the incident ends; absent when that is not known.
  virtual std::optional<Date> endDate() const = 0;
  virtual const OptionalText& title() const = 0;
  virtual const OptionalText& summary() const = 0;
  virtual const OptionalText& fullDescription() const = 0;
  virtual const OptionalText& messageForRoutePlanning() const = 0;
  virtual const OptionalText& messageForRouteStepping() const = 0;
  virtual const OptionalText& messageForNonRoutable() const = 0;
  /// The address of a page about the incident.
  virtual const OptionalText& infoURL() const = 0;
  virtual std::int64_t iconType() const = 0;
  virtual std::optional<Date> creationDate() const = 0;
  virtual std::optional<Date> lastUpdated() const = 0;
  virtual const TransitIncidentEntities& affectedEntities() const = 0;
};

using SharedIncident = std::shared_ptr<const TransitIncident>;
using TransitIncidents = std::vector<SharedIncident>;

}  // namespace linewatch
