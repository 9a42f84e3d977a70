// A real server on this machine answers as a seeded script says, mostly wrongly. After each answer the line
// shows the alert of the last good one, or is said to be unknown.

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "feeds/http/gzip_sample.h"
#include "feeds/http/local_http_server.h"
#include "feeds/scripted_server.h"
#include "feeds/transit_feeds.h"
#include "shared/failure.h"
#include "shared/mutex.h"
#include "simulation/simulated_platform.h"
#include "storage/state_database.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using Connection = LocalHttpServer::Connection;

/// How the feed must take an answer.
enum class Taken {
  asNews,         // its alert is shown
  asChange,       // as news, but only after a list of all alerts
  asOlder,        // confirms the alert before, if that is newer
  asNotModified,  // confirms the alert before, if the feed asked for that
  asFailure,      // the alert before serves for the time of grace
};

/// What an answer is made of: an alert feed that says "news", and one that no reader may believe.
struct Material {
  std::string news, lies;
  std::string elsewhere;
};

struct Answer {
  const char* name;
  Taken taken;
  std::function<void(Connection&, const Material&)> send;
  /// Seconds that the header's time is ahead of now; absent: the header has no time.
  std::optional<double> ahead = 0;
  bool isDifference = false;
  bool inMilliseconds = false;
  /// Only the time limit ends it.
  bool isEndless = false;
};

void whole(Connection& connection, const std::string& status, const std::string& headers,
           const std::string& body) {
  connection.write(httpAnswer(status, headers, body));
}

/// Answers with a status and a body that must not be believed.
Answer status(const char* status, const char* headers = "") {
  return {status, Taken::asFailure,
          [=](Connection& to, const Material& of) { whole(to, status, headers, of.lies); }};
}

/// Answers with bytes made of the lies.
Answer broken(const char* name, std::function<std::string(const std::string& lies)> bytes) {
  return {name, Taken::asFailure, [bytes](Connection& to, const Material& of) { to.write(bytes(of.lies)); }};
}

/// Goes on until the client's time is over.
Answer endless(const char* name, std::function<void(Connection&, const Material&)> send) {
  return {.name = name, .taken = Taken::asFailure, .send = std::move(send), .isEndless = true};
}

/// Redirects to an address.
Answer redirect(const char* name, std::function<std::string(const Material&)> address) {
  return {name, Taken::asFailure, [address](Connection& to, const Material& of) {
            whole(to, "302 Found", "Location: " + address(of) + "\r\n", of.lies);
          }};
}

const std::string kOk = "HTTP/1.1 200 OK\r\n";
const auto kSendNews = [](Connection& to, const Material& of) {
  whole(to, "200 OK", "ETag: \"1\"\r\n", of.news);
};

std::string lengthOf(std::size_t length) { return "Content-Length: " + std::to_string(length) + "\r\n\r\n"; }

std::string chunked(const std::string& body, const std::string& end) {
  char length[17];
  std::snprintf(length, sizeof length, "%zx", body.size());
  return kOk + "Transfer-Encoding: chunked\r\n\r\n" + length + "\r\n" + body + end;
}

