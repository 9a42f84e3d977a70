#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/transit_line.h"

namespace linewatch {

/// The fields of an incident, for a transit service to fill in.
struct TransitIncidentFields {
  std::uint64_t muid = 0;
  bool isBlockingIncident = false;
  std::optional<Date> startDate, endDate;
  OptionalText title, summary, fullDescription;
  OptionalText messageForRoutePlanning, messageForRouteStepping, messageForNonRoutable;
  OptionalText infoURL;
  std::int64_t iconType = 0;
  std::optional<Date> creationDate, lastUpdated;
  TransitIncidentEntities affectedEntities;
};

/// An incident that holds its fields in memory.
class TransitIncidentRecord : public TransitIncident {
 public:
  explicit TransitIncidentRecord(TransitIncidentFields fields) : fields_(std::move(fields)) {}

  std::uint64_t muid() const override { return fields_.muid; }
  bool isBlockingIncident() const override { return fields_.isBlockingIncident; }
  std::optional<Date> startDate() const override { return fields_.startDate; }
  std::optional<Date> endDate() const override { return fields_.endDate; }
  const OptionalText& title() const override { return fields_.title; }
  const OptionalText& summary() const override { return fields_.summary; }
  const OptionalText& fullDescription() const override { return fields_.fullDescription; }
  const OptionalText& messageForRoutePlanning() const override { return fields_.messageForRoutePlanning; }
  const OptionalText& messageForRouteStepping() const override { return fields_.messageForRouteStepping; }
  const OptionalText& messageForNonRoutable() const override { return fields_.messageForNonRoutable; }
  const OptionalText& infoURL() const override { return fields_.infoURL; }
  std::int64_t iconType() const override { return fields_.iconType; }
  std::optional<Date> creationDate() const override { return fields_.creationDate; }
  std::optional<Date> lastUpdated() const override { return fields_.lastUpdated; }
  const TransitIncidentEntities& affectedEntities() const override { return fields_.affectedEntities; }

 protected:
  TransitIncidentFields fields_;
};

/// The fields of a line, for a transit service to fill in.
struct TransitLineFields {
  std::uint64_t muid = 0;
  std::optional<MapItemIdentifier> identifier;
  std::string name;
  std::shared_ptr<const TransitSystem> system;
  std::int64_t departureTimeDisplayStyle = 0;
  bool departuresAreVehicleSpecific = false;
  SharedArtwork artwork, modeArtwork, alternateArtwork;
  /// Six hexadecimal digits, or empty.
  std::string lineColorString;
  bool showVehicleNumber = false;
  std::string operatingHours;
};

/// The part of a line that returns the `TransitLineFields` given by `Record::line()`.
template <class Record>
class TransitLineOfFields : public TransitLineItem {
 public:
  std::uint64_t muid() const override { return fields().muid; }
  std::optional<MapItemIdentifier> identifier() const override { return fields().identifier; }
  const std::string& name() const override { return fields().name; }
  const std::shared_ptr<const TransitSystem>& system() const override { return fields().system; }
  std::int64_t departureTimeDisplayStyle() const override { return fields().departureTimeDisplayStyle; }
  bool departuresAreVehicleSpecific() const override { return fields().departuresAreVehicleSpecific; }
  const SharedArtwork& artwork() const override { return fields().artwork; }
  const SharedArtwork& modeArtwork() const override { return fields().modeArtwork; }
  const SharedArtwork& alternateArtwork() const override { return fields().alternateArtwork; }
  bool hasLineColorString() const override { return !fields().lineColorString.empty(); }
  const std::string& lineColorString() const override { return fields().lineColorString; }
  bool showVehicleNumber() const override { return fields().showVehicleNumber; }
  const std::string& operatingHours() const override { return fields().operatingHours; }

 private:
  const TransitLineFields& fields() const { return static_cast<const Record&>(*this).line(); }
};

/// A line with its incidents. Several records of a line can share its fields.
class TransitLineRecord final : public TransitLineOfFields<TransitLineRecord> {
 public:
  TransitLineRecord(std::shared_ptr<const TransitLineFields> fields, TransitIncidents incidents)
      : fields_(std::move(fields)), incidents_(std::move(incidents)) {}
  TransitLineRecord(TransitLineFields fields, TransitIncidents incidents)
      : TransitLineRecord(std::make_shared<const TransitLineFields>(std::move(fields)),
                          std::move(incidents)) {}

  const TransitLineFields& line() const { return *fields_; }
  const TransitIncidents& incidents() const override { return incidents_; }
  bool hasIncidentComponent() const override { return true; }
  bool isIncidentsTTLExpired() const override { return false; }

 private:
  std::shared_ptr<const TransitLineFields> fields_;
  TransitIncidents incidents_;
};

}  // namespace linewatch
