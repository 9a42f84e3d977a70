#pragma once

#include "platform/incident_string_provider.h"

namespace linewatch::desktop {

/// The words that the incidents of feeds already have. Holds nothing.
class DesktopIncidentStringProvider final : public IncidentStringProvider {
 public:
  OptionalText cellTitleForIncident(const TransitIncident& incident) override { return incident.title(); }
  OptionalText cellSecondaryTextForIncident(const TransitIncident& incident) override {
    return incident.summary();
  }
};

}  // namespace linewatch::desktop
