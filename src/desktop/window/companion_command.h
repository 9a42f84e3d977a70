#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "machine/content_folder.h"
#include "platform/system_controller.h"
#include "platform/url.h"
#include "shared/error.h"

namespace linewatch::desktop {

/// The user's own companion: a command that LineWatch starts for each tapped row. The command's words get one
/// more argument. This is either a URL, or the path of a file with the row's encoded content; the file is
/// deleted with this object. The environment variables LINEWATCH_ACTIVITY_TYPE and LINEWATCH_SESSION describe
/// the content. Main thread.
class CompanionCommand {
 public:
  /// `words`: the program and its first arguments; empty when the user has no command.
  explicit CompanionCommand(QStringList words);

  /// Replaces the command. Files of the content that is open stay.
  void setWords(QStringList words);
  /// Whether the user has a command.
  bool isSet() const { return !words_.isEmpty(); }
  /// Starts the command and does not wait for its end. An error when it cannot be started.
  std::optional<Error> open(const URL& url) const;
  std::optional<Error> open(const UserActivity& activity);

 private:
  std::optional<Error> start(const QString& argument, const UserActivity* activity) const;
  /// The path of a new file, in a folder that is made for the first file.
  Outcome<QString> newFile(const UserActivity& activity);

  QStringList words_;
  std::optional<ContentFolder> folder_;
  int fileCount_ = 0;
};

}  // namespace linewatch::desktop
