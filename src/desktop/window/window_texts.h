#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/feed_texts.h"
#include "localization/icu_localization.h"
#include "localization/user_locale.h"
#include "platform/localization.h"
#include "shared/date.h"
#include "shared/error.h"

namespace linewatch::desktop {

/// The texts of the windows, in the user's language. Main thread.
class WindowTexts {
 public:
  explicit WindowTexts(const UserLocale& locale);

  /// The text with the key "LineWatch_Window_" + `name`, with its arguments. In right-to-left languages each
  /// text argument and the whole text are isolated, because the text may be English, and names in a feed may
  /// have either direction.
  QString operator()(std::string_view name, std::initializer_list<FormatArgument> arguments = {}) const;
  /// "A, B" with the language's own comma.
  std::string joined(std::span<const std::string_view> names) const;
  /// Names with a comma between them, e.g. of a place. In some languages, `joined` has "and" for the comma.
  QString withCommas(const std::vector<std::string>& names) const;
  /// An error in words: its sentence, after a short reason in the user's language if that is not English.
  std::string reason(const Error& error) const;
  IcuLocalization& localization() const { return *localization_; }
  const QLocale& locale() const { return locale_; }
  /// Date and time in the machine's time zone; a date of today has the time only.
  QString dateAndTime(Date date, Date now, QLocale::FormatType format = QLocale::LongFormat) const;
  /// The same with a short date ("Thu, Nov 26, 10:50"), without the year if it is the present one.
  QString shortDateAndTime(Date date, Date now) const;
  /// A period in short dates. If both dates are on one day, the day appears once. An absent date is open.
  QString period(std::optional<Date> start, std::optional<Date> end, Date now) const;
  /// An amount of data in its largest unit, e.g. "3.4 MB".
  QString dataSize(std::uint64_t bytes) const;
  /// The words for the causes and effects of incidents.
  FeedTexts feedTexts() const;

 private:
  /// A pointer, because formatting changes its cache of formatters.
  std::unique_ptr<IcuLocalization> localization_;
  QLocale locale_;
  bool isRightToLeft_;
};

using SharedWindowTexts = std::shared_ptr<const WindowTexts>;

}  // namespace linewatch::desktop
