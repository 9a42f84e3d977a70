#include "app/local_time.h"

#include <array>
#include <ctime>

namespace linewatch::app {

std::string localTime(Date date) {
  const auto seconds = static_cast<std::time_t>(secondsOf(date));
  std::tm parts{};
  std::array<char, 32> text{};
  if (!localtime_r(&seconds, &parts)) return {};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts)};
}

}  // namespace linewatch::app
