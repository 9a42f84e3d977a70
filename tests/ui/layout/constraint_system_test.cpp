#include "ui/layout/constraint_system.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace linewatch::ui {
namespace {

using Id = ConstraintSystem::Id;

constexpr int kVariables = 3;
constexpr int kLargestConstant = 2;

/// x[first] - x[second] + constant, related to 0; variable 0 is the fixed point 0.
struct Difference {
  int first = 1;
  int second = 0;
  int constant = 0;
  Relation relation = Relation::equal;
  double priority = kRequiredPriority;
  std::uint64_t order = 0;
};

double missBy(const Difference& each, const std::vector<double>& x) {
  const double sum = x[each.first] - x[each.second] + each.constant;
  if (each.relation == Relation::equal) return std::fabs(sum);
  return std::max(0.0, each.relation == Relation::lessThanOrEqual ? sum : -sum);
}

// Difference constraints are satisfiable if and only if their graph has no negative cycle.
bool canHold(const std::vector<Difference>& differences) {
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

/// The violations per priority, highest first, of the best solution. It is among the whole numbers.
std::map<double, double, std::greater<>> violations(const std::vector<Difference>& all,
                                                    const std::vector<double>& x) {
  std::map<double, double, std::greater<>> sums;
  for (const Difference& each : all) {
    if (each.priority < kRequiredPriority) sums[each.priority] += missBy(each, x);
  }
  return sums;
}

class RandomSystem {
 public:
  explicit RandomSystem(unsigned seed) : random_(seed) {
    for (int i = 0; i < kVariables; ++i) system_.addVariable();
  }

  void edit() {
    const int what = number(0, 9);
    if (what < 5 || live_.empty()) return add();
    const auto place = std::next(live_.begin(), number(0, static_cast<int>(live_.size()) - 1));
    if (what < 7) {
      system_.remove(place->first);
      live_.erase(place);
    } else {
      place->second.constant = number(-kLargestConstant, kLargestConstant);
      system_.setConstant(place->first, place->second.constant);
    }
  }

  void check() {
    system_.solve();
    std::vector<Id> expected = leftOutOfModel();
    std::vector<Id> actual = system_.leftOut();
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    ASSERT_EQ(actual, expected);
    std::vector<double> x{0};
    for (ConstraintSystem::Variable i = 0; i < kVariables; ++i) x.push_back(system_.value(i));
    for (const Difference& each : kept_) {
      if (each.priority < kRequiredPriority) continue;
      ASSERT_NEAR(missBy(each, x), 0, 1e-6);
    }
    const auto best = bestViolations();
    for (const auto& [priority, sum] : violations(kept_, x)) ASSERT_NEAR(sum, best.at(priority), 1e-6);
  }

 private:
  int number(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }

  void add() {
    Difference made;
    made.first = number(1, kVariables);
    do made.second = number(0, kVariables);
    while (made.second == made.first);
    made.constant = number(-kLargestConstant, kLargestConstant);
    made.relation = static_cast<Relation>(number(0, 2));
    constexpr double kPriorities[] = {kRequiredPriority, kRequiredPriority, kHighPriority, kLowPriority};
    made.priority = kPriorities[number(0, 3)];
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

  // In their order; each is left out if it contradicts earlier ones.
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
    return leftOut;
  }

  std::map<double, double, std::greater<>> bestViolations() const {
    constexpr int kFarthest = kLargestConstant * kVariables;
    std::optional<std::map<double, double, std::greater<>>> best;
    std::vector<double> x(kVariables + 1, 0);
    const std::function<void(int)> place = [&](int variable) {
      if (variable <= kVariables) {
        for (int i = -kFarthest; i <= kFarthest; ++i) {
          x[variable] = i;
          place(variable + 1);
        }
        return;
      }
      for (const Difference& each : kept_) {
        if (each.priority == kRequiredPriority && missBy(each, x) > 0) return;
      }
      auto sums = violations(kept_, x);
      const auto less = [](const auto& a, const auto& b) { return a.second < b.second; };
      if (!best || std::lexicographical_compare(sums.begin(), sums.end(), best->begin(), best->end(), less)) {
        best = std::move(sums);
      }
    };
    place(1);
    return best.value_or(std::map<double, double, std::greater<>>{});
  }

  std::mt19937 random_;
  ConstraintSystem system_;
  std::map<Id, Difference> live_;
  std::vector<Difference> kept_;
  std::uint64_t order_ = 0;
};

TEST(ConstraintSystem, AgreesWithASearchOfAllPointsAfterRandomEdits) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    RandomSystem system(seed);
    for (int step = 0; step < 20; ++step) {
      SCOPED_TRACE(testing::Message() << "step " << step);
      for (int edits = 0; edits <= step % 3; ++edits) system.edit();
      system.check();
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

LinearConstraint sizeIs(ConstraintSystem::Variable size, double length, double priority = kRequiredPriority,
                        Relation relation = Relation::equal, std::uint64_t order = 0) {
  LinearConstraint linear;
  linear.addTerm(size, 1);
  linear.constant = -length;
  linear.priority = priority;
  linear.relation = relation;
  linear.order = order;
  return linear;
}

TEST(ConstraintSystem, AHigherPriorityWinsHoweverLargeTheOtherIs) {
  ConstraintSystem system;
  const auto size = system.addVariable();
  system.add(sizeIs(size, 1, kHighPriority));
  for (int i = 0; i < 10; ++i) system.add(sizeIs(size, 1e6, kLowPriority));
  system.solve();
  EXPECT_NEAR(system.value(size), 1, 1e-6);
}

TEST(ConstraintSystem, OfEqualPrioritiesTheOneAddedLaterIsViolated) {
  ConstraintSystem system;
  const auto first = system.addVariable();
  const auto second = system.addVariable();
  LinearConstraint sum;
  sum.addTerm(first, 1);
  sum.addTerm(second, 1);
  sum.constant = -100;
  const Id total = system.add(sum);
  system.add(sizeIs(first, 70, kHighPriority, Relation::greaterThanOrEqual));
  system.add(sizeIs(second, 80, kHighPriority, Relation::greaterThanOrEqual));
  for (const double length : {100.0, 90.0, 120.0, 100.0}) {
    system.setConstant(total, -length);
    system.solve();
    EXPECT_NEAR(system.value(first), 70, 1e-6);
    EXPECT_NEAR(system.value(second), length - 70, 1e-6);
  }
}

TEST(ConstraintSystem, TheOneLeftOutDoesNotDependOnTheOrderOfAdding) {
  ConstraintSystem system;
  const auto size = system.addVariable();
  const Id younger = system.add(sizeIs(size, 20, kRequiredPriority, Relation::equal, 2));
  system.solve();
  const Id older = system.add(sizeIs(size, 10, kRequiredPriority, Relation::equal, 1));
  system.solve();
  EXPECT_EQ(system.leftOut(), std::vector<Id>{younger});
  EXPECT_NEAR(system.value(size), 10, 1e-6);
  system.setConstant(older, -20);
  system.solve();
  EXPECT_TRUE(system.leftOut().empty());
  system.remove(older);
  system.solve();
  EXPECT_NEAR(system.value(size), 20, 1e-6);
  EXPECT_FALSE(system.solve()) << "nothing has changed";
}

TEST(ConstraintSystem, VariablesMayBeAddedLate) {
  ConstraintSystem system;
  const auto first = system.addVariable();
  system.add(sizeIs(first, 10, kRequiredPriority, Relation::equal, 1));
  system.solve();
  for (int i = 0; i < 3; ++i) {
    const auto late = system.addVariable();
    system.add(sizeIs(late, 20 + i, kRequiredPriority, Relation::equal, 2));
    const Id contradiction = system.add(sizeIs(first, 11, kRequiredPriority, Relation::equal, 3));
    system.solve();
    EXPECT_EQ(system.leftOut(), std::vector<Id>{contradiction});
    EXPECT_NEAR(system.value(first), 10, 1e-6);
    EXPECT_NEAR(system.value(late), 20 + i, 1e-6);
    system.remove(contradiction);
  }
}

/// Boxes side by side, each as narrow as its content allows.
struct Shelf {
  explicit Shelf(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      sizes.push_back(system.addVariable());
      ends.push_back(system.addVariable());
      LinearConstraint end;
      end.addTerm(ends.back(), 1);
      end.addTerm(sizes.back(), -1);
      if (i > 0) end.addTerm(ends[i - 1], -1);
      system.add(end);
      contents.push_back(
          system.add(sizeIs(sizes.back(), 10, kRequiredPriority, Relation::greaterThanOrEqual)));
      system.add(sizeIs(sizes.back(), 0, kLowPriority));
    }
    system.solve();
  }
  double end() {
    system.solve();
    return system.value(ends.back());
  }

  ConstraintSystem system;
  std::vector<ConstraintSystem::Variable> sizes, ends;
  std::vector<Id> contents;
};

TEST(ConstraintSystem, SolvesOnlyTheChanges) {
  Shelf shelf(100);
  EXPECT_NEAR(shelf.end(), 1000, 1e-6);
  for (std::size_t i = 0; i < 100; ++i) {
    shelf.system.setConstant(shelf.contents[i], -20);
    EXPECT_NEAR(shelf.end(), 1010, 1e-6);
    shelf.system.setConstant(shelf.contents[i], -10);
    const Id widened =
        shelf.system.add(sizeIs(shelf.sizes[i], 35, kRequiredPriority, Relation::greaterThanOrEqual));
    EXPECT_NEAR(shelf.end(), 1025, 1e-6);
    shelf.system.remove(widened);
    EXPECT_NEAR(shelf.end(), 1000, 1e-6);
  }
  EXPECT_EQ(shelf.system.fullSolves(), 0U);
}

TEST(ConstraintSystem, RedundantConstraintsMayChangeTogether) {
  ConstraintSystem system;
  const auto size = system.addVariable();
  const Id one = system.add(sizeIs(size, 10));
  const Id same = system.add(sizeIs(size, 10));
  system.solve();
  system.setConstant(one, -30);
  system.setConstant(same, -30);
  system.solve();
  EXPECT_TRUE(system.leftOut().empty());
  EXPECT_NEAR(system.value(size), 30, 1e-6);
  system.remove(one);
  system.solve();
  EXPECT_NEAR(system.value(size), 30, 1e-6) << "the redundant constraint still holds";
}

}  // namespace
}  // namespace linewatch::ui
