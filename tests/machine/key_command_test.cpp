#include "machine/key_command.h"

#include <chrono>
#include <cstdlib>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string keyOrSentence(const std::string& command, std::stop_token stop = {}) {
  const auto key = keyFromCommand(command, stop);
  return key ? *key : sentenceOf(key.error());
}

TEST(KeyCommand, GivesTheFirstLineOfTheOutput) {
  EXPECT_EQ(keyOrSentence("printf 'a b\\r\\nsecond\\n'"), "a b");
  EXPECT_EQ(keyOrSentence("sh -c 'echo $0' 'two words'"), "two words");
  EXPECT_EQ(keyOrSentence("sh -c 'cat; echo end of input'"), "end of input");
}

TEST(KeyCommand, ErrorsNameOnlyTheProgram) {
  for (const auto& [command, words] : std::vector<std::pair<const char*, const char*>>{
           {"no-such-program s3cret", "\"no-such-program\": No such file"},
           {"sh -c 'echo s3cret; echo s3cret >&2; exit 3'",
            "\"sh\": it ended with status 3; run it yourself"},
           {"sh -c 'kill -9 $$'", "it was ended by signal 9"},
           {"true s3cret", "\"true\": it printed no key"},
           {"sh -c 'echo; echo s3cret'", "it printed no key"},
           {"cat /dev/zero", "\"cat\": it printed more than a key"},
           {"sh 's3cret", "a quote in it is not closed"}}) {
    EXPECT_THAT(keyOrSentence(command), AllOf(HasSubstr(words), Not(HasSubstr("s3cret")))) << command;
  }
}

TEST(KeyCommand, KillsAllItsProcessesAtTheTimeLimitAndOnRequest) {
  const TemporaryFolder folder;
  // The pipe stays open as long as the inner process lives.
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(std::system(("mkfifo " + pipe).c_str()), 0);
  const auto late = keyFromCommand("sh -c 'cat " + pipe + " & wait'", {}, std::chrono::milliseconds(50));
  ASSERT_FALSE(late);
  EXPECT_EQ(failureCodeOf(late.error()), FailureCode::timedOut);
  std::stop_source stop;
  stop.request_stop();
  EXPECT_THAT(keyOrSentence("cat " + pipe, stop.get_token()), HasSubstr("no longer wanted"));
}

}  // namespace
}  // namespace linewatch
