#include "shared/failure.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(Failure, KeepsItsCodeWithinALargerThing) {
  Error error = failure(FailureCode::malformed, "routes.txt", "line 3", "a quote is not closed");
  error.info.emplace("more", 7);
  const Error whole = within("feed Metro", error);
  EXPECT_EQ(sentenceOf(whole), "feed Metro: routes.txt: line 3: a quote is not closed");
  EXPECT_EQ(failureCodeOf(whole), FailureCode::malformed);
  EXPECT_EQ(whole.info.at("more"), Value(7));
  EXPECT_EQ(sentenceOf(failure("", "here", "")), "here");
}

TEST(Failure, AnErrorOfAnotherDomainHasNoCodeOfOurs) {
  const Error error{"Transit", static_cast<std::int64_t>(FailureCode::notFound), {}};
  EXPECT_EQ(failureCodeOf(error), FailureCode::other);
  EXPECT_EQ(sentenceOf(error), "Transit 2");
}

TEST(Failure, SystemErrorsHaveCodes) {
  const auto codeOf = [](int number) { return failureCodeOf({number, std::generic_category()}); };
  EXPECT_EQ(codeOf(ENOENT), FailureCode::notFound);
  EXPECT_EQ(codeOf(EACCES), FailureCode::denied);
  EXPECT_EQ(codeOf(ENOSPC), FailureCode::full);
  EXPECT_EQ(failureCodeOf({EROFS, std::system_category()}), FailureCode::readOnly);
  EXPECT_EQ(codeOf(EINVAL), FailureCode::other);
}

}  // namespace
}  // namespace linewatch
