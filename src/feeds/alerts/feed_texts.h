#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "feeds/alerts/alert_enumerations.h"

namespace linewatch {

/// The words for what a feed gives as a number, in the user's language.
struct FeedTexts {
  /// Looks a text up by its key; the second argument is the English text.
  using LookUp = std::function<std::string(std::string_view key, std::string_view english)>;

  static FeedTexts english();
  static FeedTexts lookedUp(const LookUp& lookUp);

  /// Empty for a cause or an effect that tells nothing.
  const std::string& cause(AlertCause cause) const { return causes[static_cast<std::size_t>(cause) - 1]; }
  const std::string& effect(AlertEffect effect) const {
    return effects[static_cast<std::size_t>(effect) - 1];
  }
  /// An effect and a cause as one text, or the one that is not empty.
  std::string together(const std::string& effectWords, const std::string& causeWords) const;

  std::array<std::string, kAlertCauses> causes;
  std::array<std::string, kAlertEffects> effects;
  /// The title of an incident that comes without any words.
  std::string incident;
  /// {0} is an effect, {1} a cause.
  std::string effectAndCauseFormat;

  bool operator==(const FeedTexts&) const = default;
};

}  // namespace linewatch
