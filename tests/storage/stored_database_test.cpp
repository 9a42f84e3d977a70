#include "storage/stored_database.h"

#include <array>
#include <csignal>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/recording_log.h"
#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::array<std::string_view, 2> kSteps = {
    "CREATE TABLE note (id INTEGER PRIMARY KEY, text TEXT NOT NULL) STRICT",
    "ALTER TABLE note ADD COLUMN stars INTEGER NOT NULL DEFAULT 5"};
constexpr DatabaseSchema kFirstSchema{"note database", 77, std::span(kSteps).first(1)};
constexpr DatabaseSchema kSecondSchema{"note database", 77, kSteps};
constexpr DatabaseSchema kOtherSchema{"picture database", 78, std::span(kSteps).first(1)};

const StoredDatabase::Options kDeferred{.busyTimeout = std::chrono::milliseconds(1), .defersSaves = true};

StoredDatabase::Operation adding(std::string text) {
  return [text = std::move(text)](SqliteDatabase& database) {
    return database.run("INSERT INTO note (text) VALUES (?)", {std::string_view(text)});
  };
}

std::string sentenceOf(const std::optional<Error>& error) {
  return error ? error->info.at(kLocalizedDescriptionKey).description() : "";
}

std::vector<std::string> textsIn(StoredDatabase& database) {
  std::vector<std::string> texts;
  const auto error = database.read([&](SqliteDatabase& open) {
    return open.run("SELECT text FROM note ORDER BY id", {},
                    [&](const SqliteRow& row) { texts.push_back(row.text(0)); });
  });
  EXPECT_EQ(sentenceOf(error), "");
  return texts;
}

class StoredDatabaseTest : public testing::Test {
 protected:
  std::filesystem::path file() const { return folder_.path() / "made" / "notes.sqlite"; }
  StoredDatabase open(const DatabaseSchema& schema = kFirstSchema,
                      std::chrono::milliseconds busyTimeout = {}) {
    return {file(), schema, log_, {.busyTimeout = busyTimeout}};
  }
  StoredDatabase openDeferred() { return {file(), kFirstSchema, log_, kDeferred}; }
  std::string journalMode() {
    std::string mode;
    auto database = SqliteDatabase::open("", file(), SqliteDatabase::Mode::readWrite, {});
    EXPECT_FALSE(database->run("PRAGMA journal_mode", {}, [&](const SqliteRow& row) { mode = row.text(0); }));
    return mode;
  }
  void writeNotes(const std::vector<std::string>& texts) {
    auto database = open();
    for (const auto& text : texts) ASSERT_EQ(sentenceOf(database.write(adding(text))), "");
  }

  TemporaryFolder folder_;
  RecordingLog log_;
};

TEST_F(StoredDatabaseTest, ReadingCreatesNoFile) {
  auto database = open();
  EXPECT_THAT(textsIn(database), IsEmpty());
  EXPECT_THAT(namesIn(folder_.path()), IsEmpty());
}

TEST_F(StoredDatabaseTest, KeepsWhatWasWrittenAndUndoesWhatFailed) {
  writeNotes({"one", "two"});
  auto database = open();
  EXPECT_THAT(textsIn(database), ElementsAre("one", "two"));
  const auto error = database.write([](SqliteDatabase& open) {
    EXPECT_FALSE(adding("three")(open));
    return open.run("INSERT INTO missing VALUES (1)");
  });
  EXPECT_THAT(sentenceOf(error), HasSubstr("note database: " + file().string() + ": no such table"));
  EXPECT_THAT(textsIn(database), ElementsAre("one", "two"));
}

TEST_F(StoredDatabaseTest, ThreadsShareADatabaseAndProgramsWaitForEachOther) {
  auto shared = open(kFirstSchema, std::chrono::seconds(60));
  auto other = open(kFirstSchema, std::chrono::seconds(60));
  std::array<StoredDatabase*, 3> users = {&shared, &shared, &other};
  {
    std::vector<std::jthread> threads;
    for (StoredDatabase* user : users) {
      threads.emplace_back([user] {
        for (int i = 0; i < 10; ++i) EXPECT_EQ(sentenceOf(user->write(adding("note"))), "");
      });
    }
  }
  EXPECT_EQ(textsIn(shared).size(), 30U);
}

