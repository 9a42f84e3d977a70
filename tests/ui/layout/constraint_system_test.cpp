#include "ui/layout/constraint_system.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "ui/layout/modelled_system.h"

namespace linewatch::ui {
namespace {

using Id = ConstraintSystem::Id;

TEST(ConstraintSystem, AgreesWithASearchOfAllPointsAfterRandomEdits) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    ModelledSystem system([random = std::mt19937(seed)](int low, int high) mutable {
      return std::uniform_int_distribution(low, high)(random);
    });
    for (int step = 0; step < 20; ++step) {
      for (int edits = 0; edits <= step % 3; ++edits) system.edit();
      ASSERT_EQ(system.solveAndCompare(), "") << "step " << step;
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
