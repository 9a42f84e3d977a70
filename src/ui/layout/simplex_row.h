#pragma once

#include <cstdint>
#include <vector>

namespace linewatch::ui {

/// What smaller coefficients are rounding errors.
inline constexpr double kCoefficientTolerance = 1e-9;

/// One term of a row: a symbol of the solver times a coefficient.
struct SimplexTerm {
  std::uint32_t symbol = 0;
  double coefficient = 0;
};

/// `constant` plus the sum of the terms, which are sorted by symbol and none of which is 0. Storage is kept
/// when a row is cleared, so that rows in use allocate nothing.
class SimplexRow {
 public:
  double constant = 0;

  const std::vector<SimplexTerm>& terms() const { return terms_; }
  /// 0 for a symbol that has no term.
  double coefficientOf(std::uint32_t symbol) const;

  void clear();
  void add(std::uint32_t symbol, double coefficient);
  /// Adds `factor` times `other`; `scratch` is storage that is shared by all rows.
  void add(const SimplexRow& other, double factor, std::vector<SimplexTerm>& scratch);
  void scale(double factor);
  void remove(std::uint32_t symbol);
  /// Puts `replacement` in the place of the symbol; false when the row does not have it.
  bool substitute(std::uint32_t symbol, const SimplexRow& replacement, std::vector<SimplexTerm>& scratch);
  /// Where the row stands for `basic`: turns `basic = row` into `symbol = row`.
  void solveFor(std::uint32_t basic, std::uint32_t symbol);
  /// Where the row is 0: turns it into `symbol = row`.
  void solveFor(std::uint32_t symbol);

 private:
  std::vector<SimplexTerm> terms_;
};

}  // namespace linewatch::ui
