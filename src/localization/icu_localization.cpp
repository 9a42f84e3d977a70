#include "localization/icu_localization.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include <unicode/formattedvalue.h>
#include <unicode/listformatter.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>

namespace linewatch {

namespace {

constexpr std::string_view kFailureTable = "failure";
constexpr std::string_view kFeedTable = "feed";
constexpr std::string_view kStatusTable = "status";
constexpr std::string_view kTerminalTable = "terminal";
constexpr std::string_view kWindowTable = "window";
/// The list delimiter for locales without one in ICU.
constexpr std::string_view kPlainDelimiter = ", ";

std::string_view nameOf(StringTable table) { return table == StringTable::kestrow ? "kestrow" : "widget"; }

/// The sort key of texts: language, table and key.
using TextPlace = std::tuple<std::string_view, std::string_view, std::string_view>;

TextPlace placeOf(const TableText& text) { return {text.language, text.table, text.key}; }

/// The embedded texts that a user of the locale may see.
std::vector<TableText> textsFor(const UserLocale& locale) {
  const std::vector<std::string> fallbacks = locale.fallbacks();
  std::vector<std::string_view> languages(fallbacks.begin(), fallbacks.end());
  languages.push_back(kFallbackLanguage);
  return embeddedTexts(languages);
}

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

icu::Formattable formattable(const FormatArgument& argument) {
  const auto* count = std::get_if<std::uint64_t>(&argument);
  if (count == nullptr) return {unicode(std::get<std::string>(argument))};
  // Formatted as decimal digits, because a Formattable has signed integers only.
  UErrorCode error = U_ZERO_ERROR;
  return {icu::StringPiece(std::to_string(*count)), error};
}

/// The user's locale for the language of the texts. If no table has a language of the user, English in the
/// user's region.
icu::Locale localeOfTexts(const UserLocale& locale, const std::vector<std::string>& languages) {
  UErrorCode error = U_ZERO_ERROR;
  const auto users = locale.tagWithFallback(languages.empty() ? locale.tag() : languages.front());
  const auto found = icu::Locale::forLanguageTag(users.value_or(locale.tag()), error);
  return languages.empty() ? icu::Locale(std::string(kFallbackLanguage).c_str(), found.getCountry()) : found;
}

/// The delimiter between the first two of three list elements; absent if ICU has none.
std::optional<std::string> delimiterOf(const icu::ListFormatter& formatter) {
  const std::array<icu::UnicodeString, 3> elements = {u"a", u"b", u"c"};
  UErrorCode error = U_ZERO_ERROR;
  const icu::FormattedList list = formatter.formatStringsToValue(elements.data(), 3, error);
  icu::ConstrainedFieldPosition position;
  position.constrainField(UFIELD_CATEGORY_LIST, ULISTFMT_ELEMENT_FIELD);
  if (!list.nextPosition(position, error)) return std::nullopt;
  const std::int32_t start = position.getLimit();
  if (!list.nextPosition(position, error) || U_FAILURE(error)) return std::nullopt;
  return utf8(list.toTempString(error).tempSubStringBetween(start, position.getStart()));
}

}  // namespace

/// The user's locale, with the ICU formatters for it. Each is made on first use.
struct IcuLocalization::Formats {
  icu::Locale locale;
  std::optional<std::string> listDelimiter;
  /// Formatters by pattern; null for an invalid pattern.
  std::unordered_map<std::string, std::unique_ptr<icu::MessageFormat>> messages;

  const icu::MessageFormat* message(const std::string& text) {
    const auto [place, isNew] = messages.try_emplace(text);
    if (isNew) {
      UErrorCode error = U_ZERO_ERROR;
      auto made = std::make_unique<icu::MessageFormat>(unicode(text), locale, error);
      if (U_SUCCESS(error)) place->second = std::move(made);
    }
    return place->second.get();
  }
};

IcuLocalization::IcuLocalization(const UserLocale& locale) : IcuLocalization(locale, textsFor(locale)) {}

IcuLocalization::IcuLocalization(const UserLocale& locale, std::vector<TableText> texts)
    : texts_(std::move(texts)), languages_(locale.fallbacks()), formats_(std::make_unique<Formats>()) {
  if (!std::ranges::is_sorted(texts_, {}, placeOf)) std::ranges::sort(texts_, {}, placeOf);
  std::erase_if(languages_, [this](const std::string& language) {
    return !std::ranges::binary_search(texts_, std::string_view(language), {}, &TableText::language);
  });
  formats_->locale = localeOfTexts(locale, languages_);
  languages_.emplace_back(kFallbackLanguage);
}

IcuLocalization::~IcuLocalization() = default;

std::string IcuLocalization::localizedString(std::string_view key, std::string_view fallback,
                                             StringTable table) {
  return lookUp(nameOf(table), key, fallback);
}

std::string IcuLocalization::failureString(std::string_view key, std::string_view fallback) const {
  return lookUp(kFailureTable, key, fallback);
}

std::string IcuLocalization::feedString(std::string_view key, std::string_view fallback) const {
  return lookUp(kFeedTable, key, fallback);
}

std::string IcuLocalization::statusString(std::string_view key, std::string_view fallback) const {
  return lookUp(kStatusTable, key, fallback);
}

std::string IcuLocalization::terminalString(std::string_view key, std::string_view fallback) const {
  return lookUp(kTerminalTable, key, fallback);
}

std::string IcuLocalization::windowString(std::string_view key, std::string_view fallback) const {
  return lookUp(kWindowTable, key, fallback);
}

std::string IcuLocalization::formatLocale() const {
  UErrorCode error = U_ZERO_ERROR;
  return formats_->locale.toLanguageTag<std::string>(error);
}

std::string IcuLocalization::format(const std::string& formatText,
                                    std::span<const FormatArgument> arguments) {
  const icu::MessageFormat* const message = formats_->message(formatText);
  if (message == nullptr) return formatText;
  std::vector<icu::Formattable> values;
  values.reserve(arguments.size());
  std::ranges::transform(arguments, std::back_inserter(values), formattable);
  icu::UnicodeString text;
  icu::FieldPosition ignored(icu::FieldPosition::DONT_CARE);
  UErrorCode error = U_ZERO_ERROR;
  message->format(values.data(), static_cast<std::int32_t>(values.size()), text, ignored, error);
  return U_SUCCESS(error) ? utf8(text) : formatText;
}

std::string IcuLocalization::joinCommaDelimited(std::span<const std::string_view> texts) {
  std::string all;
  for (const std::string_view& text : texts) {
    if (&text != &texts.front()) all += listDelimiter();
    all += text;
  }
  return all;
}

std::string IcuLocalization::lookUp(std::string_view table, std::string_view key,
                                    std::string_view fallback) const {
  for (const std::string& language : languages_) {
    const TextPlace place(language, table, key);
    const auto text = std::ranges::lower_bound(texts_, place, {}, placeOf);
    if (text != texts_.end() && placeOf(*text) == place) return std::string(text->text);
  }
  return std::string(fallback);
}

const std::string& IcuLocalization::listDelimiter() {
  if (!formats_->listDelimiter) {
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::ListFormatter> formatter(
        icu::ListFormatter::createInstance(formats_->locale, error));
    const auto delimiter = U_SUCCESS(error) ? delimiterOf(*formatter) : std::nullopt;
    formats_->listDelimiter = delimiter.value_or(std::string(kPlainDelimiter));
  }
  return *formats_->listDelimiter;
}

}  // namespace linewatch
