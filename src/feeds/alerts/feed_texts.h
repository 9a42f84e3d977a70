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
  /// The effect on stops in words, e.g. "Harbour closed". `stops` is one name or a list of names. Gives
  /// `stops` alone if the effect has no words for stops.
  std::string effectAtStops(AlertEffect effect, const std::string& stops) const;
  static bool hasWordsForStops(AlertEffect effect);
  /// Both as one text ("Detour · Construction"). When one is empty, the other.
  std::string together(const std::string& effectWords, const std::string& causeWords) const;

  /// The language tag of the texts.
  std::string language;
  std::array<std::string, kAlertCauses> causes;
  std::array<std::string, kAlertEffects> effects;
  /// The title of an incident without a header and without a known effect.
  std::string incident;
  /// {0} is an effect, {1} a cause.
  std::string effectAndCauseFormat;
  /// {0} is the name of a stop.
  std::string stopClosedFormat, stopMovedFormat, stopAccessibilityFormat, stopAffectedFormat;
  /// {0} is the number of stops, at least 2; an ICU message with plural forms.
  std::string stopsAffectedFormat;
  /// For a stop without a name; {0} is its id.
  std::string stopWithIdFormat;
  /// The end of a list of names that is too long for a row; {0} is the number of names left out.
  std::string moreStopsFormat;
  /// {0} is a list of names.
  std::string linesFormat, stopsFormat;

  bool operator==(const FeedTexts&) const = default;
};

/// The format with `value` for {0}.
std::string filledIn(std::string format, const std::string& value);

}  // namespace linewatch
