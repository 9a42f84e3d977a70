#include "app/local_time.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>

namespace linewatch::app {

std::string localTime(Date date) {
  const auto seconds = static_cast<std::time_t>(secondsOf(date));
  std::tm parts{};
  std::array<char, 32> text{};
  if (!localtime_r(&seconds, &parts)) return {};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts)};
}

std::string localTime(Date date, const UserLocale& locale) {
  const auto time = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(secondsOf(date)));
  if (!time.isValid()) return {};
  return QLocale(QString::fromStdString(locale.tag())).toString(time, QLocale::ShortFormat).toStdString();
}

std::string durationInWords(Seconds duration) {
  struct Unit {
    double seconds;
    const char* name;
  };
  for (const Unit& unit : {Unit{86400, "day"}, Unit{3600, "hour"}, Unit{60, "minute"}}) {
    const auto count = static_cast<std::uint64_t>(std::max(0.0, duration.count()) / unit.seconds);
    if (count > 0) return std::to_string(count) + " " + unit.name + (count == 1 ? "" : "s");
  }
  return "less than a minute";
}

}  // namespace linewatch::app
