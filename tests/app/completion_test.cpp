#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program_run.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// A user with two favourites of the sample city.
class CompletionTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(runProgram({"--state-dir", state(), "favorites", "add", "M1", "7"}).status, 0);
  }

  std::string state() const { return (folder_.path() / "state").string(); }
  std::string completed(std::vector<std::string> words) const {
    words.insert(words.begin(), {"complete", "--state-dir", state()});
    const auto run = runProgram(words);
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors, IsEmpty());
    return run.output;
  }

  TemporaryFolder folder_;
};

TEST_F(CompletionTest, OffersCommandsAndOptions) {
  EXPECT_EQ(completed({"fa"}), "favorites\tList, add, remove or move favourite lines\n");
  EXPECT_THAT(completed({"feed", ""}),
              AllOf(StartsWith("list\t"), HasSubstr("\nfind\t"), HasSubstr("\nremove\t")));
  EXPECT_THAT(completed({"show", "--e"}), StartsWith("--expanded\t"));
  EXPECT_THAT(completed({"show", "--now", "fa"}), IsEmpty()) << "the value of an option";
  EXPECT_EQ(completed({"render", "--text-size", "XX"}), "XXL\nXXXL\n");
  EXPECT_THAT(completed({"open", ""}), IsEmpty()) << "the shell offers files";
}

TEST_F(CompletionTest, OffersTheNamesThatAreKnown) {
  EXPECT_THAT(completed({"favorites", "add", "M"}), AllOf(StartsWith("M1\t"), HasSubstr("\nM2\t")));
  EXPECT_THAT(completed({"favorites", "add", "sample:B1"}), HasSubstr("sample:B12\t"));
  EXPECT_THAT(completed({"favorites", "remove", ""}), AllOf(HasSubstr("sample:M1\t"), Not(HasSubstr("M2"))));
  EXPECT_THAT(completed({"settings", "text"}), StartsWith("text-size\t"));
  EXPECT_EQ(completed({"settings", "appearance", ""}), "auto\nlight\ndark\n");
}

}  // namespace
}  // namespace linewatch::app
