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

/// A command of the user's that is run with what a row opens. One argument is added to its words: a URL, or
/// the path of a file with the encoded content. The file is deleted with this object. The environment
/// variables LINEWATCH_ACTIVITY_TYPE and LINEWATCH_SESSION describe the content. Main thread.
class CompanionCommand {
 public:
  /// `words`: the program and its first arguments; empty: no command.
  explicit CompanionCommand(QStringList words) : words_(std::move(words)) {}

  /// Whether there is a command.
  bool isSet() const { return !words_.isEmpty(); }
  /// Starts the command, and does not wait for it. An error when it cannot be started.
  std::optional<Error> open(const URL& url) const;
  std::optional<Error> open(const UserActivity& activity);

 private:
  std::optional<Error> start(const QString& argument, const UserActivity* activity) const;
  /// A path for a new file.
  QString nextFile(const UserActivity& activity);

  QStringList words_;
  /// Made on first use.
  std::unique_ptr<QTemporaryDir> folder_;
  int fileCount_ = 0;
};

}  // namespace linewatch::desktop