const std::vector<Answer>& answers() {
  static const std::vector<Answer> kAnswers{
      {"news", Taken::asNews, kSendNews},
      {"news again", Taken::asNews, kSendNews},
      {"news until the close", Taken::asNews,
       [](Connection& to, const Material& of) { to.write(kOk + "\r\n" + of.news); }},
      {"news in a chunk", Taken::asNews,
       [](Connection& to, const Material& of) { to.write(chunked(of.news, "\r\n0\r\n\r\n")); }},
      {"news in gzip", Taken::asNews,
       [](Connection& to, const Material& of) {
         whole(to, "200 OK", "Content-Encoding: gzip\r\n", gzip(of.news));
       }},
      {"news byte by byte", Taken::asNews,
       [](Connection& to, const Material& of) {
         for (const char byte : httpAnswer("200 OK", "", of.news)) to.write({byte});
       }},
      {"news without a time", Taken::asNews, kSendNews, std::nullopt},
      {"news from an hour ahead", Taken::asNews, kSendNews, 3600},
      {"news in milliseconds", Taken::asNews, kSendNews, 0, false, true},
      {"older news", Taken::asOlder, kSendNews, -86400.0 * 30},
      {"a change", Taken::asChange, kSendNews, 0, true},
      {"unchanged", Taken::asNotModified,
       [](Connection& to, const Material& of) { whole(to, "304 Not Modified", "", of.lies); }},

      status("204 No Content"),
      status("206 Partial Content"),
      status("300 Multiple Choices"),
      status("401 Unauthorized", "WWW-Authenticate: Basic\r\n"),
      status("403 Forbidden"),
      status("404 Not Found"),
      status("410 Gone"),
      status("418 I'm a teapot"),
      status("429 Too Many Requests", "Retry-After: 300\r\n"),
      status("500 Internal Server Error"),
      status("503 Service Unavailable", "Retry-After: 300\r\n"),
      status("503 Service Unavailable", "Retry-After: Thu, 01 Jan 1970 00:00:00 GMT\r\n"),
      status("503 Service Unavailable", "Retry-After: soon\r\n"),
      status("999 Far Out"),

      broken("nothing", [](const auto&) { return std::string(); }),
      broken("half a header", [](const auto&) { return kOk.substr(0, 10); }),
      broken("no empty line", [](const auto&) { return kOk; }),
      broken("another protocol", [](const auto& lies) { return "SSH-2.0\r\n\r\n" + lies; }),
      broken("an empty body", [](const auto&) { return httpAnswer("200 OK", "", ""); }),
      broken("a page", [](const auto&) { return httpAnswer("200 OK", "", "<!DOCTYPE html><p>Log in</p>"); }),
      broken("JSON", [](const auto&) { return httpAnswer("200 OK", "", "{\"entity\": []}"); }),
      broken("zeros", [](const auto&) { return httpAnswer("200 OK", "", std::string(1000, '\0')); }),
      broken("half the alerts",
             [](const auto& lies) { return httpAnswer("200 OK", "", lies.substr(0, lies.size() / 2)); }),
      broken("less than its length", [](const auto& lies) { return kOk + lengthOf(lies.size() + 1) + lies; }),
      broken("two lengths",
             [](const auto& lies) { return kOk + "Content-Length: 5\r\n" + lengthOf(lies.size()) + lies; }),
      broken("a negative length", [](const auto& lies) { return kOk + "Content-Length: -5\r\n\r\n" + lies; }),
      broken("a huge length",
             [](const auto& lies) { return kOk + "Content-Length: 99999999999999\r\n\r\n" + lies; }),
      broken("a chunk that is cut", [](const auto& lies) { return chunked(lies, ""); }),
      broken("no last chunk", [](const auto& lies) { return chunked(lies, "\r\n"); }),
      broken("no size of a chunk",
             [](const auto& lies) { return kOk + "Transfer-Encoding: chunked\r\n\r\nzz\r\n" + lies; }),
      broken("gzip that is none",
             [](const auto& lies) { return httpAnswer("200 OK", "Content-Encoding: gzip\r\n", lies); }),
      broken("gzip that is cut",
             [](const auto& lies) {
               return httpAnswer("200 OK", "Content-Encoding: gzip\r\n",
                                 gzip(lies).substr(0, gzip(lies).size() - 9));
             }),
      broken("gzip that the close cuts",
             [](const auto& lies) {
               return kOk + "Content-Encoding: gzip\r\n\r\n" + gzip(lies).substr(0, gzip(lies).size() - 9);
             }),
      broken("gzip with a wrong sum",
             [](const auto& lies) {
               std::string packed = gzip(lies);
               packed[packed.size() - 6] ^= 1;
               return httpAnswer("200 OK", "Content-Encoding: gzip\r\n", packed);
             }),
      broken("an unknown encoding",
             [](const auto& lies) { return httpAnswer("200 OK", "Content-Encoding: xz\r\n", lies); }),
      broken("a bomb",
             [](const auto&) {
               static const std::string bomb = gzip(std::string(std::size_t{8} << 20U, '\0'));
               return httpAnswer("200 OK", "Content-Encoding: gzip\r\n", bomb);
             }),
      broken("too many headers",
             [](const auto& lies) {
               std::string lines;
               for (int i = 0; i < 300; ++i) lines += "X-" + std::to_string(i) + ": a\r\n";
               return httpAnswer("200 OK", lines, lies);
             }),
      broken("a long header",
             [](const auto& lies) {
               return httpAnswer("200 OK", "X: " + std::string(100'000, 'a') + "\r\n", lies);
             }),

      redirect("a circle", [](const Material& of) { return of.elsewhere; }),
      redirect("a file", [](const auto&) { return "file:///etc/passwd"; }),
      redirect("another scheme", [](const auto&) { return "gopher://127.0.0.1/"; }),
      redirect("nowhere", [](const auto&) { return "http://127.0.0.1:1/"; }),
      redirect("no address", [](const auto&) { return ""; }),

      endless("silence", [](Connection& to, const Material&) { to.awaitClose(); }),
      {"an endless header", Taken::asFailure,
       [](Connection& to, const Material&) {
         to.write(kOk);
         to.writeForever("X: a\r\n");
       }},
      endless("a slow header",
              [](Connection& to, const Material&) { to.writeForever("H", std::chrono::milliseconds(20)); }),
      {"an endless body", Taken::asFailure,
       [](Connection& to, const Material& of) {
         to.write(kOk + "\r\n");
         to.writeForever(of.lies);
       }},
      endless("a slow body",
              [](Connection& to, const Material& of) {
                to.write(kOk + lengthOf(of.lies.size()) + of.lies.substr(0, of.lies.size() - 1));
                to.awaitClose();
              }),
  };
  return kAnswers;
}

/// Waits less for a server than the program does.
class ImpatientFetcher final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    HttpRequest impatient = request;
    impatient.timeout = timeout;
    impatient.maximumBytes = std::size_t{4} << 20U;
    return (*fetcher_)->fetch(impatient);
  }

  Seconds timeout{};

 private:
  Outcome<std::shared_ptr<HttpFetcher>> fetcher_ = loadHttpFetcher();
};

