#include "feeds/gtfs/csv_table.h"

#include <algorithm>

namespace linewatch {

CsvTable::CsvTable(std::string_view text, std::size_t mostRows) : reader_(text, mostRows) {
  if (reader_.readHeader()) names_.assign(reader_.values().begin(), reader_.values().end());
}

CsvTable::Column CsvTable::column(std::string_view name) const {
  return static_cast<Column>(std::find(names_.begin(), names_.end(), name) - names_.begin());
}

std::string_view CsvTable::value(Column column) const {
  return has(column) && column < reader_.values().size() ? reader_.values()[column] : std::string_view();
}

}  // namespace linewatch
