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

/// Texts of string tables, with the plural forms, numbers and lists of ICU.
///
/// A text is that of the user's region, else of the user's language, else of the fallback language. Plural
/// forms and numbers are those of the user's locale when there are texts in its language, else the fallback
/// language's as the user's region writes it: a text and its forms never come from two languages.
class IcuLocalization final : public Localization {
 public:
  explicit IcuLocalization(const UserLocale& locale, std::span<const TableText> texts = embeddedTexts());
  ~IcuLocalization() override;

  std::string localizedString(std::string_view key, std::string_view fallback, StringTable table) override;
  std::string format(const std::string& formatText, std::span<const FormatArgument> arguments) override;
  std::string joinCommaDelimited(std::span<const std::string_view> texts) override;

  /// The same of the table of words for what a feed says. Any thread.
  std::string feedString(std::string_view key, std::string_view fallback) const;
  /// The same of the table of words of the program's windows. Any thread.
  std::string windowString(std::string_view key, std::string_view fallback) const;

 private:
  struct Formats;

  std::string lookUp(std::string_view table, std::string_view key, std::string_view fallback) const;
  const std::string& listDelimiter();

  /// Sorted by language, table and key.
  std::vector<TableText> texts_;
  /// Where a text is looked for, one after the other.
  std::vector<std::string> languages_;
  std::unique_ptr<Formats> formats_;
};

}  // namespace linewatch
