#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <optional>
#include <utility>

#include "platform/system_controller.h"
#include "platform/url.h"
#include "shared/error.h"

namespace linewatch::desktop {

/// A command of the user's that is called with what a row opens: its words, then one more, a URL or the path
/// of a file. The file holds the bytes that the row hands over, as they are, and goes with this object. The
/// environment says more: LINEWATCH_ACTIVITY_TYPE and LINEWATCH_SESSION. Main thread.
class CompanionCommand {
 public:
  /// `words`: the program and its first arguments; none: no command.
  explicit CompanionCommand(QStringList words) : words_(std::move(words)) {}

  /// Whether there is a command at all.
  bool isSet() const { return !words_.isEmpty(); }
  /// The command goes on by itself; an error when it cannot be started.
  std::optional<Error> open(const URL& url) const;
  std::optional<Error> open(const UserActivity& activity);

 private:
  std::optional<Error> start(const QString& argument, const UserActivity* activity) const;
  /// The path of a new file.
  QString nextFile(const UserActivity& activity);

  QStringList words_;
  /// Made when it is first needed.
  std::unique_ptr<QTemporaryDir> folder_;
  int fileCount_ = 0;
};

}  // namespace linewatch::desktop
