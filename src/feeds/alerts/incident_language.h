#pragma once

#include <memory>
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

}  // namespace linewatch
