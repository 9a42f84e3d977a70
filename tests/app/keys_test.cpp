#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "app/encoded_alerts.h"
#include "app/program_run.h"
#include "feeds/http/local_http_server.h"
#include "feeds/timetable_zip.h"
#include "shared/mutex.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Every secret in these tests contains this word.
constexpr const char* kMarker = "s3cret";

/// A server that wants keys.
class KeysTest : public testing::Test {
 protected:
  void answerAs(const std::string& mode) {
    const MutexLock lock(mutex_);
    mode_ = mode;
  }
  std::string address(const std::string& path) const {
    std::string url = server_->url(path + "?area=s3cret-area");
    return url.insert(url.find("//") + 2, "ann-s3cret:s3cret-password@");
  }
  ProgramRun run(const std::vector<std::string>& words, const std::string& input = "") const {
    std::vector<std::string> all{"--state-dir", folder_ / "state"};
    all.insert(all.end(), words.begin(), words.end());
    return runProgram(all, {}, input);
  }
  std::vector<std::string> adding(const std::vector<std::string>& more) const {
    std::vector<std::string> words{
        "feed", "add", "town", "--gtfs", address("/gtfs"), "--alerts", address("/alerts")};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  /// The files that contain a secret.
  std::vector<std::string> filesWithSecrets() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      if (entry.is_regular_file() && textIn(entry.path()).find(kMarker) != std::string::npos)
        names.push_back(entry.path().filename().string());
    }
    return names;
  }

  TemporaryFolder folder_;
  std::unique_ptr<LocalHttpServer> server_ = std::make_unique<LocalHttpServer>(
      [this](LocalHttpServer::Connection& connection) { answer(connection); });

 private:
  void answer(LocalHttpServer::Connection& connection) {
    const std::string& request = connection.request();
    const std::string target = request.substr(4, request.find(" HTTP") - 4);
    const bool hasKeys = request.find("X-Key: apikey s3cret-key\r\n") != std::string::npos &&
                         target.find("&token=s3cret-key") != std::string::npos &&
                         request.find("Authorization: Basic ") != std::string::npos;
    const MutexLock lock(mutex_);
    if (!hasKeys || mode_ == "401") return send(connection, "401 Unauthorized", "", target);
    if (mode_ == "404") return send(connection, "404 Not Found", "", target);
    if (mode_ == "malformed") return send(connection, "200 OK", "", "<html>" + target);
    if (mode_ == "elsewhere")
      return send(connection, "302 Found", "Location: " + server_->otherUrl(target) + "\r\n", "");
    if (mode_ == "circle") return send(connection, "302 Found", "Location: " + target + "\r\n", "");
    const bool isTimetable = target.starts_with("/gtfs");
    send(connection, "200 OK", "",
         isTimetable ? std::string(kTimetableZip) : alertsFeed(alertEntity("a", "M1", "Strike")));
  }
  static void send(LocalHttpServer::Connection& connection, const std::string& status,
                   const std::string& headers, const std::string& body) {
    connection.write(httpAnswer(status, headers, body));
  }

  Mutex mutex_;
  std::string mode_ LINEWATCH_GUARDED_BY(mutex_) = "well";
};

const std::vector<std::string> kKeyOptions{"--header", "X-Key: apikey KEY", "--query-key", "token"};

