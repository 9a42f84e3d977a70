#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ui/layout/constraint_system.h"

namespace linewatch::ui {

/// x[first] - x[second] + constant, related to 0; variable 0 is the fixed point 0.
struct Difference {
  int first = 1;
  int second = 0;
  int constant = 0;
  Relation relation = Relation::equal;
  double priority = kRequiredPriority;
  std::uint64_t order = 0;
};

/// A constraint system and a model that finds its solution by a search of all points. Both get the same
/// edits.
class ModelledSystem {
 public:
  using Id = ConstraintSystem::Id;
  /// Gives a number between `low` and `high`, both included.
  using Choice = std::function<int(int low, int high)>;

  explicit ModelledSystem(Choice choose) : choose_(std::move(choose)) {
    for (int i = 0; i < kVariables; ++i) system_.addVariable();
  }

  /// Adds or removes a constraint, or changes its constant.
  void edit() {
    const int what = choose_(0, 9);
    if (what < 5 || live_.empty()) return add();
    const auto place = std::next(live_.begin(), choose_(0, static_cast<int>(live_.size()) - 1));
    if (what < 7) {
      system_.remove(place->first);
      live_.erase(place);
    } else {
      place->second.constant = choose_(-kLargestConstant, kLargestConstant);
      system_.setConstant(place->first, place->second.constant);
    }
  }

  /// Solves; says how the solution differs from the model's, empty when it does not.
  std::string solveAndCompare() {
    system_.solve();
    std::vector<Id> actual = system_.leftOut();
    std::sort(actual.begin(), actual.end());
    if (actual != leftOutOfModel()) return "other constraints are left out";
    Point x{};
    for (ConstraintSystem::Variable i = 0; i < kVariables; ++i) x[i + 1] = system_.value(i);
    for (const Difference& each : kept_) {
      if (each.priority == kRequiredPriority && missBy(each, x) > kTolerance)
        return "a required constraint does not hold";
    }
    const Violations best = bestViolations(), actualSums = violations(x);
    for (std::size_t level = 0; level < best.size(); ++level) {
      if (std::fabs(actualSums[level] - best[level]) > kTolerance)
        return "violated by " + std::to_string(actualSums[level]) + ", at best by " +
               std::to_string(best[level]);
    }
    return {};
  }

 private:
  /// The sums at the high and at the low priority.
  using Violations = std::array<double, 2>;
  /// The values of the fixed point and the variables.
  using Point = std::array<double, 4>;

  static constexpr int kVariables = 3;
  static constexpr int kLargestConstant = 2;
  static constexpr double kTolerance = 1e-6;

  static double missBy(const Difference& each, const Point& x) {
    const double sum = x[each.first] - x[each.second] + each.constant;
    if (each.relation == Relation::equal) return std::fabs(sum);
    return std::max(0.0, each.relation == Relation::lessThanOrEqual ? sum : -sum);
  }

  // Difference constraints are satisfiable if and only if their graph has no negative cycle.
  static bool canHold(const std::vector<Difference>& differences) {
    std::vector<int> distance(kVariables + 1, 0);
    for (int round = 0; round <= kVariables + 1; ++round) {
      bool changed = false;
      const auto relax = [&](int from, int to, int length) {
        if (distance[from] + length >= distance[to]) return;
        distance[to] = distance[from] + length;
        changed = true;
      };
      for (const Difference& each : differences) {
        if (each.relation != Relation::greaterThanOrEqual) relax(each.second, each.first, -each.constant);
        if (each.relation != Relation::lessThanOrEqual) relax(each.first, each.second, each.constant);
      }
      if (!changed) return true;
    }
    return false;
  }

  Violations violations(const Point& x) const {
    Violations sums{};
    for (const Difference& each : kept_) {
      if (each.priority < kRequiredPriority) sums[each.priority == kHighPriority ? 0 : 1] += missBy(each, x);
    }
    return sums;
  }

  void add() {
    Difference made;
    made.first = choose_(1, kVariables);
    made.second = choose_(0, kVariables - 1);
    if (made.second >= made.first) ++made.second;
    made.constant = choose_(-kLargestConstant, kLargestConstant);
    made.relation = static_cast<Relation>(choose_(0, 2));
    constexpr double kPriorities[] = {kRequiredPriority, kRequiredPriority, kHighPriority, kLowPriority};
    made.priority = kPriorities[choose_(0, 3)];
    made.order = ++order_;
    LinearConstraint linear;
    linear.addTerm(static_cast<ConstraintSystem::Variable>(made.first - 1), 1);
    if (made.second > 0) linear.addTerm(static_cast<ConstraintSystem::Variable>(made.second - 1), -1);
    linear.constant = made.constant;
    linear.relation = made.relation;
    linear.priority = made.priority;
    linear.order = made.order;
    live_[system_.add(linear)] = made;
  }

  // Required constraints enter in their order; each is left out if it contradicts earlier ones.
  std::vector<Id> leftOutOfModel() {
    std::vector<std::pair<Id, Difference>> ordered(live_.begin(), live_.end());
    std::sort(ordered.begin(), ordered.end(),
              [](const auto& a, const auto& b) { return a.second.order < b.second.order; });
    std::vector<Difference> required;
    std::vector<Id> leftOut;
    kept_.clear();
    for (const auto& [id, each] : ordered) {
      if (each.priority == kRequiredPriority) {
        required.push_back(each);
        if (!canHold(required)) {
          required.pop_back();
          leftOut.push_back(id);
          continue;
        }
      }
      kept_.push_back(each);
    }
    std::sort(leftOut.begin(), leftOut.end());
    return leftOut;
  }

  bool requiredHoldAt(const Point& x) const {
    return std::all_of(kept_.begin(), kept_.end(), [&](const Difference& each) {
      return each.priority < kRequiredPriority || missBy(each, x) == 0;
    });
  }

  /// The violations of the best solution, which is among the whole numbers.
  Violations bestViolations() const {
    constexpr int kFarthest = kLargestConstant * kVariables;
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    Violations best{kEndless, kEndless};
    Point x{};
    for (x[1] = -kFarthest; x[1] <= kFarthest; ++x[1]) {
      for (x[2] = -kFarthest; x[2] <= kFarthest; ++x[2]) {
        for (x[3] = -kFarthest; x[3] <= kFarthest; ++x[3]) {
          if (requiredHoldAt(x)) best = std::min(best, violations(x));
        }
      }
    }
    return best;
  }

  Choice choose_;
  ConstraintSystem system_;
  std::map<Id, Difference> live_;
  /// The required constraints that are not left out, in order.
  std::vector<Difference> kept_;
  std::uint64_t order_ = 0;
};

}  // namespace linewatch::ui
