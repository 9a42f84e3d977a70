#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "feeds/alerts/alert_enumerations.h"

namespace linewatch {

/// The words for the causes and effects of a feed, in the user's language.
struct FeedTexts {
  /// Looks up a text by its key. The second argument is the English text.
  using LookUp = std::function<std::string(std::string_view key, std::string_view english)>;

  static FeedTexts english();
  static FeedTexts lookedUp(const LookUp& lookUp);

  /// Empty for unknown and other causes and effects.
  const std::string& cause(AlertCause cause) const { return causes[static_cast<std::size_t>(cause) - 1]; }
  const std::string& effect(AlertEffect effect) const {
    return effects[static_cast<std::size_t>(effect) - 1];
  }
  /// Both as one text ("Detour · Construction"). When one is empty, the other.
  std::string together(const std::string& effectWords, const std::string& causeWords) const;

  std::array<std::string, kAlertCauses> causes;
  std::array<std::string, kAlertEffects> effects;
  /// The title of an incident without a header and without a known effect.
  std::string incident;
  /// {0} is an effect, {1} a cause.
  std::string effectAndCauseFormat;

  bool operator==(const FeedTexts&) const = default;
};

}  // namespace linewatch
