#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "list/transit_list_item.h"
#include "platform/transit_line.h"
#include "shared/hash_index.h"

namespace linewatch {

/// Lines that the lists below name, in the order in which they list an incident; the records live as long as
/// the build that names them.
using LinesOfRow = std::vector<const TransitLineItem*>;

/// For each row, every line that lists its incident, in the order of the lines. Rows that are equal share one
/// entry: the map is by value, and the rows' positions are short cuts into it.
///
/// A line more costs a few bytes and no memory of its own, as one incident may be listed by every line. Rows
/// and lines are known by address: who adds them keeps them.
class ItemToLinesMap {
 public:
  /// Makes room for as many rows.
  void reserve(std::size_t rowCount);
  /// Adds the next row, made under `line`.
  void addRow(const RVTransitItem& item, const TransitLineItem& line);
  /// Adds a line to those of the row's entry.
  void addLine(std::size_t row, const TransitLineItem& line) { append(entries_[entryOfRow_[row]], line); }

  /// Entries are counted from 0 in the order in which their items first came; one that was replaced keeps its
  /// number, with no lines.
  std::size_t entryCount() const { return entries_.size(); }
  std::size_t entryOfRow(std::size_t row) const { return entryOfRow_[row]; }
  std::size_t lineCount(std::size_t entry) const { return entries_[entry].lineCount; }
  LinesOfRow linesOfEntry(std::size_t entry) const;
  template <class Visit>
  void forEachLine(std::size_t entry, Visit visit) const {
    const Entry& found = entries_[entry];
    if (found.lineCount > 0) visit(*found.firstLine);
    for (std::uint32_t next = found.secondLine; next != kNone; next = furtherLines_[next].next)
      visit(*furtherLines_[next].line);
  }
  const RVTransitItem& itemOfEntry(std::size_t entry) const { return *entries_[entry].item; }
  /// The position of the first row that is equal to the entry's item.
  std::size_t firstRowOfEntry(std::size_t entry) const { return entries_[entry].firstRow; }

  /// Takes the entry out and enters `item` with the same lines, in place of an entry that is there under it.
  /// The entry's first row becomes a row of `item`; the item that it was before, `former`, is kept.
  void replaceItem(std::size_t entry, SharedTransitItem former, const RVTransitItem& item);

 private:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  /// A line after an entry's first.
  struct FurtherLine {
    const TransitLineItem* line;
    std::uint32_t next;
  };
  struct Entry {
    const RVTransitItem* item;
    std::uint32_t firstRow;
    std::uint32_t lineCount = 0;
    const TransitLineItem* firstLine = nullptr;
    std::uint32_t secondLine = kNone;
    std::uint32_t lastLine = kNone;
  };

  void append(Entry& entry, const TransitLineItem& line);
  /// The item's entry, made without lines when there is none.
  std::uint32_t enter(const RVTransitItem& item, std::uint32_t row);

  std::vector<Entry> entries_;
  std::vector<FurtherLine> furtherLines_;
  std::vector<std::uint32_t> entryOfRow_;
  TransitItems formerItems_;
  HashIndex entryByItem_;
};

}  // namespace linewatch
