#pragma once

#include <cstddef>
#include <cstdint>

namespace linewatch {

/// Why an alert was given, with the numbers of the wire.
enum class AlertCause : std::uint8_t {
  unknownCause = 1,  // also a missing cause and one that has no number here
  otherCause = 2,
  technicalProblem = 3,
  strike = 4,
  demonstration = 5,
  accident = 6,
  holiday = 7,
  weather = 8,
  maintenance = 9,
  construction = 10,
  policeActivity = 11,
  medicalEmergency = 12,
};
inline constexpr std::size_t kAlertCauses = 12;

/// What an alert does to the service, with the numbers of the wire.
enum class AlertEffect : std::uint8_t {
  noService = 1,
  reducedService = 2,
  significantDelays = 3,
  detour = 4,
  additionalService = 5,
  modifiedService = 6,
  otherEffect = 7,
  unknownEffect = 8,  // also a missing effect and one that has no number here
  stopMoved = 9,
  noEffect = 10,
  accessibilityIssue = 11,
};
inline constexpr std::size_t kAlertEffects = 11;

/// True when the alert is about the stops it names and not about the service that calls there.
constexpr bool isAboutStopAlone(AlertEffect effect) {
  return effect == AlertEffect::stopMoved || effect == AlertEffect::accessibilityIssue ||
         effect == AlertEffect::noEffect;
}

}  // namespace linewatch
