#include "shared/shared_text.h"

#include <gtest/gtest.h>

namespace linewatch {
namespace {

struct Owner {
  OptionalText text;
};

TEST(SharedText, KeepsWhatItIsAPartOf) {
  auto owner = std::make_shared<const Owner>(Owner{"Strike until the evening"});
  const std::weak_ptr<const Owner> watch = owner;
  {
    const SharedText text = SharedText::partOf(owner, owner->text);
    const SharedText copy = text;
    EXPECT_EQ(&*copy, &owner->text);
    owner = nullptr;
    EXPECT_EQ(*copy, "Strike until the evening");
  }
  EXPECT_TRUE(watch.expired());
}

TEST(SharedText, IsEqualByWhatItSays) {
  const auto owner = std::make_shared<const Owner>(Owner{"Delays"});
  const SharedText part = SharedText::partOf(owner, owner->text);
  EXPECT_EQ(part, SharedText("Delays"));
  EXPECT_NE(part, SharedText("Delay"));
  EXPECT_EQ(SharedText(), SharedText(std::nullopt));
  EXPECT_NE(SharedText(), SharedText(""));
}

}  // namespace
}  // namespace linewatch
