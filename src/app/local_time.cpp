#include "app/local_time.h"

#include <QDateTime>
#include <QLocale>
#include <array>
#include <cmath>
#include <ctime>

namespace linewatch::app {

namespace {

QDateTime dateTime(Date date) {
  return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(std::floor(secondsOf(date))));
}

QLocale qtLocale(std::string_view languageTag) {
  return QLocale(QString::fromUtf8(languageTag.data(), static_cast<qsizetype>(languageTag.size())));
}

}  // namespace

std::string localTime(Date date) {
  const auto seconds = static_cast<std::time_t>(secondsOf(date));
  std::tm parts{};
  std::array<char, 32> text{};
  if (!localtime_r(&seconds, &parts)) return {};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts)};
}

std::string localTime(Date date, std::string_view languageTag) {
  const QDateTime time = dateTime(date);
  return time.isValid() ? qtLocale(languageTag).toString(time, QLocale::ShortFormat).toStdString() : "";
}

std::string localTime(Date date, Date now, std::string_view languageTag) {
  const QDateTime time = dateTime(date);
  if (!time.isValid() || time.date() != dateTime(now).date()) return localTime(date, languageTag);
  return qtLocale(languageTag).toString(time.time(), QLocale::ShortFormat).toStdString();
}

}  // namespace linewatch::app
