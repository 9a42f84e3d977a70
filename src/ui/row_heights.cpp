#include "ui/row_heights.h"

#include <algorithm>
#include <bit>

namespace linewatch::ui {

namespace {

std::size_t lowestBit(std::size_t number) { return number & (~number + 1); }

}  // namespace

void RowHeights::assign(const std::vector<double>& heights) {
  heights_ = heights;
  sums_.assign(heights.size() + 1, 0);
  for (std::size_t i = 1; i < sums_.size(); ++i) {
    sums_[i] += heights[i - 1];
    const std::size_t parent = i + lowestBit(i);
    if (parent < sums_.size()) sums_[parent] += sums_[i];
  }
}

void RowHeights::setHeight(std::size_t row, double height) {
  const double change = height - heights_[row];
  heights_[row] = height;
  for (std::size_t i = row + 1; i < sums_.size(); i += lowestBit(i)) sums_[i] += change;
}

double RowHeights::offsetOf(std::size_t row) const {
  double sum = 0;
  for (std::size_t i = row; i > 0; i -= lowestBit(i)) sum += sums_[i];
  return sum;
}

std::size_t RowHeights::rowAt(double offset) const {
  std::size_t row = 0;
  for (std::size_t step = std::bit_floor(std::max<std::size_t>(1, count())); step > 0; step /= 2) {
    if (row + step >= sums_.size() || sums_[row + step] > offset) continue;
    row += step;
    offset -= sums_[row];
  }
  return count() == 0 ? 0 : std::min(row, count() - 1);
}

}  // namespace linewatch::ui