TEST_F(StoredDatabaseTest, MigratesAnOlderFileOnceAndRefusesANewerOne) {
  writeNotes({"old"});
  auto newer = open(kSecondSchema);
  auto alsoNewer = open(kSecondSchema);
  EXPECT_THAT(textsIn(newer), ElementsAre("old"));
  std::int64_t stars = 0;
  EXPECT_FALSE(alsoNewer.read([&](SqliteDatabase& database) {
    return database.run("SELECT stars FROM note", {}, [&](const SqliteRow& row) { stars = row.integer(0); });
  }));
  EXPECT_EQ(stars, 5);

  const std::string before = textIn(file());
  auto older = open();
  const auto untouched = [](SqliteDatabase&) -> std::optional<Error> {
    ADD_FAILURE() << "opened";
    return {};
  };
  for (const auto& error : {older.read(untouched), older.write(untouched)}) {
    EXPECT_EQ(sentenceOf(error),
              "note database: " + file().string() + ": a newer version of LineWatch has written it");
    EXPECT_EQ(failureCodeOf(*error), FailureCode::unsupported);
  }
  EXPECT_EQ(textIn(file()), before);
}

TEST_F(StoredDatabaseTest, AMigrationThatFailsLeavesTheOldFile) {
  writeNotes({"old"});
  static constexpr std::array<std::string_view, 2> kBroken = {
      kSteps[0], "CREATE TABLE extra (id INTEGER) STRICT; nonsense"};
  constexpr DatabaseSchema kBrokenSchema{"note database", 77, kBroken};
  auto broken = open(kBrokenSchema);
  EXPECT_THAT(sentenceOf(broken.read(adding("unseen"))), HasSubstr("syntax error"));
  auto old = open();
  EXPECT_THAT(textsIn(old), ElementsAre("old"));
}

TEST_F(StoredDatabaseTest, LeavesTheDatabaseOfAnotherProgramAlone) {
  writeNotes({"mine"});
  const std::string before = textIn(file());
  auto other = open(kOtherSchema);
  for (const auto& error : {other.read(adding("unseen")), other.write(adding("unseen"))}) {
    EXPECT_THAT(sentenceOf(error), HasSubstr("another program's database stands in its place"));
    EXPECT_EQ(failureCodeOf(*error), FailureCode::unsupported);
  }
  EXPECT_EQ(textIn(file()), before);
}

TEST_F(StoredDatabaseTest, SetsADamagedFileAsideAndBeginsANewOne) {
  writeNotes({"lost"});
  const std::string whole = textIn(file());
  std::string withoutSchema = whole;
  withoutSchema.replace(100, 400, 400, '\xFF');
  std::string withoutTable = whole;
  withoutTable.replace(4096, 4096, 4096, '\xFF');
  const auto reading = [](SqliteDatabase& open) { return open.run("SELECT text FROM note"); };
  for (const std::string& damaged : {std::string(3000, 'x'), withoutSchema, withoutTable, std::string()}) {
    for (const char* way : {"read", "write", "save"}) {
      SCOPED_TRACE(way);
      TemporaryFolder folder;
      RecordingLog log;
      const auto path = folder.path() / "notes.sqlite";
      writeFile(path, damaged);
      writeFile(path.string() + ".damaged", "from an earlier time");
      StoredDatabase database(path, kFirstSchema, log);
      const std::string told =
          "note database: " + path.string() + ": it was damaged, and is set aside as notes.sqlite.damaged-2";
      if (way == std::string_view("save")) {
        EXPECT_TRUE(database.save(adding("new"))) << "there is nobody to do it again";
        EXPECT_THAT(log.lines(), ElementsAre(HasSubstr(told)));
      } else {
        EXPECT_EQ(sentenceOf(way == std::string_view("read") ? database.read(reading)
                                                             : database.write(adding("refused"))),
                  told);
        EXPECT_EQ(sentenceOf(database.write(adding("new"))), "");
        EXPECT_THAT(log.lines(), IsEmpty());
      }
      EXPECT_THAT(textsIn(database), ElementsAre("new"));
      EXPECT_EQ(textIn(path.string() + ".damaged"), "from an earlier time");
      EXPECT_EQ(textIn(path.string() + ".damaged-2"), damaged);
      EXPECT_EQ(sentenceOf(database.loss()), told);
    }
  }
}

