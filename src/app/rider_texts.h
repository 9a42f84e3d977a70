#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "localization/icu_localization.h"
#include "localization/user_locale.h"
#include "shared/date.h"
#include "shared/failure.h"

namespace linewatch::app {

/// The texts for a rider at a terminal, in the user's language. Main thread.
///
/// Text arguments lose their control characters, so a text is safe to print. In right-to-left languages each
/// argument is isolated, because names in a feed may have either direction.
class RiderTexts {
 public:
  /// A text of this class as an argument of another one. It keeps its isolates.
  struct Phrase {
    std::string text;
  };
  using Argument = std::variant<std::uint64_t, std::string, Phrase>;

  explicit RiderTexts(const UserLocale& locale);

  /// The text with the key "LineWatch_Terminal_" + `name`, with its arguments.
  std::string operator()(std::string_view name, std::initializer_list<Argument> arguments = {}) const;
  /// The text that the windows have under the key "LineWatch_Window_" + `name`.
  std::string ofWindows(std::string_view name, std::initializer_list<Argument> arguments = {}) const;
  /// How long ago something was, e.g. "5 minutes ago". Negative ages count as 0.
  std::string ago(Seconds age) const;
  /// Date and time in the machine's time zone; a date of today has the time only.
  std::string dateAndTime(Date date, Date now) const;
  /// A failure in words: its sentence, after a short reason in the user's language if that is not English. If
  /// a server wants a key, also the command that gives one.
  std::string failure(FailureCode code, const std::string& sentence) const;
  IcuLocalization& localization() const { return *localization_; }
  /// "A, B" with the language's own comma.
  std::string list(std::span<const std::string> names) const;

 private:
  std::string filledIn(const std::string& text, std::initializer_list<Argument> arguments) const;

  /// A pointer, because formatting changes its cache of formatters.
  std::unique_ptr<IcuLocalization> localization_;
  bool isRightToLeft_;
};

}  // namespace linewatch::app
