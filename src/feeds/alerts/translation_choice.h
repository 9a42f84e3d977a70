#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/alerts_message.h"

namespace linewatch {

/// The translations, best first: those in the user's languages, the language the user likes better first and
/// in it the tag that has most in common; then the feed's own language, then the untagged ones, then the
/// others. Those that fit equally stay in their order. Tags are compared as "pt-BR", "pt_br" and "PT-BR" are
/// the same.
std::vector<AlertTranslation> translationsByFit(std::vector<AlertTranslation> translations,
                                                std::span<const std::string> userLanguages,
                                                std::string_view feedLanguage);

}  // namespace linewatch
