#pragma once

#include <cstddef>
#include <vector>

namespace linewatch::ui {

/// The heights of a table's rows, most of them guesses, and the sums that turn a place into a row and back.
/// Changing one height and both questions cost the logarithm of the number of rows.
class RowHeights {
 public:
  /// Forgets all rows.
  void assign(const std::vector<double>& heights);
  std::size_t count() const { return heights_.size(); }
  double heightOf(std::size_t row) const { return heights_[row]; }
  void setHeight(std::size_t row, double height);
  /// Where the row begins; the end of all rows for the row after the last.
  double offsetOf(std::size_t row) const;
  double total() const { return offsetOf(count()); }
  /// The row that holds the offset; the first or last one outside of all; 0 without rows.
  std::size_t rowAt(double offset) const;

 private:
  std::vector<double> heights_;
  /// A Fenwick tree: the entry at i + 1 sums the rows up to i from i + 1 less its lowest bit.
  std::vector<double> sums_;
};

}  // namespace linewatch::ui