TEST_F(KeysTest, SecretsAreInTheStateDatabaseOnly) {
  std::string all;
  const auto print = [&](const std::vector<std::string>& words) {
    const auto result = run(words, "s3cret-key\n");
    all += words.front() + ":\n" + result.output + result.errors;
    EXPECT_THAT(result.output + result.errors, Not(HasSubstr(kMarker))) << words.front();
    return result;
  };
  EXPECT_THAT(print(adding({})).errors, HasSubstr("the server does not accept the key"));
  const auto added = print(adding(kKeyOptions));
  EXPECT_EQ(added.output,
            "Added town: 1 line, 1 alert now\nIts state: fresh\nFind its lines: linewatch lines\nThen add "
            "one: linewatch favorites add LINE\n")
      << added.errors;
  EXPECT_EQ(print({"favorites", "add", "M1"}).status, 0);
  // The runs are days apart, so that the timetable is requested again too.
  int day = 1;
  for (const char* mode : {"well", "401", "404", "malformed", "elsewhere", "circle", "closed"}) {
    SCOPED_TRACE(mode);
    answerAs(mode);
    if (mode == std::string("closed")) server_.reset();
    day += 2;
    const std::string now =
        "2040-01-" + std::string(day < 10 ? "0" : "") + std::to_string(day) + "T08:00:00Z";
    for (std::vector<std::string> words :
         std::vector<std::vector<std::string>>{{"show", "--expanded", "-v"},
                                               {"show", "--json", "-v"},
                                               {"show", "--upcoming", "-v"},
                                               {"analytics", "-v"},
                                               {"feed", "-v"},
                                               {"lines", "-v"},
                                               {"favorites", "-v"},
                                               {"render", "-v", "-o", folder_ / "list.svg"}}) {
      words.insert(words.end(), {"--now", now});
      print(words);
    }
    print({"feed", "key", "town", "-v"});
    if (server_) {
      auto second = adding(kKeyOptions);
      second[2] = "second";
      print(second);
      print({"feed", "remove", "second"});
    }
  }
  EXPECT_THAT(all, AllOf(HasSubstr("http://127.0.0.1"), HasSubstr("/alerts?area=***"),
                         HasSubstr("header X-Key, parameter token"), HasSubstr("status 404"),
                         HasSubstr("the server redirects to another one, localhost, with the key"),
                         HasSubstr("redirects more than"), HasSubstr("onnection refused")));
  for (const std::string& name : filesWithSecrets()) EXPECT_EQ(name, "linewatch.sqlite");
  EXPECT_EQ(std::filesystem::status(folder_ / "state/linewatch.sqlite").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(KeysTest, UsageErrorsShowNoSecret) {
  for (const std::vector<std::string>& words : {adding({"--heder", "X-Key: s3cret"}),
                                                adding({"--header", "X Key: s3cret"}),
                                                adding({"extra"}),
                                                adding({"--header", "X-Key: s3cret\nX-More: s3cret"}),
                                                adding({"--key-command", "echo 's3cret"}),
                                                adding({"--alerts", "ftp://ann:s3cret@a/?s3cret"}),
                                                adding({"--api-key", "s3cret"}),
                                                adding({"--api-token=s3cret"}),
                                                adding({"--query-keys", "token=s3cret"}),
                                                adding({"--alerts", "agency.example/alerts?key=s3cret"}),
                                                adding({"--gtfs", "ann:s3cret@agency.example/gtfs.zip"}),
                                                {address("/alerts")}}) {
    const auto result = run(words);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, AllOf(StartsWith("linewatch: "), Not(HasSubstr(kMarker))));
  }
}

TEST_F(KeysTest, ReadsAndChangesTheKeyFromACommandOrAPipe) {
  const std::string key = folder_.write("key", "s3cret-key\nsecond line\n");
  auto words = adding(kKeyOptions);
  words.insert(words.end(), {"--key-command", "cat '" + key + "'"});
  EXPECT_THAT(run(words).output, StartsWith("Added town"));
  EXPECT_THAT(run({"feed"}).output, HasSubstr("key      header X-Key, parameter token, printed by cat"));
  std::filesystem::remove(key);
  EXPECT_THAT(run({"feed", "key", "town", "--key-command", "cat " + key}).errors,
              HasSubstr("the key command \"cat\": it ended with status 1; run it yourself to see why"));
  EXPECT_THAT(run({"feed", "key", "town"}).errors, HasSubstr("say where its key goes"));
  EXPECT_THAT(run({"feed", "key", "town", "--header", "X-Key: apikey KEY"}).errors,
              HasSubstr("no key was given for town; type it"));
  words = {"feed", "key", "town"};
  words.insert(words.end(), kKeyOptions.begin(), kKeyOptions.end());
  EXPECT_THAT(run(words, "s3cret-key\n").output,
              StartsWith("Changed the keys of town: 1 line, 1 alert now\n"));
  const auto wrong = run({"feed", "key", "town"}, "wrong\n");
  EXPECT_EQ(wrong.status, 1);
  EXPECT_EQ(wrong.output, "Changed the keys of town\n");
  EXPECT_THAT(wrong.errors,
              HasSubstr("/alerts?area=***: it cannot be fetched: the server does not accept the key"));
  EXPECT_THAT(run({"feed"}).output, AllOf(HasSubstr("town: 1 line; "), Not(HasSubstr("fresh"))))
      << "the alerts of the key before serve, and the new one is refused";
  EXPECT_THAT(run({"feed", "key", "town", "--remove"}).output, StartsWith("Removed the keys of town"));
  EXPECT_THAT(run({"feed"}).output, Not(HasSubstr("header X-Key")));
}

TEST_F(KeysTest, AsksForTwoKeysIfTheDocumentsDiffer) {
  const std::vector<std::string> words{"feed",
                                       "add",
                                       "town",
                                       "--gtfs",
                                       address("/gtfs"),
                                       "--alerts",
                                       address("/alerts"),
                                       "--query-key",
                                       "token",
                                       "--gtfs-header",
                                       "X-Key: apikey KEY",
                                       "--alerts-header",
                                       "X-Key: apikey s3cret-key"};
  EXPECT_THAT(run(words, "wrong\ns3cret-key\n").errors, HasSubstr("/gtfs?area=***: "));
  EXPECT_THAT(run(words, "s3cret-key\nwrong\n").errors, HasSubstr("/alerts?area=***: "));
  EXPECT_THAT(run(words, "s3cret-key\ns3cret-key\n").output, StartsWith("Added town"));
}

TEST_F(KeysTest, RunsWithoutSavedStateWithKeysAndSeveralFeeds) {
  const auto result = runProgram({"--gtfs", address("/gtfs"), "--gtfs", address("/gtfs2"), "--alerts",
                                  address("/alerts"), "--alerts", address("/alerts2"), "--header",
                                  "X-Key: apikey KEY", "--query-key", "token", "--favorite", "M1", "show"},
                                 {}, "s3cret-key\n");
  EXPECT_THAT(result.output, HasSubstr("Strike")) << result.errors;
}

/// A `feed add` on a terminal that has come to its question for the key.
class KeyPromptTest : public KeysTest {
 protected:
  void SetUp() override {
    process_ = ::forkpty(&terminal_, nullptr, nullptr, nullptr);
    ASSERT_GE(process_, 0);
    if (process_ == 0) {
      auto words = adding(kKeyOptions);
      words.insert(words.begin(), {LINEWATCH_PROGRAM, "--state-dir", folder_ / "state"});
      std::vector<char*> arguments;
      for (std::string& word : words) arguments.push_back(word.data());
      arguments.push_back(nullptr);
      ::execv(LINEWATCH_PROGRAM, arguments.data());
      ::_exit(127);
    }
    while (!shown_.ends_with("Key for town: ") && readByte()) continue;
    // Stays open, so that the terminal keeps its settings after the program's end.
    otherEnd_ = ::open(::ptsname(terminal_), O_RDWR | O_NOCTTY);
    ASSERT_THAT(shown_, HasSubstr("Key for town: "));
    ASSERT_FALSE(hasEcho());
  }
  void TearDown() override {
    ::close(otherEnd_);
    ::close(terminal_);
  }

  void type(const std::string& keys) const {
    EXPECT_EQ(::write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  bool hasEcho() const {
    termios settings{};
    EXPECT_EQ(::tcgetattr(otherEnd_, &settings), 0);
    return (settings.c_lflag & ECHO) != 0 && (settings.c_lflag & ISIG) != 0;
  }
  /// The status of the program's end.
  int end() const {
    int status = 0;
    ::waitpid(process_, &status, 0);
    return status;
  }
  /// Everything that the terminal has shown until the program's end.
  std::string shown() {
    ::close(otherEnd_);
    otherEnd_ = -1;
    while (readByte()) continue;
    return shown_;
  }

  pid_t process_ = -1;

 private:
  bool readByte() {
    char byte = 0;
    if (::read(terminal_, &byte, 1) != 1) return false;
    shown_ += byte;
    return true;
  }

  int terminal_ = -1;
  int otherEnd_ = -1;
  std::string shown_;
};

TEST_F(KeyPromptTest, DoesNotShowTheKey) {
  type("wrong\x15s3cret-keyx\x7F\n");
  EXPECT_THAT(shown(), AllOf(HasSubstr("Added town: 1 line"), Not(HasSubstr(kMarker))));
  EXPECT_EQ(end(), 0);
}

TEST_F(KeyPromptTest, TurnsTheEchoOnBeforeASignalEndsTheProgram) {
  type("s3cret");
  for (int i = 0; i < 3; ++i) ::kill(process_, SIGTERM);
  const int status = end();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
  EXPECT_TRUE(hasEcho());
  EXPECT_THAT(shown(), Not(HasSubstr(kMarker)));
}

TEST_F(KeyPromptTest, TurnsTheEchoOnAfterControlC) {
  type("s3cret\x03\x03\x03");
  end();
  EXPECT_TRUE(hasEcho());
  EXPECT_THAT(shown(), Not(HasSubstr(kMarker)));
}

}  // namespace
}  // namespace linewatch::app
