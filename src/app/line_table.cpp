#include "app/line_table.h"

#include <algorithm>
#include <map>

#include "feeds/gtfs/line_records.h"
#include "machine/terminal_line.h"

namespace linewatch::app {

namespace {

struct Row {
  std::string shield;
  std::size_t shieldWidth = 0;
  std::string name;
  std::string agency;
  std::string id;
};

std::vector<Row> rowsOf(const std::vector<FoundLine>& lines, const TerminalStyle& style) {
  std::map<const LineIndex*, LineRecords> records;  // looked up only, never walked
  std::vector<Row> rows;
  for (const FoundLine& line : lines) {
    auto& ofFeed = records.try_emplace(line.index.get(), line.index).first->second;
    Row row{.name = terminalLine(line.longName()),
            .agency = terminalLine(line.agencyName()),
            .id = terminalLine(line.index->feedName() + ":" + line.entry().id)};
    if (const SharedArtwork& artwork = ofFeed.lineFieldsOfRoute(line.route)->artwork) {
      row.shield = terminalShield(*artwork, style);
      row.shieldWidth = terminalShieldWidth(*artwork);
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string padded(const std::string& text, std::size_t width, std::size_t column) {
  return text + std::string(column - std::min(column, width), ' ') + "  ";
}

}  // namespace

std::string lineTable(const std::vector<FoundLine>& lines, const TerminalStyle& style) {
  const std::vector<Row> rows = rowsOf(lines, style);
  std::size_t shieldColumn = 0;
  std::size_t nameColumn = 0;
  std::size_t agencyColumn = 0;
  for (const Row& row : rows) {
    shieldColumn = std::max(shieldColumn, row.shieldWidth);
    nameColumn = std::max(nameColumn, terminalWidth(row.name));
    agencyColumn = std::max(agencyColumn, terminalWidth(row.agency));
  }
  std::string text;
  for (const Row& row : rows) {
    text += padded(row.shield, row.shieldWidth, shieldColumn) +
            padded(row.name, terminalWidth(row.name), nameColumn) +
            padded(row.agency, terminalWidth(row.agency), agencyColumn) + terminalFaint(row.id, style) + "\n";
  }
  return text;
}

}  // namespace linewatch::app
