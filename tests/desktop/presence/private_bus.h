#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <string>

#include "temporary_folder.h"

namespace linewatch::desktop {

/// A message bus of the test's own, which starts no services. Its connections have names, so that a program
/// and a service can be two clients of it.
class PrivateBus {
 public:
  PrivateBus() {
    const std::string configuration = folder_.write("bus.conf", kConfiguration);
    daemon_.start("dbus-daemon", {"--config-file=" + QString::fromStdString(configuration), "--nofork",
                                  "--nopidfile", "--print-address"});
    if (daemon_.waitForReadyRead()) address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
  }
  ~PrivateBus() {
    for (const QString& name : names_) QDBusConnection::disconnectFromBus(name);
    daemon_.kill();
    daemon_.waitForFinished();
  }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  QDBusConnection connection(const QString& name) {
    names_ << name;
    return QDBusConnection::connectToBus(address_, name);
  }

 private:
  static constexpr const char* kConfiguration =
      "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy context=\"default\">"
      "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>";

  TemporaryFolder folder_;
  QProcess daemon_;
  QString address_;
  QStringList names_;
};

}  // namespace linewatch::desktop