class DroppingLog final : public Log {
 public:
  void write(const LogMessage&) override {}
  bool isEnabled(LogLevel) const override { return false; }
};

/// A feed of one line, its server, and what a rider must see.
class World {
 public:
  explicit World(unsigned seed) : random_(seed) {
    writeFile(folder_.path() / "routes.txt", "route_id\n1\n");
    start();
  }

  /// One more answer. Gives its time and name.
  std::string step() {
    const bool isRestart = random_() % 20 == 0;
    if (isRestart) start();
    now_ += Seconds(static_cast<double>(16 + random_() % 400));
    const auto before = states();
    const bool mustWait = !before.empty() && before.front().retryAfter > now_;
    answer_ = &answers()[random_() % answers().size()];
    // Half of the answers are good, so that there is something to lose.
    if (random_() % 2 == 0) answer_ = &answers().front();
    fetcher_->timeout = Seconds(answer_->isEndless ? 0.05 : 20);
    const std::string news = "Works " + std::to_string(++count_);
    prepare({answer_, {payload(news), payload("Lies"), server_.otherUrl()}});
    const MapItemIdentifier line{stableMuid("bus", "1"), "bus", "1"};
    const auto items = feeds_->lineItems({&line, 1}, now_);
    last_ = received();
    EXPECT_FALSE(mustWait && last_.isRequest) << "Retry-After wins over every retry";
    expect(news);
    check(items);
    return std::to_string(static_cast<int>(secondsOf(now_) - 1.7e9)) +
           " s: " + (isRestart ? "restart, then " : "") + answer_->name +
           (last_.isRequest ? "" : ", not asked for");
  }

 private:
  void start() {
    documents_ = std::make_shared<FeedDocuments>(
        std::make_shared<FeedCache>(
            makeCacheDatabase(*StateDirectories::under(folder_.path() / "state"), log_)),
        [this] { return now_; },
        [this]() -> Outcome<std::shared_ptr<HttpFetcher>> { return std::shared_ptr<HttpFetcher>(fetcher_); });
    feeds_ = std::make_unique<TransitFeeds>(
        [this] {
          return std::vector<StoredFeed>{{"bus", folder_.path().string(), server_.url()}};
        },
        documents_, IncidentLanguage{});
  }

  std::vector<FeedState> states() const { return feeds_->states(); }

  /// What the server sends until it is told otherwise.
  struct Prepared {
    const Answer* answer = nullptr;
    Material material;
  };
  struct Received {
    bool isRequest = false;
    bool isConditional = false;
  };

