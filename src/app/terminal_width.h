#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch::app {

/// The width of the text on a terminal, in columns. Chinese, Japanese and Korean characters and emoji have
/// two columns. Combining marks have none, and the parts of one emoji, such as a flag's two letters, count
/// once.
std::size_t terminalWidth(std::string_view text);

/// The text in lines of at most so many columns, broken at blanks; only words that are wider than a line are
/// broken inside. 0 columns: one line.
std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

}  // namespace linewatch::app
