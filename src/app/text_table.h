#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/terminal_text.h"

namespace linewatch::app {

/// A cell of a printed table.
struct TableCell {
  /// Safe on a terminal, and without colours.
  std::string text;
  /// The same in colours, if it has any; it is never broken.
  std::string painted = {};
  bool isFaint = false;
};

/// Rows of equally many cells, one line a row and aligned in columns. If that is wider than the style allows,
/// each row has its first cell at the left, and beside it the other cells one under another.
std::string textTable(const std::vector<std::vector<TableCell>>& rows, const TerminalStyle& style);

/// The columns by which the lines of a message are indented after the first one.
inline constexpr std::size_t kMessageIndent = 2;

/// A paragraph that wraps; all lines but the first are indented by so many blanks. Ends with a line end.
std::string paragraph(const std::string& text, std::size_t indent, const TerminalStyle& style);

}  // namespace linewatch::app
