#include "desktop/window/color_scheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServer>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <optional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/window/window_colors.h"
#include "desktop/window/window_events.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;

/// A settings service at the other end of a D-Bus connection.
class Portal final : public QDBusVirtualObject {
 public:
  Portal() {
    server_.setAnonymousAuthenticationAllowed(true);
    connect(&server_, &QDBusServer::newConnection, this, [this](QDBusConnection connection) {
      connection.registerVirtualObject("/org/freedesktop/portal/desktop", this);
      connection_ = connection;
    });
  }

  QDBusConnection connectTo() { return QDBusConnection::connectToPeer(server_.address(), "panel"); }
  bool hasConnection() const { return connection_.has_value(); }
  void change(const QString& key, const std::optional<uint>& scheme) {
    scheme_ = scheme;
    QDBusMessage signal = QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                                     "org.freedesktop.portal.Settings", "SettingChanged");
    signal << "org.freedesktop.appearance" << key << QVariant::fromValue(QDBusVariant(scheme.value_or(0)));
    connection_->send(signal);
  }
  int questions() const { return questions_; }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() != "Read") return false;
    ++questions_;
    const bool isAsExpected =
        message.interface() == "org.freedesktop.portal.Settings" &&
        message.arguments() == QVariantList{"org.freedesktop.appearance", "color-scheme"};
    if (!isAsExpected || !scheme_) {
      return connection.send(message.createErrorReply("org.freedesktop.portal.Error.NotFound", "none"));
    }
    const QVariant inner = QVariant::fromValue(QDBusVariant(*scheme_));
    return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(inner))));
  }

  std::optional<uint> scheme_ = 1;

 private:
  QDBusServer server_;
  std::optional<QDBusConnection> connection_;
  int questions_ = 0;
};

TEST(ColorSchemeTest, FollowsTheDesktopsSettings) {
  needApplication();
  Portal portal;
  const QDBusConnection bus = portal.connectTo();
  waitUntil([&] { return portal.hasConnection(); });
  std::vector<ColorScheme> schemes;
  {
    QObject owner;
    followColorScheme(bus, owner, [&](ColorScheme scheme) { schemes.push_back(scheme); });
    EXPECT_TRUE(schemes.empty()) << "it does not block";
    waitUntil([&] { return schemes.size() == 1; });
    portal.change("color-scheme", 2);
    waitUntil([&] { return schemes.size() == 2; });
    portal.change("color-scheme", std::nullopt);
    waitUntil([&] { return portal.questions() == 3; });
    portal.change("accent-color", 1);
    portal.change("color-scheme", 0);
    waitUntil([&] { return schemes.size() == 3; });
    EXPECT_EQ(portal.questions(), 4) << "other settings are ignored";
  }
  portal.change("color-scheme", 1);
  settle();
  EXPECT_THAT(schemes, ElementsAre(ColorScheme::dark, ColorScheme::light, ColorScheme::any));
  QDBusConnection::disconnectFromPeer("panel");
}

TEST(ColorSchemeTest, AppliesAndRestoresThePalette) {
  needApplication();
  const QPalette usual = QApplication::palette();
  ASSERT_EQ(appearanceOf(usual), ui::Appearance::light);
  applyColorScheme(ColorScheme::light);
  EXPECT_EQ(QApplication::palette(), usual) << "it was light already";
  applyColorScheme(ColorScheme::dark);
  EXPECT_EQ(appearanceOf(QApplication::palette()), ui::Appearance::dark);
  applyColorScheme(ColorScheme::light);
  EXPECT_EQ(QApplication::palette(), usual);
  applyColorScheme(ColorScheme::dark);
  applyColorScheme(ColorScheme::any);
  EXPECT_EQ(QApplication::palette(), usual);
  applyHighContrast(true);
  EXPECT_EQ(appearanceOf(QApplication::palette()), ui::Appearance::lightHighContrast);
  applyColorScheme(ColorScheme::dark);
  EXPECT_EQ(appearanceOf(QApplication::palette()), ui::Appearance::darkHighContrast);
  applyHighContrast(false);
  EXPECT_EQ(appearanceOf(QApplication::palette()), ui::Appearance::dark);
  applyColorScheme(ColorScheme::any);
  EXPECT_EQ(QApplication::palette(), usual);
}

}  // namespace
}  // namespace linewatch::desktop
