#pragma once

#include <QLocale>
#include <QString>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "localization/icu_localization.h"
#include "localization/user_locale.h"
#include "platform/localization.h"
#include "shared/date.h"

namespace linewatch::desktop {

/// The words of the windows, in the user's language. Main thread.
class WindowTexts {
 public:
  explicit WindowTexts(const UserLocale& locale);

  /// The text whose key is "LineWatch_Window_" and `name`, with its arguments filled in. Where the language
  /// is written from right to left, each of these and the whole keep a direction of their own: the text may
  /// be English, and names are as the feed has them.
  QString operator()(std::string_view name, std::initializer_list<FormatArgument> arguments = {}) const;
  /// The date and the time in the machine's time zone; of a date today the time alone.
  QString dateAndTime(Date date, Date now, QLocale::FormatType format = QLocale::LongFormat) const;

 private:
  /// Formatting makes what it needs when it is first needed.
  std::unique_ptr<IcuLocalization> localization_;
  QLocale locale_;
  bool isRightToLeft_;
};

using SharedWindowTexts = std::shared_ptr<const WindowTexts>;

}  // namespace linewatch::desktop
