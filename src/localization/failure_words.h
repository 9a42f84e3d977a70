#pragma once

#include <string>

#include "localization/icu_localization.h"
#include "shared/failure.h"

namespace linewatch {

/// A failure for people: a short reason in the language of the texts, then the sentence, which is English:
/// "keine Verbindung (connection refused)". The sentence alone if the texts are English, or if the code is of
/// no known kind.
std::string failureInWords(FailureCode code, const std::string& sentence, const IcuLocalization& texts);

}  // namespace linewatch