TEST_F(StoredDatabaseTest, KeepsAFileThatReplacedTheDamagedOne) {
  writeNotes({"lost"});
  auto slow = open();
  const auto error = slow.read([&](SqliteDatabase&) -> std::optional<Error> {
    // Meanwhile another program has found the damage and made a new file.
    std::filesystem::rename(file(), file().string() + ".damaged");
    writeNotes({"new"});
    return failure(FailureCode::damaged, "", "", "damaged");
  });
  EXPECT_THAT(sentenceOf(error), HasSubstr("set aside as notes.sqlite.damaged"));
  EXPECT_THAT(textsIn(slow), ElementsAre("new"));
  EXPECT_THAT(namesIn(file().parent_path()), ElementsAre("notes.sqlite", "notes.sqlite.damaged"));
}

TEST_F(StoredDatabaseTest, FollowsAFileThatWasReplaced) {
  auto database = open();
  EXPECT_FALSE(database.write(adding("old")));
  std::filesystem::remove(file());
  EXPECT_THAT(textsIn(database), IsEmpty());
  writeNotes({"new"});
  EXPECT_THAT(textsIn(database), ElementsAre("new"));
}

TEST_F(StoredDatabaseTest, SaysThatAnotherProgramHoldsTheFile) {
  writeNotes({"kept"});
  auto holder = open();
  auto waiting = open();
  EXPECT_THAT(textsIn(waiting), ElementsAre("kept"));
  EXPECT_FALSE(holder.write([&](SqliteDatabase& database) {
    EXPECT_FALSE(adding("held")(database));
    EXPECT_EQ(sentenceOf(waiting.write(adding("refused"))),
              "note database: " + file().string() + ": another program is using it");
    EXPECT_THAT(textsIn(waiting), ElementsAre("kept"));
    return std::optional<Error>();
  }));
  EXPECT_THAT(textsIn(waiting), ElementsAre("kept", "held"));
}

TEST_F(StoredDatabaseTest, DeferredWritesWaitInOrderUntilTheFileIsFree) {
  auto holder = open();
  std::optional<StoredDatabase> deferring;
  deferring.emplace(file(), kFirstSchema, log_, kDeferred);
  const auto whileHeld = [&](const std::function<void()>& action) {
    EXPECT_FALSE(holder.write([&](SqliteDatabase& database) {
      action();
      return adding("held")(database);
    }));
  };
  int settledCount = 0;
  whileHeld([&] {
    for (const char* text : {"one", "two"})
      EXPECT_TRUE(deferring->save(adding(text), [&](bool isSaved) { settledCount += isSaved ? 1 : 0; }));
    EXPECT_EQ(failureCodeOf(*deferring->write(adding("refused"))), FailureCode::busy);
    EXPECT_THAT(textsIn(*deferring), IsEmpty()) << "reading goes on";
  });
  EXPECT_TRUE(deferring->waitUntilSaved());
  EXPECT_EQ(settledCount, 2);
  whileHeld([&] { deferring->save(adding("three")); });
  EXPECT_FALSE(deferring->write(adding("four"))) << "after the deferred writes";
  deferring->save([](SqliteDatabase& database) { return database.run("nonsense"); });
  EXPECT_TRUE(deferring->waitUntilSaved()) << "so that it does not hold the file";
  whileHeld([&] { deferring->save(adding("at the end")); });
  deferring.reset();
  EXPECT_THAT(textsIn(holder),
              ElementsAre("held", "one", "two", "held", "three", "four", "held", "at the end"));
  EXPECT_THAT(log_.lines(),
              ElementsAre(HasSubstr("using it; changes are saved when it is free"), HasSubstr("nonsense")));
}

TEST_F(StoredDatabaseTest, LogsTheNumberOfLostDeferredWrites) {
  auto holder = open();
  EXPECT_FALSE(holder.write([&](SqliteDatabase&) {
    auto deferring = openDeferred();
    for (const char* text : {"one", "two"}) deferring.save(adding(text));
    return std::optional<Error>();
  }));
  EXPECT_THAT(textsIn(holder), IsEmpty());
  EXPECT_EQ(log_.lines().back(),
            "note database: " + file().string() + ": another program is using it; 2 changes are lost");
}

