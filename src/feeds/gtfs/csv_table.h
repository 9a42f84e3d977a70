#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/gtfs/csv_reader.h"

namespace linewatch {

/// Comma-separated values whose first row names the columns. The text must outlive the table.
class CsvTable {
 public:
  /// The index of a column; for a column that the table does not have, the number of its columns.
  using Column = std::size_t;

  /// More than `mostRows` rows below the header are a fault.
  explicit CsvTable(std::string_view text, std::size_t mostRows = CsvReader::kMostRows);

  /// The first column of that name.
  Column column(std::string_view name) const;
  bool has(Column column) const { return column < names_.size(); }

  /// Goes to the next row; false at the end and at a fault.
  bool next() { return reader_.next(); }
  /// The row's value in that column; empty when the row or the table lacks it. Valid until the next call of
  /// `next`.
  std::string_view value(Column column) const;

  std::size_t line() const { return reader_.line(); }
  const std::optional<CsvReader::Fault>& fault() const { return reader_.fault(); }
  bool skipFault() { return reader_.skipFault(); }

 private:
  CsvReader reader_;
  std::vector<std::string> names_;
};

}  // namespace linewatch
