#pragma once

#include <string>
#include <string_view>

#include "shared/error.h"

namespace linewatch {

/// The domain of the desktop platform's own errors.
inline constexpr std::string_view kDesktopErrorDomain = "LineWatchDesktop";

/// An error of the desktop platform that reads "what: where: why", e.g. "feed Metro: routes.txt line 3: a
/// quote is not closed". What is empty is left out: who hands the error on may know it.
inline Error failure(std::string_view what, std::string_view where, std::string_view why) {
  std::string sentence;
  for (const std::string_view part : {what, where, why}) {
    if (!part.empty()) sentence.append(sentence.empty() ? "" : ": ").append(part);
  }
  return {std::string(kDesktopErrorDomain), 1, {{kLocalizedDescriptionKey, sentence}}};
}

/// The sentence that an error has for people.
inline std::string sentenceOf(const Error& error) {
  const auto sentence = error.info.find(kLocalizedDescriptionKey);
  const std::string* const text =
      sentence == error.info.end() ? nullptr : sentence->second.get<std::string>();
  return text == nullptr ? error.description() : *text;
}

/// The same failure as a part of something larger, which its sentence names first.
inline Error within(std::string_view what, const Error& error) {
  return failure(what, "", sentenceOf(error));
}

}  // namespace linewatch
