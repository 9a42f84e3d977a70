#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "feeds/alerts/feed_texts.h"

namespace linewatch {

/// The language in which a user reads incidents.
struct IncidentLanguage {
  /// Language tags, the best first.
  std::vector<std::string> languages;
  FeedTexts texts = FeedTexts::english();
};

using SharedIncidentLanguage = std::shared_ptr<const IncidentLanguage>;

/// The names as a list in the user's language: "A, B and C".
std::string joinedNames(std::span<const std::string> names, const IncidentLanguage& language);

/// An ICU message pattern with the count in the plural form that the user's language has for it.
std::string inPluralForm(const std::string& pattern, std::size_t count, const IncidentLanguage& language);

}  // namespace linewatch
