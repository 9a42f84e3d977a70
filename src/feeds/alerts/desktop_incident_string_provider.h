#pragma once

#include "platform/incident_string_provider.h"

namespace linewatch {

/// The words that the incidents of feeds already have. Holds nothing.
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
