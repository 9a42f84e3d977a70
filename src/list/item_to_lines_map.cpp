#include "list/item_to_lines_map.h"

#include <algorithm>
#include <utility>

namespace linewatch {

void ItemToLinesMap::reserve(std::size_t rowCount) {
  entries_.reserve(rowCount);
  entryOfRow_.reserve(rowCount);
}

void ItemToLinesMap::addRow(const RVTransitItem& item, const TransitLineItem& line) {
  const std::uint32_t entry = enter(item, static_cast<std::uint32_t>(entryOfRow_.size()));
  append(entries_[entry], line);
  entryOfRow_.push_back(entry);
}

LinesOfRow ItemToLinesMap::linesOfEntry(std::size_t entry) const {
  LinesOfRow lines;
  lines.reserve(lineCount(entry));
  forEachLine(entry, [&](const TransitLineItem& line) { lines.push_back(&line); });
  return lines;
}

void ItemToLinesMap::replaceItem(std::size_t entry, SharedTransitItem former, const RVTransitItem& item) {
  formerItems_.push_back(std::move(former));
  const Entry replaced = entries_[entry];
  entries_[entry] = {replaced.item, replaced.firstRow};
  const std::uint32_t place = enter(item, replaced.firstRow);
  Entry& target = entries_[place];
  target = {target.item,         std::min(target.firstRow, replaced.firstRow),
            replaced.lineCount,  replaced.firstLine,
            replaced.secondLine, replaced.lastLine};
  entryOfRow_[replaced.firstRow] = place;
}

void ItemToLinesMap::append(Entry& entry, const TransitLineItem& line) {
  if (entry.lineCount++ == 0) {
    entry.firstLine = &line;
    return;
  }
  const auto added = static_cast<std::uint32_t>(furtherLines_.size());
  furtherLines_.push_back({&line, kNone});
  (entry.secondLine == kNone ? entry.secondLine : furtherLines_[entry.lastLine].next) = added;
  entry.lastLine = added;
}

std::uint32_t ItemToLinesMap::enter(const RVTransitItem& item, std::uint32_t row) {
  const auto search = entryByItem_.search(
      item.hash(), [&](std::uint32_t entry) { return entries_[entry].item->isEqual(item); });
  if (const auto known = search.place()) return *known;
  const auto added = static_cast<std::uint32_t>(entries_.size());
  entryByItem_.enter(search, added);
  entries_.push_back({&item, row});
  return added;
}

}  // namespace linewatch
