#include "machine/content_folder.h"

#include <optional>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::HasSubstr;

/// Makes a folder with a file in a process that ends without any clean-up, like one that is killed.
void makeInKilledProcess(const std::filesystem::path& parent) {
  const pid_t process = fork();
  if (process == 0) {
    const auto folder = ContentFolder::make(parent);
    if (folder) writeFile(folder->path() / "1.Incident", "content");
    _exit(folder ? 0 : 1);
  }
  int status = 0;
  waitpid(process, &status, 0);
  ASSERT_EQ(status, 0);
}

TEST(ContentFolder, IsTheUsersAloneAndIsDeletedWithItsFiles) {
  const TemporaryFolder parent;
  std::optional<ContentFolder> moved;
  {
    auto folder = ContentFolder::make(parent.path());
    ASSERT_TRUE(folder);
    moved.emplace(std::move(*folder));
  }
  struct stat status {};
  ASSERT_EQ(stat(moved->path().c_str(), &status), 0) << "a moved object keeps the folder";
  EXPECT_EQ(status.st_mode & 0777, 0700U);
  writeFile(moved->path() / "1.Incident", "content");
  moved.reset();
  EXPECT_TRUE(namesIn(parent.path()).empty());
}

TEST(ContentFolder, RemovesFoldersOfKilledProcessesOnly) {
  const TemporaryFolder parent;
  makeInKilledProcess(parent.path());
  const auto own = ContentFolder::make(parent.path());
  ASSERT_TRUE(own);
  std::filesystem::create_directory(parent.path() / "linewatch-other");
  std::filesystem::create_directory_symlink(parent.path() / "linewatch-other",
                                            parent.path() / "linewatch-companion-link");
  ASSERT_EQ(namesIn(parent.path()).size(), 4U);
  ContentFolder::removeAbandoned(parent.path());
  EXPECT_EQ(namesIn(parent.path()),
            (std::set<std::string>{own->path().filename(), "linewatch-other", "linewatch-companion-link"}));
  ContentFolder::removeAbandoned(parent / "missing");
}

TEST(ContentFolder, ReportsWhereNoFolderCanBeMade) {
  const TemporaryFolder parent;
  const auto folder = ContentFolder::make(parent / "missing");
  ASSERT_FALSE(folder);
  EXPECT_EQ(failureCodeOf(folder.error()), FailureCode::notFound);
  EXPECT_THAT(sentenceOf(folder.error()), HasSubstr("missing: No such file or directory"));
}

}  // namespace
}  // namespace linewatch
