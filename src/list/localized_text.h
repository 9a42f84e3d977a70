#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/localization.h"

namespace linewatch {

/// A text of the companion application's string table, plain or formatted with arguments.
std::string kestrowText(std::string_view key);
std::string kestrowText(std::string_view key, std::initializer_list<FormatArgument> arguments);

/// A text of the widget's own string table, formatted with arguments.
std::string widgetText(std::string_view key, std::initializer_list<FormatArgument> arguments);

}  // namespace linewatch
