#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "list/transit_list_item.h"
#include "shared/shared_text.h"

namespace linewatch::app {

/// How texts are printed: with which colours, and how wide.
struct TerminalStyle {
  enum class Colors { none, palette, full };
  Colors colors = Colors::none;
  /// The columns at which texts are wrapped; 0: not wrapped.
  std::size_t columns = 0;

  /// The style for standard output: plain when it is not a terminal, NO_COLOR is set, or TERM is "dumb" or
  /// empty.
  static TerminalStyle ofStandardOutput();
};

/// The list as text: its one row, or every row when `expanded`. A line's shield comes before its row, in the
/// line's colours or in brackets. The texts are safe to print on a terminal.
std::string terminalText(const RVTransitListItem& list, bool expanded, const TerminalStyle& style);

/// A row of texts after the shields of its lines.
struct TerminalRow {
  /// None of them is null. The first few are printed, and the number of the others.
  TransitArtworks shields;
  /// The first is the title. Absent and empty texts are left out.
  std::vector<OptionalText> texts;
};

/// The rows as text, with their texts beginning at the same column.
std::string terminalRows(std::span<const TerminalRow> rows, const TerminalStyle& style);

/// A line's shield as it is printed before a row, with a cross when the line has no service.
std::string terminalShield(const TransitArtworkDataSource& artwork, const TerminalStyle& style);
/// The columns that the shield takes.
std::size_t terminalShieldWidth(const TransitArtworkDataSource& artwork);

/// The columns that the text takes.
std::size_t terminalWidth(std::string_view text);

/// The text in a fainter colour.
std::string terminalFaint(const std::string& text, const TerminalStyle& style);

}  // namespace linewatch::app
