#include "app/line_table.h"

#include <map>

#include "app/text_table.h"
#include "feeds/gtfs/line_records.h"
#include "machine/terminal_line.h"

namespace linewatch::app {

namespace {

TableCell shieldCell(const TransitArtworkDataSource& artwork, const TerminalStyle& style) {
  return {.text = terminalShield(artwork, {}), .painted = terminalShield(artwork, style)};
}

}  // namespace

std::string lineTable(const std::vector<FoundLine>& lines, const TerminalStyle& style,
                      const std::vector<std::string>& notes) {
  std::map<const LineIndex*, LineRecords> records;  // looked up only, never walked
  std::vector<std::vector<TableCell>> rows;
  for (const FoundLine& line : lines) {
    auto& ofFeed = records.try_emplace(line.index.get(), line.index).first->second;
    const SharedArtwork artwork = ofFeed.lineFieldsOfRoute(line.route)->artwork;
    const std::string note = rows.size() < notes.size() ? notes[rows.size()] : "";
    rows.push_back({artwork ? shieldCell(*artwork, style) : TableCell{},
                    {.text = terminalLine(line.longName())},
                    {.text = terminalLine(line.agencyName())},
                    {.text = terminalLine(line.index->feedName() + ":" + line.entry().id), .isFaint = true},
                    {.text = terminalLine(note)}});
  }
  return textTable(rows, style);
}

}  // namespace linewatch::app
