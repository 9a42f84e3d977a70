#include "companion/companion_session.h"

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(CompanionSession, IsAddedToURLsAfterItWasShared) {
  CompanionSession session;
  const std::string identifier = session.snapshot().sessionIdentifier;
  EXPECT_EQ(session.sharedSessionPunchOutURL("rova://?t=r").absoluteString, "rova://?t=r");
  EXPECT_EQ(session.sharedSessionPunchOutUserInfo({{"bs", 1}}), (Dictionary{{"bs", 1}}));
  session.sessionEntity(true, false);
  EXPECT_EQ(session.snapshot().sessionIdentifier, identifier);
  EXPECT_EQ(session.sharedSessionPunchOutUserInfo({{"bs", 1}}),
            (Dictionary{{"bs", 1}, {"sessionIdentifier", identifier}}));

  const std::string parameter = "session=" + identifier;
  const std::pair<std::string, std::string> rows[] = {
      {"rova://?t=r", "rova://?t=r&" + parameter},
      {"rova://favorites", "rova://favorites?" + parameter},
      {"rova://favorites?", "rova://favorites?" + parameter},
      {"rova://a?b=c#d?e", "rova://a?b=c&" + parameter + "#d?e"},
      {"rova://a?session=old&b=c&session&sessions=1", "rova://a?b=c&sessions=1&" + parameter},
      {"https://example.org/?t=r", "https://example.org/?t=r"},
      {"rovarova://a", "rovarova://a"},
      {"", ""},
  };
  for (const auto& [given, expected] : rows) {
    const std::string once = session.sharedSessionPunchOutURL(given).absoluteString;
    EXPECT_EQ(once, expected);
    EXPECT_EQ(session.sharedSessionPunchOutURL(once).absoluteString, expected);
  }
}

TEST(CompanionSession, IdentifiersDifferBetweenRunsAndAfterAReset) {
  CompanionSession session;
  const std::string first = session.snapshot().sessionIdentifier;
  EXPECT_EQ(first.size(), 32U);
  EXPECT_NE(first, CompanionSession().snapshot().sessionIdentifier);
  session.sessionEntity(true, true);
  EXPECT_NE(first, session.snapshot().sessionIdentifier);
}

}  // namespace
}  // namespace linewatch
