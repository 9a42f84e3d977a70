// Fills any arguments into any text, in languages with different plural forms. The result of valid texts is
// valid, and a text without formats stays as it is.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "choices.h"
#include "feeds/text/utf8.h"
#include "localization/icu_localization.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  // A localization keeps the formats of its texts. A program has only those of its tables, this has ever
  // more.
  constexpr int kRunsOfLocalizations = 10000;
  using Localizations = std::array<IcuLocalization, 3>;
  static std::unique_ptr<Localizations> kept;
  static int runs = 0;
  if (runs++ % kRunsOfLocalizations == 0) {
    kept.reset(new Localizations{IcuLocalization(*UserLocale::parse("en")),
                                 IcuLocalization(*UserLocale::parse("de")),
                                 IcuLocalization(*UserLocale::parse("ar"))});
  }
  Localizations& localizations = *kept;
  Choices choices(data, size);
  IcuLocalization& localization = localizations[choices.byte() % localizations.size()];
  const std::string text(choices.text());
  std::vector<FormatArgument> arguments;
  bool isValid = isValidUtf8(text);
  while (!choices.isAtEnd()) {
    if (choices.number(0, 1) == 0) {
      arguments.emplace_back(static_cast<std::uint64_t>(choices.integer()));
    } else {
      const std::string argument(choices.text());
      isValid = isValid && isValidUtf8(argument);
      arguments.emplace_back(argument);
    }
  }
  const std::string result = localization.format(text, arguments);
  require(!isValid || isValidUtf8(result));
  const bool hasFormats = text.find_first_of("%{}'#") != std::string::npos;
  require(!isValidUtf8(text) || hasFormats || result == text);
  return 0;
}
