#pragma once

#include "platform/incident_string_provider.h"

namespace linewatch {

/// Gives the texts that the incidents of feeds already have. Stateless.
class DesktopIncidentStringProvider final : public IncidentStringProvider {
 public:
  SharedText cellTitleForIncident(const SharedIncident& incident) override {
    return SharedText::partOf(incident, incident->title());
  }
  SharedText cellSecondaryTextForIncident(const SharedIncident& incident) override {
    return SharedText::partOf(incident, incident->summary());
  }
};

}  // namespace linewatch
