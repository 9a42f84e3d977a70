#pragma once

#include <cstddef>
#include <cstdint>

namespace linewatch {

/// The cause of an alert, with the numbers of the wire format.
enum class AlertCause : std::uint8_t {
  unknownCause = 1,  // also a missing cause and numbers not listed here
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

/// The effect of an alert on the service, with the numbers of the wire format.
enum class AlertEffect : std::uint8_t {
  noService = 1,
  reducedService = 2,
  significantDelays = 3,
  detour = 4,
  additionalService = 5,
  modifiedService = 6,
  otherEffect = 7,
  unknownEffect = 8,  // also a missing effect and numbers not listed here
  stopMoved = 9,
  noEffect = 10,
  accessibilityIssue = 11,
};
inline constexpr std::size_t kAlertEffects = 11;

/// How bad the effect is, with the numbers of the wire format.
enum class AlertSeverity : std::uint8_t {
  unknownSeverity = 1,  // also a missing severity and numbers not listed here
  info = 2,
  warning = 3,
  severe = 4,
};
inline constexpr std::size_t kAlertSeverities = 4;

/// True when an alert with this effect is about the stops it names, not about the lines that call there.
constexpr bool isAboutStopAlone(AlertEffect effect) {
  return effect == AlertEffect::stopMoved || effect == AlertEffect::accessibilityIssue ||
         effect == AlertEffect::noEffect;
}

}  // namespace linewatch
