#include "feeds/alerts/incident_language.h"

#include <cstdint>
#include <string_view>

#include <unicode/listformatter.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>

namespace linewatch {

namespace {

/// The user's region where the texts are in the user's language. Otherwise lists and plural forms are those
/// of the texts' language, so that a row does not mix two.
icu::Locale localeOf(const IncidentLanguage& language, UErrorCode& error) {
  const std::string& ofTexts = language.texts.language;
  auto texts = icu::Locale::forLanguageTag(ofTexts, error);
  if (language.languages.empty()) return texts;
  auto users = icu::Locale::forLanguageTag(language.languages.front(), error);
  return std::string_view(users.getLanguage()) == texts.getLanguage() ? users : texts;
}

/// For the case that ICU's data is missing.
std::string joinedByCommas(std::span<const std::string> names) {
  std::string text;
  for (const std::string& name : names) text.append(text.empty() ? "" : ", ").append(name);
  return text;
}

}  // namespace

std::string joinedNames(std::span<const std::string> names, const IncidentLanguage& language) {
  if (names.size() < 2) return names.empty() ? std::string() : names.front();
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<icu::ListFormatter> formatter(
      icu::ListFormatter::createInstance(localeOf(language, error), error));
  if (U_FAILURE(error)) return joinedByCommas(names);
  std::vector<icu::UnicodeString> items;
  items.reserve(names.size());
  for (const std::string& name : names) items.push_back(icu::UnicodeString::fromUTF8(name));
  icu::UnicodeString text;
  formatter->format(items.data(), static_cast<std::int32_t>(items.size()), text, error);
  std::string result;
  return U_SUCCESS(error) ? text.toUTF8String(result) : joinedByCommas(names);
}

std::string inPluralForm(const std::string& pattern, std::size_t count, const IncidentLanguage& language) {
  UErrorCode error = U_ZERO_ERROR;
  const icu::MessageFormat format(icu::UnicodeString::fromUTF8(pattern), localeOf(language, error), error);
  const icu::Formattable number(static_cast<std::int64_t>(count));
  icu::UnicodeString text;
  icu::FieldPosition ignored(icu::FieldPosition::DONT_CARE);
  if (U_SUCCESS(error)) format.format(&number, 1, text, ignored, error);
  std::string result;
  return U_SUCCESS(error) ? text.toUTF8String(result) : pattern;
}

}  // namespace linewatch
