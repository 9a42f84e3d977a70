#include "feeds/http/http_fetcher.h"

#include <QCoreApplication>
#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "feeds/http/local_http_server.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// "hello hello hello hello\n" as gzip packs it.
constexpr char kGzip[] =
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\xff\xcb\x48\xcd\xc9\xc9\x57\xc8\x40\x27\xb9\x00\x00\x88\x59\x0b"
    "\x18\x00\x00\x00";

/// The fetcher as the program gets it, used as the program does: from a thread of its own.
Outcome<HttpResponse> fetch(HttpRequest request) {
  static int argc = 0;
  static QCoreApplication application(argc, nullptr);
  Outcome<std::shared_ptr<HttpFetcher>> fetcher = loadHttpFetcher();
  if (!fetcher) return fetcher.error();
  return std::async(std::launch::async, [&] { return (*fetcher)->fetch(request); }).get();
}

std::string bodyText(const HttpResponse& response) { return {response.body.begin(), response.body.end()}; }

std::string whyNot(const Outcome<HttpResponse>& outcome) {
  return outcome ? "it succeeded" : outcome.error().description();
}

LocalHttpServer::Script always(const std::string& answer) {
  return [answer](const std::string&, const LocalHttpServer::Write& write) { write(answer); };
}

TEST(HttpFetcher, SendsBackWhatTheHeldCopyCameWith) {
  const LocalHttpServer server([](const std::string& request, const LocalHttpServer::Write& write) {
    const bool held = request.find("If-None-Match: \"v1\"") != std::string::npos &&
                      request.find("If-Modified-Since: Tue, 24 Nov 2026 08:00:00 GMT") != std::string::npos;
    write(held ? httpAnswer("304 Not Modified", "ETag: \"v1\"\r\n", "")
               : httpAnswer("200 OK", "ETag: \"v1\"\r\nLast-Modified: Tue, 24 Nov 2026 08:00:00 GMT\r\n",
                            "bytes"));
  });
  const auto first = fetch({.url = server.url()});
  ASSERT_TRUE(first) << whyNot(first);
  EXPECT_FALSE(first->notModified);
  EXPECT_EQ(bodyText(*first), "bytes");
  EXPECT_EQ(first->etag, "\"v1\"");

  const auto second = fetch({.url = server.url(), .etag = first->etag, .lastModified = first->lastModified});
  ASSERT_TRUE(second) << whyNot(second);
  EXPECT_TRUE(second->notModified);
  EXPECT_TRUE(second->body.empty());
}

TEST(HttpFetcher, AsksForGzipAndUnpacksIt) {
  const LocalHttpServer server(
      always(httpAnswer("200 OK", "Content-Encoding: gzip\r\n", std::string(kGzip, sizeof kGzip - 1))));
  const auto response = fetch({.url = server.url()});
  ASSERT_TRUE(response) << whyNot(response);
  EXPECT_EQ(bodyText(*response), "hello hello hello hello\n");
  EXPECT_THAT(server.requests(), ElementsAre(HasSubstr("gzip")));
}

TEST(HttpFetcher, SaysWhatItCouldNotFetchAndWhy) {
  struct Row {
    const char* name;
    LocalHttpServer::Script script;
    const char* why;
  };
  const auto endless = [](const std::string&, const LocalHttpServer::Write& write) {
    bool goesOn = write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
    while (goesOn) goesOn = write(std::string(65536, 'x'));
  };
  // A little at a time, until the peer gives up and closes.
  const auto trickling = [](const std::string&, const LocalHttpServer::Write& write) {
    write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
    while (write("x")) usleep(1000);
  };
  for (const Row& row :
       {Row{"a status of failure", always(httpAnswer("503 Busy", "", "sorry")), "status 503"},
        Row{"an endless body", endless, "it is larger than 100000 bytes"},
        Row{"a body that trickles", trickling, "it took too long"},
        Row{"a body cut short",
            always("HTTP/1.1 200 OK\r\nContent-Length: 100\r\nConnection: close\r\n\r\nfew"), ""},
        Row{"a body that is not packed as it says",
            always(httpAnswer("200 OK", "Content-Encoding: gzip\r\n", "no gzip")), "cannot be unpacked"},
        Row{"a redirect to nowhere", always(httpAnswer("302 Found", "", "")), "none of http or https"},
        Row{"no HTTP at all", always("what?\r\n\r\n"), ""}}) {
    SCOPED_TRACE(row.name);
    const LocalHttpServer server(row.script);
    const auto response = fetch({.url = server.url(), .timeout = Seconds(0.3), .maximumBytes = 100000});
    ASSERT_FALSE(response);
    EXPECT_THAT(whyNot(response), HasSubstr(row.why));
  }
  EXPECT_THAT(whyNot(fetch({.url = "http://127.0.0.1:1/"})), HasSubstr("refused"));
  for (const char* url : {"http://", "http://no host/", "http://127.0.0.1:99999/"})
    EXPECT_THAT(whyNot(fetch({.url = url})), HasSubstr("no address of a server")) << url;
}

TEST(HttpFetcher, EndsWhenItIsStopped) {
  std::stop_source stop;
  const LocalHttpServer server([&stop](const std::string&, const LocalHttpServer::Write& write) {
    stop.request_stop();
    while (write("x")) usleep(1000);
  });
  const HttpRequest request{.url = server.url(), .timeout = Seconds(600), .stop = stop.get_token()};
  EXPECT_THAT(whyNot(fetch(request)), HasSubstr("no longer wanted"));
  EXPECT_THAT(whyNot(fetch(request)), HasSubstr("no longer wanted")) << "stopped before it began";
}

TEST(HttpFetcher, FollowsRedirects) {
  const LocalHttpServer server([](const std::string& request, const LocalHttpServer::Write& write) {
    write(request.starts_with("GET /new ") ? httpAnswer("200 OK", "", "moved here")
                                           : httpAnswer("302 Found", "Location: /new\r\n", ""));
  });
  const auto response = fetch({.url = server.url("/old")});
  ASSERT_TRUE(response) << whyNot(response);
  EXPECT_EQ(bodyText(*response), "moved here");
}

}  // namespace
}  // namespace linewatch
