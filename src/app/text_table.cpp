#include "app/text_table.h"

#include <algorithm>
#include <numeric>

#include "app/terminal_width.h"

namespace linewatch::app {

namespace {

constexpr std::size_t kGap = 2;
/// The columns that the cells beside the first one have at least. A wider first cell has lines of its own.
constexpr std::size_t kNarrowestCell = 16;

/// With fewer columns nothing is indented.
constexpr std::size_t kNarrowestIndented = 8;

using TableRow = std::vector<TableCell>;

std::string paintedCell(const TableCell& cell, const TerminalStyle& style) {
  if (!cell.painted.empty()) return cell.painted;
  return cell.isFaint && !cell.text.empty() ? terminalFaint(cell.text, style) : cell.text;
}

std::vector<std::size_t> columnWidths(const std::vector<TableRow>& rows) {
  std::vector<std::size_t> widths;
  for (const TableRow& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], terminalWidth(row[i].text));
  }
  // A column that is empty in every row takes no room.
  return widths;
}

std::string alignedRow(const TableRow& row, const std::vector<std::size_t>& widths,
                       const TerminalStyle& style) {
  std::string line;
  std::size_t pending = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (widths[i] == 0) continue;
    if (!row[i].text.empty()) {
      line.append(pending, ' ').append(paintedCell(row[i], style));
      pending = 0;
    }
    pending += widths[i] - terminalWidth(row[i].text) + kGap;
  }
  return line + "\n";
}

/// The lines of a cell in so many columns.
std::vector<std::string> linesOf(const TableCell& cell, std::size_t columns, const TerminalStyle& style) {
  if (terminalWidth(cell.text) <= columns) return {paintedCell(cell, style)};
  std::vector<std::string> lines = wrapped(cell.text, columns);
  if (cell.isFaint) {
    for (std::string& line : lines) line = terminalFaint(line, style);
  }
  return lines;
}

std::string stackedRow(const TableRow& row, std::size_t firstColumn, const TerminalStyle& style) {
  const bool isBeside = firstColumn == 0 || firstColumn + kGap + kNarrowestCell <= style.columns;
  const std::size_t below = style.columns < kNarrowestIndented ? 0 : kGap;
  const std::size_t indent = firstColumn == 0 ? 0 : isBeside ? firstColumn + kGap : below;
  std::string text;
  // The columns of the line that are used.
  std::size_t used = 0;
  for (const std::string& line : linesOf(row.front(), style.columns, style)) {
    if (row.front().text.empty()) break;
    if (!text.empty()) text += '\n';
    text += line;
    used = terminalWidth(row.front().text);
  }
  if (!isBeside && !text.empty()) text += '\n';
  if (!isBeside) used = 0;
  for (std::size_t i = 1; i < row.size(); ++i) {
    if (row[i].text.empty()) continue;
    for (const std::string& line : linesOf(row[i], style.columns - std::min(style.columns, indent), style)) {
      text.append(indent - std::min(indent, used), ' ').append(line).append("\n");
      used = 0;
    }
  }
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

}  // namespace

std::string textTable(const std::vector<std::vector<TableCell>>& rows, const TerminalStyle& style) {
  const std::vector<std::size_t> widths = columnWidths(rows);
  const auto shown =
      static_cast<std::size_t>(std::ranges::count_if(widths, [](auto width) { return width > 0; }));
  const std::size_t whole = std::accumulate(widths.begin(), widths.end(), std::size_t{0}) +
                            kGap * (shown - std::min<std::size_t>(shown, 1));
  std::string text;
  for (const TableRow& row : rows) {
    text += style.columns == 0 || whole <= style.columns ? alignedRow(row, widths, style)
                                                         : stackedRow(row, widths.front(), style);
  }
  return text;
}

std::string paragraph(const std::string& text, std::size_t indent, const TerminalStyle& style) {
  if (style.columns == 0) return text + "\n";
  std::string lines;
  // The first line has the room of the others, so that it too may begin with the indentation.
  const std::size_t lead = std::min(text.find_first_not_of(' '), text.size());
  for (const std::string& line : wrapped(text, style.columns - std::min(style.columns - 1, indent))) {
    lines.append(lines.empty() ? lead : indent, ' ').append(line).append("\n");
  }
  return lines;
}

}  // namespace linewatch::app
