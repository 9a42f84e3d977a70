#include "ui/row_heights.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace linewatch::ui {
namespace {

TEST(RowHeightsTest, OffsetsAreTheSumsOfHeights) {
  std::mt19937 random(3);
  std::vector<double> plain;
  for (int i = 0; i < 100; ++i) plain.push_back(std::uniform_int_distribution(0, 9)(random));
  RowHeights heights;
  heights.assign(plain);
  for (int i = 0; i < 200; ++i) {
    const std::size_t changed = random() % plain.size();
    plain[changed] = static_cast<double>(random() % 10);
    heights.setHeight(changed, plain[changed]);
    double offset = 0;
    for (std::size_t row = 0; row < plain.size(); ++row) {
      ASSERT_EQ(heights.offsetOf(row), offset);
      if (plain[row] > 0) {
        ASSERT_EQ(heights.rowAt(offset + plain[row] / 2), row);
      }
      offset += plain[row];
    }
    ASSERT_EQ(heights.total(), offset);
  }
  heights.assign({});
  EXPECT_EQ(heights.rowAt(5), 0U);
}

}  // namespace
}  // namespace linewatch::ui
