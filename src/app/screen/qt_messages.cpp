#include "app/screen/qt_messages.h"

#include <QString>
#include <atomic>

#include "machine/stderr_log.h"

namespace linewatch::app {

namespace {

// Atomic, because messages come from every thread. They also come before the platform exists.
std::atomic<bool> isVerboseAboutQt = false;

void logQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
  const LogLevel level = type == QtFatalMsg ? LogLevel::error : LogLevel::debug;
  StderrLog(isVerboseAboutQt).write({level, kLogCategory, "Qt: %@", {Value(text.toStdString())}});
}

}  // namespace

void logQtMessages(bool isVerbose) {
  isVerboseAboutQt = isVerbose;
  qInstallMessageHandler(logQtMessage);
}

}  // namespace linewatch::app