TEST_F(StoredDatabaseTest, TheFileHasALogOnlyWhileSavesAreDeferred) {
  writeNotes({"kept"});
  openDeferred();
  EXPECT_EQ(journalMode(), "delete") << "when nothing was written";
  {
    auto deferring = openDeferred();
    EXPECT_FALSE(deferring.write(adding("more")));
    EXPECT_EQ(journalMode(), "wal");
    auto holder = SqliteDatabase::open("", file(), SqliteDatabase::Mode::readWrite, {});
    EXPECT_FALSE(holder->run("BEGIN EXCLUSIVE"));
    EXPECT_THAT(textsIn(deferring), ElementsAre("kept", "more")) << "nobody keeps it from reading";
    auto other = open();
    EXPECT_THAT(textsIn(other), ElementsAre("kept", "more"));
  }
  EXPECT_THAT(namesIn(file().parent_path()), ElementsAre("notes.sqlite"));
  EXPECT_EQ(journalMode(), "delete");
  const std::string before = textIn(file());
  auto reader = open();
  EXPECT_THAT(textsIn(reader), ElementsAre("kept", "more"));
  EXPECT_EQ(textIn(file()), before);
}

TEST_F(StoredDatabaseTest, OnlyItsUserMayReadItWhateverTheUmask) {
  const auto modeOf = [](const std::filesystem::path& path) {
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
  };
  for (const mode_t mask : {0000U, 0777U}) {
    const mode_t before = ::umask(mask);
    const auto path = folder_.path() / std::to_string(mask) / "deeper" / "notes.sqlite";
    {
      StoredDatabase database(path, kFirstSchema, log_, {.defersSaves = true});
      EXPECT_EQ(sentenceOf(database.write(adding("text"))), "");
      for (const char* suffix : {"", "-wal", "-shm"})
        EXPECT_EQ(modeOf(path.string() + suffix), 0600U) << suffix;
    }
    ::umask(before);
    EXPECT_EQ(modeOf(path.parent_path()), 0700U);
    EXPECT_EQ(modeOf(path.parent_path().parent_path()), 0700U);
  }
  writeNotes({"of an earlier version"});
  std::filesystem::permissions(file(), std::filesystem::perms(0644));
  std::filesystem::permissions(file().parent_path(), std::filesystem::perms(0755));
  writeNotes({"of this version"});
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(modeOf(file().parent_path()), 0700U);
}

TEST_F(StoredDatabaseTest, ProgramsThatStartTogetherInANewFolderAllWork) {
  constexpr int kPrograms = 8;
  int gate[2];
  ASSERT_EQ(::pipe(gate), 0);
  for (int program = 0; program < kPrograms; ++program) {
    if (::fork() != 0) continue;
    char byte = 0;
    ::close(gate[1]);
    static_cast<void>(::read(gate[0], &byte, 1));
    auto database = open(kFirstSchema, std::chrono::seconds(60));
    ::_exit(database.write(adding("started")) ? 1 : 0);
  }
  ::close(gate[0]);
  ::close(gate[1]);
  for (int program = 0; program < kPrograms; ++program) {
    int status = 0;
    ASSERT_GT(::wait(&status), 0);
    EXPECT_EQ(status, 0);
  }
  auto database = open();
  EXPECT_EQ(textsIn(database).size(), static_cast<std::size_t>(kPrograms));
  EXPECT_THAT(namesIn(file().parent_path()), ElementsAre("notes.sqlite"));
}

/// Drops root's rights over files during its life; does nothing for another user.
class WithoutRootsRights {
 public:
  WithoutRootsRights() : user_(::geteuid()), changed_(user_ == 0 && ::seteuid(65534) == 0) {}
  ~WithoutRootsRights() {
    if (changed_ && ::seteuid(user_) != 0) std::abort();
  }
  bool areTaken() const { return changed_; }
  WithoutRootsRights(const WithoutRootsRights&) = delete;
  WithoutRootsRights& operator=(const WithoutRootsRights&) = delete;

 private:
  uid_t user_;
  bool changed_;
};

