#include "storage/stored_database.h"

#include <array>
#include <csignal>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/recording_log.h"
#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::array<std::string_view, 2> kSteps = {
    "CREATE TABLE note (id INTEGER PRIMARY KEY, text TEXT NOT NULL) STRICT",
    "ALTER TABLE note ADD COLUMN stars INTEGER NOT NULL DEFAULT 5"};
constexpr DatabaseSchema kFirstSchema{"note database", 77, std::span(kSteps).first(1)};
constexpr DatabaseSchema kSecondSchema{"note database", 77, kSteps};
constexpr DatabaseSchema kStrangersSchema{"picture database", 78, std::span(kSteps).first(1)};

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
    return {file(), schema, log_, {busyTimeout, std::nullopt}};
  }
  void writeNotes(const std::vector<std::string>& texts) {
    auto database = open();
    for (const auto& text : texts) ASSERT_EQ(sentenceOf(database.write(adding(text))), "");
  }

  TemporaryFolder folder_;
  RecordingLog log_;
};

TEST_F(StoredDatabaseTest, ReadingMakesNothing) {
  auto database = open();
  EXPECT_THAT(textsIn(database), IsEmpty());
  EXPECT_THAT(namesIn(folder_.path()), IsEmpty());

  // An empty file is what a program leaves that ended before its first write was done.
  std::filesystem::create_directory(file().parent_path());
  writeFile(file(), "");
  EXPECT_THAT(textsIn(database), IsEmpty());
  EXPECT_EQ(textIn(file()), "");
  EXPECT_EQ(sentenceOf(database.write(adding("first"))), "");
  EXPECT_THAT(textsIn(database), ElementsAre("first"));
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

TEST_F(StoredDatabaseTest, TwoProgramsShareAFile) {
  auto first = open();
  auto second = open();
  EXPECT_FALSE(first.write(adding("from the first")));
  EXPECT_FALSE(second.write(adding("from the second")));
  EXPECT_THAT(textsIn(first), ElementsAre("from the first", "from the second"));
  EXPECT_THAT(textsIn(second), ElementsAre("from the first", "from the second"));
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

TEST_F(StoredDatabaseTest, LeavesAStrangersDatabaseAlone) {
  writeNotes({"mine"});
  const std::string before = textIn(file());
  auto stranger = open(kStrangersSchema);
  for (const auto& error : {stranger.read(adding("unseen")), stranger.write(adding("unseen"))}) {
    EXPECT_THAT(sentenceOf(error), HasSubstr("another program's database stands in its place"));
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
  for (const std::string& damaged : {std::string(3000, 'x'), withoutSchema, withoutTable}) {
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

TEST_F(StoredDatabaseTest, AFileThatTookTheDamagedOnesPlaceStays) {
  writeNotes({"lost"});
  auto slow = open();
  const auto error = slow.read([&](SqliteDatabase&) -> std::optional<Error> {
    // Meanwhile another program has found the damage and begun a new file.
    std::filesystem::rename(file(), file().string() + ".damaged");
    writeNotes({"new"});
    return Error{std::string(kSqliteErrorDomain), 11, {{kLocalizedDescriptionKey, "damaged"}}};
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

TEST_F(StoredDatabaseTest, AThreadInAHurryPutsOffWhatItSavesUntilTheFileIsFree) {
  auto holder = open();
  auto hurried = std::make_unique<StoredDatabase>(
      file(), kFirstSchema, log_, StoredDatabase::Options{.haste = std::chrono::milliseconds(0)});
  hurried->hurryOnThisThread();
  const auto whileHeld = [&](const std::function<void()>& action) {
    EXPECT_FALSE(holder.write([&](SqliteDatabase& database) {
      action();
      return adding("held")(database);
    }));
  };
  whileHeld([&] {
    for (const char* text : {"one", "two"}) EXPECT_TRUE(hurried->save(adding(text)));
    EXPECT_TRUE(hurried->write(adding("refused")));
  });
  EXPECT_TRUE(hurried->isBehind());
  EXPECT_THAT(textsIn(*hurried), ElementsAre("held", "one", "two"));
  EXPECT_FALSE(hurried->isBehind());
  whileHeld([&] {
    EXPECT_TRUE(hurried->save(adding("three")));
    EXPECT_THAT(textsIn(*hurried), ElementsAre("held", "one", "two")) << "reading goes on";
  });
  EXPECT_FALSE(hurried->write(adding("four"))) << "which comes after what was put off";
  EXPECT_FALSE(hurried->save([](SqliteDatabase& database) { return database.run("nonsense"); }));
  whileHeld([&] { EXPECT_TRUE(hurried->save(adding("at the end"))); });
  hurried = nullptr;
  EXPECT_THAT(textsIn(holder),
              ElementsAre("held", "one", "two", "held", "three", "four", "held", "at the end"));
  EXPECT_THAT(log_.lines(),
              ElementsAre(HasSubstr("using it; what is to be saved waits for it"), HasSubstr("nonsense")));
}

/// Takes root's rights over files away from the process for a while; another user has none to lose.
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
  std::filesystem::permissions(folder, std::filesystem::perms{0555});
  const std::string before = textIn(file());
  {
    const WithoutRootsRights rights;
    auto database = open();
    EXPECT_THAT(textsIn(database), ElementsAre("kept"));
    const auto error = database.write(adding("refused"));
    EXPECT_THAT(sentenceOf(error), HasSubstr("note database: " + file().string() + ": it "));
    EXPECT_THAT(textsIn(database), ElementsAre("kept"));

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
  StoredDatabase database(file(), kFirstSchema, log_, {std::chrono::milliseconds(0), 8});
  const auto error = database.write(adding(std::string(100'000, 'x')));
  EXPECT_EQ(sentenceOf(error), "note database: " + file().string() + ": the disk is full");
  EXPECT_THAT(textsIn(database), ElementsAre("kept"));
  EXPECT_FALSE(database.write(adding("small")));
  EXPECT_THAT(textsIn(database), ElementsAre("kept", "small"));
}

TEST_F(StoredDatabaseTest, AProgramKilledWhileItWritesLeavesAllOrNothing) {
  writeNotes({"kept"});
  const pid_t child = ::fork();
  if (child == 0) {
    auto database = open();
    static_cast<void>(database.write([](SqliteDatabase& open) -> std::optional<Error> {
      // More than the page cache holds, so that the file itself is half changed.
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
  ASSERT_TRUE(std::filesystem::exists(file().string() + "-journal"));
  ASSERT_GT(std::filesystem::file_size(file()), 100'000U);
  auto database = open();
  EXPECT_THAT(textsIn(database), ElementsAre("kept"));
  EXPECT_FALSE(database.write(adding("after")));
  EXPECT_THAT(textsIn(database), ElementsAre("kept", "after"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(StoredDatabaseTest, ReportsEachSentenceOnce) {
  auto database = open();
  for (const char* sentence : {"one", "two", "one"}) database.report(failure(sentence, "", "why"));
  EXPECT_THAT(log_.lines(), ElementsAre("one: why", "two: why"));
}

}  // namespace
}  // namespace linewatch
