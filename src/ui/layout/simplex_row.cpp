#include "ui/layout/simplex_row.h"

#include <algorithm>
#include <cmath>

namespace linewatch::ui {

namespace {

bool isNothing(double coefficient) { return std::fabs(coefficient) < kCoefficientTolerance; }

auto placeOf(auto& terms, std::uint32_t symbol) {
  return std::lower_bound(terms.begin(), terms.end(), symbol,
                          [](const SimplexTerm& term, std::uint32_t wanted) { return term.symbol < wanted; });
}

}  // namespace

double SimplexRow::coefficientOf(std::uint32_t symbol) const {
  const auto place = placeOf(terms_, symbol);
  return place != terms_.end() && place->symbol == symbol ? place->coefficient : 0;
}

void SimplexRow::clear() {
  constant = 0;
  terms_.clear();
}

void SimplexRow::add(std::uint32_t symbol, double coefficient) {
  const auto place = placeOf(terms_, symbol);
  if (place == terms_.end() || place->symbol != symbol) {
    if (!isNothing(coefficient)) terms_.insert(place, {symbol, coefficient});
    return;
  }
  place->coefficient += coefficient;
  if (isNothing(place->coefficient)) terms_.erase(place);
}

void SimplexRow::add(const SimplexRow& other, double factor, std::vector<SimplexTerm>& scratch) {
  constant += factor * other.constant;
  scratch.clear();
  auto mine = terms_.begin();
  for (const SimplexTerm& term : other.terms_) {
    while (mine != terms_.end() && mine->symbol < term.symbol) scratch.push_back(*mine++);
    double coefficient = factor * term.coefficient;
    if (mine != terms_.end() && mine->symbol == term.symbol) coefficient += (mine++)->coefficient;
    if (!isNothing(coefficient)) scratch.push_back({term.symbol, coefficient});
  }
  scratch.insert(scratch.end(), mine, terms_.end());
  terms_.swap(scratch);
}

void SimplexRow::scale(double factor) {
  constant *= factor;
  for (SimplexTerm& term : terms_) term.coefficient *= factor;
}

void SimplexRow::remove(std::uint32_t symbol) {
  const auto place = placeOf(terms_, symbol);
  if (place != terms_.end() && place->symbol == symbol) terms_.erase(place);
}

bool SimplexRow::substitute(std::uint32_t symbol, const SimplexRow& replacement,
                            std::vector<SimplexTerm>& scratch) {
  const auto place = placeOf(terms_, symbol);
  if (place == terms_.end() || place->symbol != symbol) return false;
  const double coefficient = place->coefficient;
  terms_.erase(place);
  add(replacement, coefficient, scratch);
  return true;
}

void SimplexRow::solveFor(std::uint32_t basic, std::uint32_t symbol) {
  add(basic, -1);
  solveFor(symbol);
}

void SimplexRow::solveFor(std::uint32_t symbol) {
  const double coefficient = coefficientOf(symbol);
  remove(symbol);
  scale(-1 / coefficient);
}

}  // namespace linewatch::ui