  void prepare(Prepared prepared) LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    prepared_ = std::move(prepared);
    received_ = {};
  }
  Received received() const LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    return received_;
  }
  /// Runs on the server's thread. An endless answer may still be sent when the next one is prepared.
  void serve(Connection& connection) LINEWATCH_EXCLUDES(mutex_) {
    const Prepared prepared = receive(connection.request());
    prepared.answer->send(connection, prepared.material);
  }
  Prepared receive(const std::string& request) LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    received_ = {true, request.find("If-None-Match") != std::string::npos};
    return prepared_;
  }

  std::string payload(const std::string& title) const {
    FeedSketch feed{.alerts = {alertOf("1", title)}, .isDifference = answer_->isDifference};
    feed.alerts.front().id = "1";
    const double time = secondsOf(now_) + answer_->ahead.value_or(0);
    feed.timestamp =
        answer_->ahead ? static_cast<std::uint64_t>(time) * (answer_->inMilliseconds ? 1000 : 1) : 0;
    return bytesOf(feed);
  }

  Taken taken() const {
    const Taken taken = answer_->taken;
    if (taken == Taken::asChange) return shown_ ? Taken::asNews : Taken::asFailure;
    if (taken == Taken::asOlder && !written_) return Taken::asNews;
    if (taken == Taken::asNotModified && !last_.isConditional) return Taken::asFailure;
    return taken;
  }

  void expect(const std::string& news) {
    const Taken how = taken();
    if (!last_.isRequest || how == Taken::asFailure) return;
    confirmed_ = now_;
    if (how != Taken::asNews) return;
    shown_ = news;
    written_ = std::nullopt;
    if (answer_->ahead <= 0 && !answer_->inMilliseconds) written_ = now_ + Seconds(*answer_->ahead);
  }

  void check(const Outcome<TransitLineItems>& items) {
    const std::vector<FeedState> all = states();
    ASSERT_EQ(all.size(), 1U);
    const FeedState& state = all.front();
    EXPECT_EQ(items.succeeded(), state.knowsLines());
    EXPECT_EQ(items.succeeded(), feeds_->unknownLines().empty());
    if (!items) {
      EXPECT_TRUE(!shown_ || now_ - confirmed_ >= kAlertsGrace || state.kind == FeedState::Kind::outdated)
          << "lost, in state " << static_cast<int>(state.kind);
      return;
    }
    ASSERT_TRUE(shown_) << "shown, but nothing is known";
    ASSERT_EQ(items->size(), 1U);
    const auto& incidents = items->front()->incidents();
    ASSERT_EQ(incidents.size(), 1U);
    EXPECT_EQ(incidents.front()->title(), shown_);
    EXPECT_LT(now_ - confirmed_, kAlertsGrace);
    EXPECT_EQ(state.kind == FeedState::Kind::kept, confirmed_ < now_);
    if (state.kind != FeedState::Kind::kept) return;
    EXPECT_EQ(state.since, confirmed_);
    EXPECT_LE(nextUpdate(all, now_), confirmed_ + kAlertsGrace) << "the rows must go when the grace ends";
  }

  std::mt19937 random_;
  TemporaryFolder folder_;
  DroppingLog log_;
  Date now_{Seconds(1'700'000'000)};
  const Answer* answer_ = &answers().front();
  mutable Mutex mutex_;
  Prepared prepared_ LINEWATCH_GUARDED_BY(mutex_);
  Received received_ LINEWATCH_GUARDED_BY(mutex_);
  /// What the server received in the last step.
  Received last_;
  int count_ = 0;
  /// The title of the last news, and the time in their header.
  std::optional<std::string> shown_;
  std::optional<Date> written_;
  /// When a good answer last came.
  Date confirmed_{};
  std::shared_ptr<ImpatientFetcher> fetcher_ = std::make_shared<ImpatientFetcher>();
  LocalHttpServer server_{[this](Connection& connection) { serve(connection); }};
  std::shared_ptr<FeedDocuments> documents_;
  std::unique_ptr<TransitFeeds> feeds_;
};

/// LINEWATCH_ANSWERS, else few.
int answerCount() {
  const char* const wanted = std::getenv("LINEWATCH_ANSWERS");
  return wanted ? std::atoi(wanted) : 200;
}

TEST(MisbehavingServer, LosesNothingAndShowsNothingFalse) {
  constexpr int kAnswersOfAWorld = 100;
  installPlatform(simulation::SimulatedPlatform::make());
  for (int count = 0; count < answerCount(); count += kAnswersOfAWorld) {
    const unsigned seed = static_cast<unsigned>(count);
    World world(seed);
    std::string story;
    for (int step = 0; step < kAnswersOfAWorld; ++step) {
      story += world.step() + "\n";
      ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", answers:\n" << story;
    }
  }
  installPlatform(nullptr);
}

}  // namespace
}  // namespace linewatch
