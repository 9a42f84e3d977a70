#include "feeds/http/response_reader.h"

#include <gtest/gtest.h>

#include "shared/failure.h"

namespace linewatch {
namespace {

const HttpRequest kSmallRequest{
    .url = "http://host/", .maximumBytes = 10, .maximumHeaderBytes = 100, .maximumHeaderLines = 5};

/// Hands on the lines; the number of those after which more was wanted.
int linesTaken(ResponseReader& reader, const std::string& line, int count) {
  int taken = 0;
  while (taken < count && reader.takeHeaderLine(line)) ++taken;
  return taken;
}

TEST(ResponseReader, CountsHeaderLinesAndBytesAcrossInterimAnswersAndTrailers) {
  ResponseReader lines(kSmallRequest);
  EXPECT_EQ(linesTaken(lines, "A: b\r\n", 100), 5);
  ResponseReader bytes(kSmallRequest);
  EXPECT_EQ(linesTaken(bytes, "A: " + std::string(45, 'x') + "\r\n", 100), 2);
  ResponseReader interim(kSmallRequest);
  EXPECT_EQ(linesTaken(interim, "HTTP/1.1 100 Go\r\n", 1) + linesTaken(interim, "\r\n", 1), 2);
  EXPECT_EQ(interim.header(), nullptr);
  EXPECT_EQ(linesTaken(interim, "HTTP/1.1 200 OK\r\n", 1) + linesTaken(interim, "\r\n", 1), 2);
  EXPECT_EQ(linesTaken(interim, "Trailer: x\r\n", 100), 1);
  for (ResponseReader* reader : {&lines, &bytes, &interim}) {
    EXPECT_TRUE(reader->isSettled());
    EXPECT_FALSE(reader->takeBody("x"));
    EXPECT_EQ(failureCodeOf(reader->response(Date()).error()), FailureCode::tooLarge);
  }
}

TEST(ResponseReader, ReadsTheBodyOfStatus200Only) {
  for (const char* status : {"HTTP/1.1 302 Found\r\n", "HTTP/1.1 404 None\r\n", "HTTP/1.1 304 Same\r\n"}) {
    ResponseReader reader(kSmallRequest);
    EXPECT_TRUE(reader.takeHeaderLine(status));
    EXPECT_FALSE(reader.takeHeaderLine("\r\n"));
    EXPECT_TRUE(reader.isSettled());
  }
}

TEST(ResponseReader, HasNoResponseWithoutAHeader) {
  ResponseReader reader(kSmallRequest);
  EXPECT_EQ(failureCodeOf(reader.response(Date()).error()), FailureCode::malformed);
  EXPECT_FALSE(reader.takeBody("x"));
  EXPECT_EQ(failureCodeOf(reader.response(Date()).error()), FailureCode::malformed);
}

TEST(ResponseReader, TellsARequestWithAKey) {
  EXPECT_FALSE(sendsKey({.url = "http://host/a@b?c=@d#@"}));
  EXPECT_TRUE(sendsKey({.url = "http://user@host/"}));
  EXPECT_TRUE(sendsKey({.url = "http://host/", .headers = {{"X-Key", "k"}}}));
  EXPECT_TRUE(sendsKey({.url = "http://host/", .query = {{"key", "k"}}}));
}

}  // namespace
}  // namespace linewatch
