#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/transit_records.h"

namespace linewatch {

/// The line that a fake incident affects.
class DebugAffectedEntities final : public TransitIncidentEntity {
 public:
  explicit DebugAffectedEntities(std::uint64_t muid) : muid_(muid) {}

  std::uint64_t muid() const override { return muid_; }
  bool hasNextStopIDs() const override { return false; }
  std::optional<std::vector<std::uint64_t>> nextStopIDs() const override { return std::nullopt; }

 private:
  std::uint64_t muid_;
};

/// A fake incident, to try the widget without a real disruption. Its fields can be set before it is shared.
class DebugTransitIncident final : public TransitIncidentRecord {
 public:
  DebugTransitIncident() : TransitIncidentRecord(TransitIncidentFields{}) {}

  /// A blocking incident of the line that began a day ago and ends in a day. All fake incidents of one line
  /// have the same `muid`.
  static std::shared_ptr<const DebugTransitIncident> _debug_fakeIncidentAffectingLine(
      const TransitLineItem& line);

  TransitIncidentFields& fields() { return fields_; }
  void setBlockingIncident(bool blockingIncident) { fields_.isBlockingIncident = blockingIncident; }
};

/// A line item with the fields of the line that it wraps and incidents of its own.
class DebugTransitLineItem final : public TransitLineItem {
 public:
  DebugTransitLineItem(SharedLineItem wrappedLine, TransitIncidents incidents)
      : incidents_(std::move(incidents)), wrappedLine_(std::move(wrappedLine)) {}

  const SharedLineItem& wrappedLine() const { return wrappedLine_; }
  void setWrappedLine(SharedLineItem line) { wrappedLine_ = std::move(line); }
  void setIncidents(TransitIncidents incidents) { incidents_ = std::move(incidents); }

  const TransitIncidents& incidents() const override { return incidents_; }
  bool hasIncidentComponent() const override { return true; }
  bool isIncidentsTTLExpired() const override { return false; }

  std::uint64_t muid() const override { return wrappedLine_->muid(); }
  std::optional<MapItemIdentifier> identifier() const override { return wrappedLine_->identifier(); }
  const std::string& name() const override { return wrappedLine_->name(); }
  const std::shared_ptr<const TransitSystem>& system() const override { return wrappedLine_->system(); }
  std::int64_t departureTimeDisplayStyle() const override {
    return wrappedLine_->departureTimeDisplayStyle();
  }
  bool departuresAreVehicleSpecific() const override { return wrappedLine_->departuresAreVehicleSpecific(); }
  const SharedArtwork& artwork() const override { return wrappedLine_->artwork(); }
  const SharedArtwork& modeArtwork() const override { return wrappedLine_->modeArtwork(); }
  const SharedArtwork& alternateArtwork() const override { return wrappedLine_->alternateArtwork(); }
  bool hasLineColorString() const override { return wrappedLine_->hasLineColorString(); }
  const std::string& lineColorString() const override { return wrappedLine_->lineColorString(); }
  bool showVehicleNumber() const override { return wrappedLine_->showVehicleNumber(); }
  const std::string& operatingHours() const override { return wrappedLine_->operatingHours(); }

 private:
  TransitIncidents incidents_;
  SharedLineItem wrappedLine_;
};

}  // namespace linewatch
