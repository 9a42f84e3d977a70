#include "desktop/loop/file_watch.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <filesystem>

#include <gtest/gtest.h>

#include "shared/file_contents.h"
#include "temporary_folder.h"

namespace linewatch::desktop {
namespace {

namespace fs = std::filesystem;

TEST(FileWatchTest, HearsOfEveryWayInWhichAFileChanges) {
  static int count = 1;
  static char name[] = "test";
  static char* arguments[] = {name, nullptr};
  const QCoreApplication application(count, arguments);
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "a" / "b" / "settings.toml";
  QObject owner;
  int changes = 0;
  watchFile(owner, file, [&changes] { ++changes; });
  const auto awaitChange = [&changes] {
    while (changes == 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    changes = 0;
  };
  const auto write = [](const fs::path& written, const char* text) {
    ASSERT_FALSE(writeWhole(written, text));
  };

  fs::create_directories(file.parent_path());  // after the watch began
  write(file, "made");
  awaitChange();
  write(file, "replaced");
  awaitChange();
  fs::resize_file(file, 1);  // in place
  awaitChange();
  fs::remove(file);
  awaitChange();
  fs::create_directory(folder.path() / "dotfiles");
  write(folder.path() / "dotfiles" / "target", "linked");
  fs::create_symlink(folder.path() / "dotfiles" / "target", file);
  awaitChange();
  write(folder.path() / "dotfiles" / "target", "replaced behind the link");
  awaitChange();
  fs::remove_all(folder.path() / "a");
  awaitChange();
  fs::create_directories(file.parent_path());
  write(file, "again");
  awaitChange();
}

}  // namespace
}  // namespace linewatch::desktop
