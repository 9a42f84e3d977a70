#include "simulation/roles/simulated_texts.h"

#include <algorithm>
#include <functional>

#include "simulation/roles/string_keys.h"

namespace linewatch::simulation {

namespace {

template <class Texts, class ToText>
std::string joined(const Texts& texts, std::string_view delimiter, ToText&& toText) {
  std::string all;
  bool isFirst = true;
  for (const auto& text : texts) {
    if (!isFirst) all += delimiter;
    isFirst = false;
    all += toText(text);
  }
  return all;
}

std::string argumentText(const FormatArgument& argument) {
  const auto* count = std::get_if<std::uint64_t>(&argument);
  return count != nullptr ? std::to_string(*count) : std::get<std::string>(argument);
}

}  // namespace

std::string SimulatedLocalization::localizedString(std::string_view key, std::string_view fallback,
                                                   StringTable table) {
  const bool isFound = std::ranges::count(stringKeys(), StringKey{table, key}) > 0 &&
                       !backstage_->world.missingTexts.contains(key);
  return std::string(isFound ? key : fallback);
}

std::string SimulatedLocalization::format(const std::string& formatText,
                                          std::span<const FormatArgument> arguments) {
  if (formatText == kLocalizedStringNotFound) return formatText;
  return formatText + "(" + joined(arguments, "|", argumentText) + ")";
}

std::string SimulatedLocalization::joinCommaDelimited(std::span<const std::string_view> texts) {
  return joined(texts, ", ", std::identity());
}

}  // namespace linewatch::simulation
