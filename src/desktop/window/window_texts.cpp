#include "desktop/window/window_texts.h"

#include <QDateTime>
#include <cmath>
#include <string>
#include <variant>
#include <vector>

namespace linewatch::desktop {

namespace {

constexpr std::string_view kPrefix = "LineWatch_Window_";

/// Isolates the text, so that it keeps its own direction inside other text.
std::string isolated(const std::string& text) { return "\u2068" + text + "\u2069"; }

QDateTime localTime(Date date) {
  return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(secondsOf(date) * 1000)));
}

}  // namespace

WindowTexts::WindowTexts(const UserLocale& locale)
    : localization_(std::make_unique<IcuLocalization>(locale)),
      locale_(QString::fromStdString(locale.tag())),
      isRightToLeft_(locale.isRightToLeft()) {}

QString WindowTexts::operator()(std::string_view name,
                                std::initializer_list<FormatArgument> arguments) const {
  const std::string text =
      localization_->windowString(std::string(kPrefix).append(name), kLocalizedStringNotFound);
  if (arguments.size() == 0) return QString::fromStdString(text);
  std::vector<FormatArgument> given(arguments);
  if (!isRightToLeft_) return QString::fromStdString(localization_->format(text, given));
  for (FormatArgument& argument : given) {
    if (auto* const words = std::get_if<std::string>(&argument)) *words = isolated(*words);
  }
  return QString::fromStdString(isolated(localization_->format(text, given)));
}

QString WindowTexts::dateAndTime(Date date, Date now, QLocale::FormatType format) const {
  const QDateTime time = localTime(date);
  QString timeOfDay = locale_.toString(time.time(), QLocale::ShortFormat);
  if (time.date() == localTime(now).date()) return timeOfDay;
  return locale_.toString(time.date(), format) + QStringLiteral(", ") + timeOfDay;
}

}  // namespace linewatch::desktop
