#pragma once

#include "platform/incident_string_provider.h"
#include "platform/localization.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Localisation whose texts show what was asked for: a text is its key, formatting it with arguments gives
/// `key(argument|argument)`, a list joins as `A, B`, and a count is plain digits.
///
/// A key of the world's `missingTexts` is in no table. The fallback of the system's own texts has no
/// placeholders, so that formatting gives it unchanged.
class SimulatedLocalization final : public Localization {
 public:
  explicit SimulatedLocalization(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::string localizedString(std::string_view key, std::string_view fallback, StringTable table) override;
  std::string format(const std::string& formatText, std::span<const FormatArgument> arguments) override;
  std::string joinCommaDelimited(std::span<const std::string_view> texts) override;

 private:
  SharedBackstage backstage_;
};

/// Words an incident with its own title and summary.
class SimulatedIncidentStringProvider final : public IncidentStringProvider {
 public:
  SharedText cellTitleForIncident(const SharedIncident& incident) override {
    return SharedText::partOf(incident, incident->title());
  }
  SharedText cellSecondaryTextForIncident(const SharedIncident& incident) override {
    return SharedText::partOf(incident, incident->summary());
  }
};

}  // namespace linewatch::simulation
