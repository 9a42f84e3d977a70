#include "list/localized_text.h"

#include <span>

#include "platform/platform.h"

namespace linewatch {

namespace {

std::string formatted(std::string_view key, StringTable table,
                      std::initializer_list<FormatArgument> arguments) {
  Localization& texts = platform().localization();
  return texts.format(texts.localizedString(key, kLocalizedStringNotFound, table),
                      std::span(arguments.begin(), arguments.size()));
}

}  // namespace

std::string kestrowText(std::string_view key) {
  return platform().localization().localizedString(key, kLocalizedStringNotFound, StringTable::kestrow);
}

std::string kestrowText(std::string_view key, std::initializer_list<FormatArgument> arguments) {
  return formatted(key, StringTable::kestrow, arguments);
}

std::string widgetText(std::string_view key, std::initializer_list<FormatArgument> arguments) {
  return formatted(key, StringTable::widget, arguments);
}

}  // namespace linewatch
