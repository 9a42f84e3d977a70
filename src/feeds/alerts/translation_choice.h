#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/alerts_message.h"

namespace linewatch {

/// The translations, best first: those in the user's languages, in that order; those in the feed's language;
/// those without a tag; all others. Within a language, tags with more parts in common come first ("de-CH"
/// before "de-AT" for a user of "de-CH"). The order of equally good ones is kept. "pt-BR" equals "pt_br".
std::vector<AlertTranslation> translationsByFit(std::vector<AlertTranslation> translations,
                                                std::span<const std::string> userLanguages,
                                                std::string_view feedLanguage);

}  // namespace linewatch
