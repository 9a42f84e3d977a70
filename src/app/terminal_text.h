#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "list/transit_list_item.h"
#include "shared/shared_text.h"

namespace linewatch::app {

/// The style of printed texts: colours and width.
struct TerminalStyle {
  enum class Colors { none, palette, full };
  Colors colors = Colors::none;
  /// The width at which texts wrap, in columns; 0: no wrapping.
  std::size_t columns = 0;

  /// The style for standard output. It has no colours if standard output is not a terminal, if NO_COLOR is
  /// set, or if TERM is "dumb" or empty. The width is COLUMNS, or that of the terminal.
  static TerminalStyle ofStandardOutput();
  /// The style for messages on standard error: without colours, and as wide as COLUMNS or the terminal.
  static TerminalStyle ofStandardError();
};

/// The list as text: the compact row, or all rows if `expanded`. Each row begins with the line's shield, in
/// the line's colours or in brackets. The text is safe to print on a terminal.
std::string terminalText(const RVTransitListItem& list, bool expanded, const TerminalStyle& style);

/// A row: the shields of its lines, then texts.
struct TerminalRow {
  /// Not null. The first few are printed, then the number of the others.
  TransitArtworks shields;
  /// The first one is the title. Absent and empty texts are left out.
  std::vector<OptionalText> texts;
};

/// The rows as text. The texts of all rows begin at the same column.
std::string terminalRows(std::span<const TerminalRow> rows, const TerminalStyle& style);

/// A line's shield, with a cross if the line has no service.
std::string terminalShield(const TransitArtworkDataSource& artwork, const TerminalStyle& style);
/// The width of the shield in columns.
std::size_t terminalShieldWidth(const TransitArtworkDataSource& artwork);

/// The text in a fainter colour.
std::string terminalFaint(const std::string& text, const TerminalStyle& style);

}  // namespace linewatch::app
