#pragma once

#include <cstdint>
#include <vector>

namespace linewatch::ui {

/// Smaller coefficients are rounding errors.
inline constexpr double kCoefficientTolerance = 1e-9;

/// One term of a row: a symbol of the solver times a coefficient.
struct SimplexTerm {
  std::uint32_t symbol = 0;
  double coefficient = 0;
};

/// `constant` plus the sum of the terms, which are sorted by symbol; no coefficient is 0. A cleared row keeps
/// its storage, so that a reused row need not allocate.
class SimplexRow {
 public:
  double constant = 0;

  const std::vector<SimplexTerm>& terms() const { return terms_; }
  /// 0 for a symbol without a term.
  double coefficientOf(std::uint32_t symbol) const;

  void clear();
  void add(std::uint32_t symbol, double coefficient);
  /// Adds `factor` times `other`; `scratch` is storage that all rows share.
  void add(const SimplexRow& other, double factor, std::vector<SimplexTerm>& scratch);
  void scale(double factor);
  void remove(std::uint32_t symbol);
  /// Substitutes `replacement` for the symbol; false when the row does not contain it.
  bool substitute(std::uint32_t symbol, const SimplexRow& replacement, std::vector<SimplexTerm>& scratch);
  /// Turns `basic = row` into `symbol = row`.
  void solveFor(std::uint32_t basic, std::uint32_t symbol);
  /// Turns `0 = row` into `symbol = row`.
  void solveFor(std::uint32_t symbol);

 private:
  std::vector<SimplexTerm> terms_;
};

}  // namespace linewatch::ui
