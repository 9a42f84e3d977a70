#include "feeds/http/response_header.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/http/http_fetcher.h"
#include "shared/failure.h"

namespace linewatch {
namespace {

const Date kNow{Seconds(1'700'000'000)};  // Tue, 14 Nov 2023 22:13:20 GMT

ResponseHeader headerOf(const std::string& lines, const std::string& status = "200 OK") {
  const auto header = parseResponseHeader("HTTP/1.1 " + status + "\r\n" + lines);
  EXPECT_TRUE(header);
  return header ? *header : ResponseHeader{};
}

TEST(ResponseHeader, ReadsFieldsInAnyCaseWithoutTheSpaceAroundThem) {
  const ResponseHeader header = headerOf(
      "ETAG:\"a: b\" \r\nlast-modified: \t Tue, 24 Nov 2026 08:00:00 GMT\r\nlocation:/x\n"
      "no field\r\nX-Other: y\r\n Etag: \"folded\"\r\nEtag: \"second\"\r\nContent-Length: 12");
  EXPECT_EQ(header.etag, "\"a: b\"");
  EXPECT_EQ(header.lastModified, "Tue, 24 Nov 2026 08:00:00 GMT");
  EXPECT_EQ(header.location, "/x");
  EXPECT_EQ(contentLength(header), 12U);
  EXPECT_EQ(contentLength({.contentLength = "12, 12"}), 12U);
  EXPECT_FALSE(contentLength({.contentLength = "12, 13"}));
  EXPECT_FALSE(contentLength({.contentLength = "-12"}));
}

TEST(ResponseHeader, DropsFieldsWithControlCharacters) {
  // Sent back as it came, such a validator would add a line to the next request.
  const ResponseHeader header = headerOf("ETag: \"a\rX-Key: b\"\r\nLast-Modified: \x7F\r\n");
  EXPECT_EQ(header.etag, "");
  EXPECT_EQ(header.lastModified, "");
}

TEST(ResponseHeader, NeedsAStatusLine) {
  EXPECT_EQ(parseResponseHeader("HTTP/2 204\r\n")->status, 204);
  for (const char* line : {"", "200 OK", "HTTP/1.1", "HTTP/1.1 ", "HTTP/1.1 20x", "HTTP/1.1 99",
                           "HTTP/1.1 600", "HTTP/1.1 -200", "HTTP/1.1 99999999999999999999", "ICY 200 OK"}) {
    const auto header = parseResponseHeader(line);
    ASSERT_FALSE(header) << line;
    EXPECT_EQ(failureCodeOf(header.error()), FailureCode::malformed);
  }
}

TEST(ResponseHeader, GivesMaxAge) {
  const std::optional<Seconds> kAbsent;
  struct Row {
    const char* lines;
    std::optional<Seconds> maxAge;
  };
  for (const Row& row : {
           Row{"", kAbsent},
           Row{"Cache-Control: public\r\n", kAbsent},
           Row{"Cache-Control: max-age=60\r\n", Seconds(60)},
           Row{"Cache-Control: public , Max-Age = \"60\"\r\n", Seconds(60)},
           Row{"Cache-Control: public\r\nCache-Control: max-age=60\r\n", Seconds(60)},
           Row{"Cache-Control: max-age=301\r\n", Seconds(300)},
           Row{"Cache-Control: max-age=99999999999999999999999\r\n", Seconds(300)},
           Row{"Cache-Control: max-age=60\r\nAge: 45\r\n", Seconds(15)},
           Row{"Cache-Control: max-age=60\r\nAge: 3600\r\n", Seconds(0)},
           Row{"Cache-Control: max-age=60\r\nAge: x\r\n", Seconds(60)},
           Row{"Cache-Control: max-age=600\r\nAge: 60\r\n", Seconds(300)},
           Row{"Cache-Control: max-age=-1\r\n", kAbsent},
           Row{"Cache-Control: max-age=\r\n", kAbsent},
           Row{"Cache-Control: max-age=6.5\r\n", kAbsent},
           Row{"Cache-Control: s-maxage=60\r\n", kAbsent},
           Row{"Cache-Control: max-age=60, no-cache\r\n", kAbsent},
           Row{"Cache-Control: No-Store, max-age=60\r\n", kAbsent},
       }) {
    EXPECT_EQ(maxAge(headerOf(row.lines)), row.maxAge) << row.lines;
  }
}

TEST(ResponseHeader, GivesRetryAfter) {
  const std::string date = "Date: Sun, 06 Nov 1994 08:49:37 GMT\r\n";
  struct Row {
    std::string lines;
    std::optional<Seconds> wait;
  };
  for (const Row& row : {
           Row{"", std::nullopt},
           Row{"Retry-After: 120\r\n", Seconds(120)},
           Row{"Retry-After: 0\r\n", Seconds(0)},
           Row{"Retry-After: 99999999999999999999\r\n", Seconds(86400)},
           Row{"Retry-After: -5\r\n", std::nullopt},
           Row{"Retry-After: soon\r\n", std::nullopt},
           Row{date + "Retry-After: Sun, 06 Nov 1994 08:50:37 GMT\r\n", Seconds(60)},
           Row{date + "Retry-After: Sun, 06 Nov 1994 08:40:00 GMT\r\n", Seconds(0)},
           Row{date + "Retry-After: Sun, 06 Nov 2094 08:40:00 GMT\r\n", Seconds(86400)},
           Row{"Retry-After: Tue, 14 Nov 2023 22:14:20 GMT\r\n", Seconds(60)},
       }) {
    EXPECT_EQ(retryAfter(headerOf(row.lines, "503 Busy"), kNow), row.wait) << row.lines;
    EXPECT_EQ(retryAfter(headerOf(row.lines, "429 Too Many"), kNow), row.wait) << row.lines;
    EXPECT_EQ(retryAfter(headerOf(row.lines, "500 Oops"), kNow), std::nullopt) << row.lines;
  }
}

TEST(ResponseHeader, ReadsTheThreeFormsOfADate) {
  const Date expected{Seconds(784'111'777)};
  EXPECT_EQ(parseHttpDate("Sun, 06 Nov 1994 08:49:37 GMT"), expected);
  EXPECT_EQ(parseHttpDate("Sunday, 06-Nov-94 08:49:37 GMT"), expected);
  EXPECT_EQ(parseHttpDate("Sun Nov  6 08:49:37 1994"), expected);
  EXPECT_EQ(parseHttpDate("Tuesday, 14-Nov-23 22:13:20 GMT"), kNow);
  for (const char* text :
       {"", "784111777", "Sun, 06 Nov 1994 08:49:37", "Sun, 06 Nov 1994 08:49:37 CET",
        "Sun, 31 Feb 1994 08:49:37 GMT", "Sun, 06 Nox 1994 08:49:37 GMT", "Sun, 06 Nov 1994 24:00:00 GMT",
        "Sun, 06 Nov 99994 08:49:37 GMT", "Sun, 00 Nov 1994 08:49:37 GMT",
        "Sun, 4294967302 Nov 1994 08:49:37 GMT", "Sun Nov x 08:49:37 1994"}) {
    EXPECT_EQ(parseHttpDate(text), std::nullopt) << text;
  }
}

TEST(ResponseHeader, SaysThatAKeyIsWantedOrNotAccepted) {
  for (const char* status : {"401 Unauthorized", "403 Forbidden"}) {
    const ResponseHeader header = headerOf("", status);
    EXPECT_THAT(sentenceOf(statusFailure(header, false, kNow)),
                testing::StartsWith("the server wants a key"));
    EXPECT_THAT(sentenceOf(statusFailure(header, true, kNow)),
                testing::StartsWith("the server does not accept the key"));
  }
  const Error busy = statusFailure(headerOf("Retry-After: 7\r\n", "503 Busy"), false, kNow);
  EXPECT_EQ(httpStatusOf(busy), 503);
  EXPECT_EQ(retryAfterOf(busy), Seconds(7));
  EXPECT_EQ(retryAfterOf(within("feed Metro", busy)), Seconds(7));
}

}  // namespace
}  // namespace linewatch
