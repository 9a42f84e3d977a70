#include "machine/stderr_log.h"

#include <cstdlib>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

std::string written(bool isVerbose, const LogMessage& message) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = open_memstream(&text, &size);
  StderrLog(isVerbose, stream).write(message);
  std::fclose(stream);
  const std::unique_ptr<char, decltype(&std::free)> owned(text, &std::free);
  return {text, size};
}

TEST(StderrLog, WritesOtherLevelsOnlyWhenVerbose) {
  const LogMessage debug{LogLevel::debug, kLogCategory, "Received %lu of %{private}@.", {3U, "Ann"}};
  const LogMessage error{LogLevel::error, kLogCategory, "Lost %{private}@: %@", {"Ann", "why"}};
  EXPECT_EQ(written(false, debug), "");
  EXPECT_EQ(written(true, debug), "linewatch: Received 3 of Ann.\n");
  EXPECT_EQ(written(false, error), "linewatch: Lost <private>: why\n");
  EXPECT_EQ(written(true, error), "linewatch: Lost Ann: why\n");
}

TEST(StderrLog, WritesOneLineWithoutControlCharacters) {
  const LogMessage message{LogLevel::error, kLogCategory, "%@", {"a\nb\x1B[2J"}};
  EXPECT_EQ(written(false, message), "linewatch: a b [2J\n");
}

TEST(Log, WritesErrorsToStandardErrorWithoutAPlatform) {
  testing::internal::CaptureStderr();
  logDebug("Received %lu.", {3U});
  logError("Lost %{private}@: %@", {"Ann", "why"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "linewatch: Lost <private>: why\n");
}

}  // namespace
}  // namespace linewatch
