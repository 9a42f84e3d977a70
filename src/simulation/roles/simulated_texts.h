#pragma once

#include "platform/incident_string_provider.h"
#include "platform/localization.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Texts that show what was looked up: a text is its key, a formatted text is `key(argument|argument)`, a
/// list is joined as `A, B`, and a count is written in plain digits.
///
/// A key is only found in the table that holds it in resources/strings, and not at all when it is one of the
/// world's `missingTexts`. `kLocalizedStringNotFound` is not a format, so that formatting leaves it
/// unchanged.
class SimulatedLocalization final : public Localization {
 public:
  explicit SimulatedLocalization(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::string localizedString(std::string_view key, std::string_view fallback, StringTable table) override;
  std::string format(const std::string& formatText, std::span<const FormatArgument> arguments) override;
  std::string joinCommaDelimited(std::span<const std::string_view> texts) override;

 private:
  SharedBackstage backstage_;
};

/// The texts of an incident's row are its own title and summary.
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
