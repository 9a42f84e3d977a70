#include "feeds/catalogue/country_names.h"

#include <algorithm>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

constexpr const char* kLanguages[] = {"en", "de", "fr", "es", "it", "pt", "nl", "pl",     "cs",
                                      "ru", "uk", "ar", "he", "hi", "ja", "ko", "zh_Hans"};

bool isCountryCode(std::string_view code) {
  return code.size() == 2 && std::ranges::all_of(code, isAsciiCapital);
}

icu::Locale localeOfCountry(std::string_view code) { return {"und", std::string(code).c_str()}; }

std::string nameIn(const icu::Locale& language, const icu::Locale& country) {
  icu::UnicodeString name;
  std::string text;
  country.getDisplayCountry(language, name).toUTF8String(text);
  return text;
}

}  // namespace

std::string countryName(std::string_view code, std::string_view language) {
  if (!isCountryCode(code)) return std::string(code);
  return nameIn(icu::Locale(std::string(language).c_str()), localeOfCountry(code));
}

std::vector<std::string> countryNames(std::string_view code) {
  std::vector<std::string> names;
  if (!isCountryCode(code)) return names;
  const icu::Locale country = localeOfCountry(code);
  for (const char* const language : kLanguages) names.push_back(nameIn(icu::Locale(language), country));
  icu::Locale own = country;
  UErrorCode trouble = U_ZERO_ERROR;
  own.addLikelySubtags(trouble);
  if (U_SUCCESS(trouble)) names.push_back(nameIn(icu::Locale(own.getLanguage()), country));
  return names;
}

}  // namespace linewatch