TEST_F(StoredDatabaseTest, ReadsAFolderThatCannotBeWritten) {
  writeNotes({"kept"});
  const auto folder = file().parent_path();
  std::filesystem::permissions(folder_.path(), std::filesystem::perms{0755});
  std::filesystem::copy_file(file(), folder / "logged.sqlite");
  for (const char* name : {"notes.sqlite", "logged.sqlite"})
    std::filesystem::permissions(folder / name, std::filesystem::perms{0644});
  ASSERT_FALSE(SqliteDatabase::open("", folder / "logged.sqlite", SqliteDatabase::Mode::readWrite, {})
                   ->run("PRAGMA journal_mode = WAL"));
  std::filesystem::permissions(folder, std::filesystem::perms{0555});
  const std::string before = textIn(file());
  {
    const WithoutRootsRights rights;
    auto database = open();
    EXPECT_THAT(textsIn(database), ElementsAre("kept"));
    const auto error = database.write(adding("refused"));
    EXPECT_THAT(sentenceOf(error), HasSubstr("note database: " + file().string() + ": it "));
    EXPECT_THAT(textsIn(database), ElementsAre("kept"));

    // A program that was killed can leave the file like this.
    StoredDatabase logged(folder / "logged.sqlite", kFirstSchema, log_);
    EXPECT_THAT(textsIn(logged), ElementsAre("kept"));

    StoredDatabase absent(folder / "deeper" / "notes.sqlite", kFirstSchema, log_);
    EXPECT_THAT(textsIn(absent), IsEmpty());
    EXPECT_THAT(sentenceOf(absent.write(adding("refused"))), HasSubstr("the folder cannot be made"));
  }
  std::filesystem::permissions(folder, std::filesystem::perms{0700});
  {
    const WithoutRootsRights rights;
    auto hidden = open();
    if (rights.areTaken()) {
      EXPECT_THAT(sentenceOf(hidden.read(adding("unseen"))), HasSubstr("it cannot be opened"));
    }
  }
  EXPECT_EQ(textIn(file()), before);
}

TEST_F(StoredDatabaseTest, AFullDiskLosesNothing) {
  writeNotes({"kept"});
  StoredDatabase database(file(), kFirstSchema, log_, {.maximumPageCount = 8});
  const auto error = database.write(adding(std::string(100'000, 'x')));
  EXPECT_EQ(sentenceOf(error), "note database: " + file().string() + ": the disk is full");
  EXPECT_EQ(failureCodeOf(*error), FailureCode::full);
  EXPECT_THAT(textsIn(database), ElementsAre("kept"));
  EXPECT_FALSE(database.write(adding("small")));
  EXPECT_THAT(textsIn(database), ElementsAre("kept", "small"));
}

TEST_F(StoredDatabaseTest, AProgramKilledWhileItWritesLeavesWholeTransactions) {
  writeNotes({"kept"});
  for (const bool defersSaves : {false, true}) {
    const pid_t child = ::fork();
    if (child == 0) {
      StoredDatabase database(file(), kFirstSchema, log_, {.defersSaves = defersSaves});
      static_cast<void>(database.write(adding("confirmed")));
      static_cast<void>(database.write([](SqliteDatabase& open) -> std::optional<Error> {
        // More than the page cache holds, so that the file or its log is half changed.
        static_cast<void>(open.run("PRAGMA cache_size = 4"));
        static_cast<void>(open.run("UPDATE note SET text = 'changed'"));
        for (int i = 0; i < 200; ++i) static_cast<void>(adding(std::string(4000, 'x'))(open));
        ::kill(::getpid(), SIGKILL);
        return std::nullopt;
      }));
      ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_GT(std::filesystem::file_size(file().string() + (defersSaves ? "-wal" : "")), 100'000U);
    ASSERT_EQ(std::filesystem::exists(file().string() + "-journal"), !defersSaves);
    auto database = open();
    EXPECT_EQ(textsIn(database).back(), "confirmed");
    EXPECT_FALSE(database.write(adding("after")));
  }
  auto database = open();
  EXPECT_THAT(textsIn(database), ElementsAre("kept", "confirmed", "after", "confirmed", "after"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

/// Programs that follow the log look at the file after each of its changes.
TEST_F(StoredDatabaseTest, ChangesItsLogOnceMoreWhenACommitCanBeRead) {
  auto database = openDeferred();
  ASSERT_FALSE(database.write(adding("first")));
  const int changes = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(::inotify_add_watch(changes, (file().string() + "-wal").c_str(), IN_MODIFY | IN_ATTRIB), 0);
  auto other = open();
  ASSERT_FALSE(other.write(adding("second")));
  std::vector<std::uint32_t> masks;
  for (inotify_event event{}; ::read(changes, &event, sizeof event) == sizeof event;)
    masks.push_back(event.mask);
  ::close(changes);
  ASSERT_THAT(masks, Contains(std::uint32_t{IN_MODIFY}));
  EXPECT_EQ(masks.back(), std::uint32_t{IN_ATTRIB});
}

TEST_F(StoredDatabaseTest, ReportsEachSentenceOnce) {
  auto database = open();
  for (const char* sentence : {"one", "two", "one"}) database.report(failure(sentence, "", "why"));
  EXPECT_THAT(log_.lines(), ElementsAre("one: why", "two: why"));
}

}  // namespace
}  // namespace linewatch
