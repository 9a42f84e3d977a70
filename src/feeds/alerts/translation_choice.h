#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/alerts_message.h"

namespace linewatch {

/// The translations, best first: those in the user's languages, in the user's order and by the parts that the
/// tags have in common; then those in the feed's own language, then those without a tag, then all others.
/// Equally good ones stay in their order. Case and separator of tags make no difference: "pt-BR" equals
/// "pt_br".
std::vector<AlertTranslation> translationsByFit(std::vector<AlertTranslation> translations,
                                                std::span<const std::string> userLanguages,
                                                std::string_view feedLanguage);

}  // namespace linewatch
