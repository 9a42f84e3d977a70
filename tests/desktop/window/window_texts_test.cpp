#include "desktop/window/window_texts.h"

#include <gtest/gtest.h>

namespace linewatch::desktop {
namespace {

TEST(WindowTextsTest, IsolatesTextsInRightToLeftLanguages) {
  const WindowTexts english(*UserLocale::parse("en"));
  EXPECT_EQ(english("UnknownLine", {"7"}), "Unknown line 7");
  const WindowTexts arabic(*UserLocale::parse("ar"));
  EXPECT_EQ(arabic("UnknownLine", {"7"}), QString::fromUtf8("\u2068خط غير معروف \u20687\u2069\u2069"));
  EXPECT_EQ(arabic("Title"), "LineWatch") << "titles are shown by the window manager";
}

}  // namespace
}  // namespace linewatch::desktop
