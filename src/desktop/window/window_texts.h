#pragma once

#include <QLocale>
#include <QString>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

#include "feeds/alerts/feed_texts.h"
#include "localization/icu_localization.h"
#include "localization/user_locale.h"
#include "platform/localization.h"
#include "shared/date.h"

namespace linewatch::desktop {

/// The texts of the windows, in the user's language. Main thread.
class WindowTexts {
 public:
  explicit WindowTexts(const UserLocale& locale);

  /// The text with the key "LineWatch_Window_" + `name`, with its arguments filled in. In right-to-left
  /// languages each text argument and the whole text are isolated: the text may be English, and a feed's
  /// names have any direction.
  QString operator()(std::string_view name, std::initializer_list<FormatArgument> arguments = {}) const;
  /// Date and time in the machine's time zone; only the time for a date of today.
  QString dateAndTime(Date date, Date now, QLocale::FormatType format = QLocale::LongFormat) const;
  /// The same with a short date ("Thu, Nov 26, 10:50"): the year is left out when it is that of `now`.
  QString shortDateAndTime(Date date, Date now) const;
  /// From one date to the other, short: a date that both have is said once. An absent date is open.
  QString period(std::optional<Date> start, std::optional<Date> end, Date now) const;
  /// The words for the causes and effects of incidents.
  FeedTexts feedTexts() const;

 private:
  /// A pointer, because formatting caches formatters.
  std::unique_ptr<IcuLocalization> localization_;
  QLocale locale_;
  bool isRightToLeft_;
};

using SharedWindowTexts = std::shared_ptr<const WindowTexts>;

}  // namespace linewatch::desktop
