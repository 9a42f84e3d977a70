#pragma once

#include <cstddef>
#include <vector>

namespace linewatch::ui {

/// The heights of a table's rows and the offsets that follow from them. Changing a height, finding the offset
/// of a row and the row at an offset take time in proportion to the logarithm of the number of rows.
class RowHeights {
 public:
  /// Replaces all rows.
  void assign(const std::vector<double>& heights);
  std::size_t count() const { return heights_.size(); }
  double heightOf(std::size_t row) const { return heights_[row]; }
  void setHeight(std::size_t row, double height);
  /// The row's top. The row after the last one begins at the end of all rows.
  double offsetOf(std::size_t row) const;
  double total() const { return offsetOf(count()); }
  /// The row at the offset; the first or last row for an offset outside all rows; 0 without rows.
  std::size_t rowAt(double offset) const;

 private:
  std::vector<double> heights_;
  /// A Fenwick tree: the entry at i + 1 sums the rows up to i from i + 1 less its lowest bit.
  std::vector<double> sums_;
};

}  // namespace linewatch::ui
