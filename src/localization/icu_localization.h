#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "localization/string_tables.h"
#include "localization/user_locale.h"
#include "platform/localization.h"

namespace linewatch {

/// Localised texts from string tables, with ICU's plural forms, numbers and lists.
///
/// A text is looked up in the languages of `UserLocale::fallbacks`, then in English. If the tables
/// have the user's language, plural forms and numbers follow the user's locale. Otherwise they follow English
/// in the user's region, so that a text and its plural form never have different languages.
class IcuLocalization final : public Localization {
 public:
  /// With the program's own texts, of which it takes only those that the user may see.
  explicit IcuLocalization(const UserLocale& locale);
  IcuLocalization(const UserLocale& locale, std::vector<TableText> texts);
  ~IcuLocalization() override;

  std::string localizedString(std::string_view key, std::string_view fallback, StringTable table) override;
  std::string format(const std::string& formatText, std::span<const FormatArgument> arguments) override;
  std::string joinCommaDelimited(std::span<const std::string_view> texts) override;

  /// A text of the table "failure". Any thread.
  std::string failureString(std::string_view key, std::string_view fallback) const;
  /// A text of the table "feed". Any thread.
  std::string feedString(std::string_view key, std::string_view fallback) const;
  /// A text of the table "status". Any thread.
  std::string statusString(std::string_view key, std::string_view fallback) const;
  /// A text of the table "terminal". Any thread.
  std::string terminalString(std::string_view key, std::string_view fallback) const;
  /// A text of the table "window". Any thread.
  std::string windowString(std::string_view key, std::string_view fallback) const;

  /// Whether the texts are English.
  bool isInFallbackLanguage() const { return languages_.front().starts_with(kFallbackLanguage); }
  /// The tag of the locale that plural forms, numbers and lists follow. Dates beside the texts follow it too.
  std::string formatLocale() const;

 private:
  struct Formats;

  std::string lookUp(std::string_view table, std::string_view key, std::string_view fallback) const;
  const std::string& listDelimiter();

  /// Sorted by language, table and key.
  std::vector<TableText> texts_;
  /// The languages in the order of the look-up.
  std::vector<std::string> languages_;
  std::unique_ptr<Formats> formats_;
};

}  // namespace linewatch
