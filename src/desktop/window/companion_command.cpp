#include "desktop/window/companion_command.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <filesystem>
#include <utility>

#include "companion/companion_session.h"
#include "companion/opened_content.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

Error commandFailure(const QString& command, const QString& why) {
  return failure("the companion command", command.toStdString(), why.toStdString());
}

QString sessionOf(const UserActivity& activity) {
  const auto session = activity.userInfo.find(kSessionKey);
  const auto* const text = session == activity.userInfo.end() ? nullptr : session->second.get<std::string>();
  return text ? QString::fromStdString(*text) : QString();
}

std::filesystem::path temporaryFolder() { return QDir::tempPath().toStdString(); }

}  // namespace

CompanionCommand::CompanionCommand(QStringList words) { setWords(std::move(words)); }

void CompanionCommand::setWords(QStringList words) {
  words_ = std::move(words);
  if (isSet()) ContentFolder::removeAbandoned(temporaryFolder());
}

std::optional<Error> CompanionCommand::open(const URL& url) const {
  return start(QString::fromStdString(url.absoluteString), nullptr);
}

std::optional<Error> CompanionCommand::open(const UserActivity& activity) {
  const auto bytes = contentBytes(activity);
  if (!bytes) return bytes.error();
  const auto path = newFile(activity);
  if (!path) return within("the companion command", path.error());
  QFile file(*path);
  const auto size = static_cast<qint64>(bytes->size());
  const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
                         file.write(reinterpret_cast<const char*>(bytes->data()), size) == size &&
                         file.flush();
  if (!isWritten) return commandFailure(file.fileName(), file.errorString());
  file.close();
  return start(file.fileName(), &activity);
}

Outcome<QString> CompanionCommand::newFile(const UserActivity& activity) {
  if (!folder_) {
    auto made = ContentFolder::make(temporaryFolder());
    if (!made) return made.error();
    folder_.emplace(std::move(*made));
  }
  const QString extension = QString::fromStdString(activity.activityType).section(QLatin1Char('.'), -1);
  const QString name = QString::number(++fileCount_) + QLatin1Char('.') + extension;
  return QDir(QString::fromStdString(folder_->path().string())).filePath(name);
}

std::optional<Error> CompanionCommand::start(const QString& argument, const UserActivity* activity) const {
  QProcess process;
  process.setProgram(words_.front());
  process.setArguments(words_.mid(1) + QStringList{argument});
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  if (activity) {
    environment.insert(QStringLiteral("LINEWATCH_ACTIVITY_TYPE"),
                       QString::fromStdString(activity->activityType));
    environment.insert(QStringLiteral("LINEWATCH_SESSION"), sessionOf(*activity));
  }
  process.setProcessEnvironment(environment);
  if (process.startDetached()) return std::nullopt;
  return commandFailure(words_.front(), process.errorString());
}

}  // namespace linewatch::desktop
