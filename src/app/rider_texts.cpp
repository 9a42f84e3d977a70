#include "app/rider_texts.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "app/local_time.h"
#include "localization/failure_words.h"
#include "machine/terminal_line.h"
#include "platform/localization.h"

namespace linewatch::app {

namespace {

constexpr std::string_view kPrefix = "LineWatch_Terminal_";
constexpr std::string_view kWindowPrefix = "LineWatch_Window_";

/// Isolates the text, so that its direction does not affect the text around it.
std::string isolated(const std::string& text) { return "\u2068" + text + "\u2069"; }

struct FormattedArgument {
  bool isIsolated;

  FormatArgument operator()(std::uint64_t count) const { return count; }
  FormatArgument operator()(const std::string& text) const {
    return isIsolated ? isolated(terminalLine(text)) : terminalLine(text);
  }
  FormatArgument operator()(const RiderTexts::Phrase& phrase) const { return phrase.text; }
};

}  // namespace

RiderTexts::RiderTexts(const UserLocale& locale)
    : localization_(std::make_unique<IcuLocalization>(locale)), isRightToLeft_(locale.isRightToLeft()) {}

std::string RiderTexts::operator()(std::string_view name, std::initializer_list<Argument> arguments) const {
  const std::string key = std::string(kPrefix).append(name);
  return filledIn(localization_->terminalString(key, kLocalizedStringNotFound), arguments);
}

std::string RiderTexts::ofWindows(std::string_view name, std::initializer_list<Argument> arguments) const {
  const std::string key = std::string(kWindowPrefix).append(name);
  return filledIn(localization_->windowString(key, kLocalizedStringNotFound), arguments);
}

std::string RiderTexts::ago(Seconds age) const {
  struct Unit {
    double seconds;
    const char* key;
  };
  // The windows count in the same words.
  for (const Unit& unit : {Unit{86400, "DaysAgo"}, Unit{3600, "HoursAgo"}, Unit{60, "MinutesAgo"}}) {
    const auto count = static_cast<std::uint64_t>(std::max(0.0, age.count()) / unit.seconds);
    if (count > 0) return ofWindows(unit.key, {count});
  }
  return ofWindows("JustNow");
}

std::string RiderTexts::dateAndTime(Date date, Date now) const {
  return localTime(date, now, localization_->formatLocale());
}

std::string RiderTexts::failure(FailureCode code, const std::string& sentence) const {
  std::string words = failureInWords(code, sentence, *localization_);
  if (code != FailureCode::keyWanted) return words;
  return (*this)("KeyAdvice", {Phrase{words}, "linewatch feed key FEED --header 'NAME: KEY'"});
}

std::string RiderTexts::list(std::span<const std::string> names) const {
  const std::vector<std::string_view> views(names.begin(), names.end());
  return localization_->joinCommaDelimited(views);
}

std::string RiderTexts::filledIn(const std::string& text, std::initializer_list<Argument> arguments) const {
  if (arguments.size() == 0) return text;
  std::vector<FormatArgument> given;
  for (const Argument& argument : arguments)
    given.push_back(std::visit(FormattedArgument{isRightToLeft_}, argument));
  return localization_->format(text, given);
}

}  // namespace linewatch::app
