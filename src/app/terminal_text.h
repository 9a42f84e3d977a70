#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "list/transit_list_item.h"

namespace linewatch::app {

/// What the terminal that is written to can show.
struct TerminalStyle {
  enum class Colors { none, palette, full };
  Colors colors = Colors::none;
  /// Columns to wrap texts at; 0: not at all.
  std::size_t columns = 0;

  /// What standard output is: plain when it is no terminal, when NO_COLOR is set, or when TERM says so.
  static TerminalStyle ofStandardOutput();
};

/// The list as a person reads it: one row, or every row when `expanded`. A line's shield stands before its
/// row, in the line's colours or in brackets.
std::string terminalText(const RVTransitListItem& list, bool expanded, const TerminalStyle& style);

/// A line's shield alone, as it stands before a row.
std::string terminalShield(const TransitArtworkDataSource& artwork, const TerminalStyle& style);
/// How many columns the shield takes.
std::size_t terminalShieldWidth(const TransitArtworkDataSource& artwork);

/// How many columns a terminal takes for the text.
std::size_t terminalWidth(std::string_view text);

/// The text in a quieter colour.
std::string terminalFaint(const std::string& text, const TerminalStyle& style);

}  // namespace linewatch::app
