#include "desktop/presence/rider_notices.h"

#include <QDBusConnection>
#include <QDBusReply>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/presence/bus_call.h"
#include "desktop/presence/notification_server.h"
#include "desktop/presence/private_bus.h"
#include "desktop/window/window_events.h"
#include "feeds/gtfs/line_index.h"
#include "platform/recording_log.h"
#include "simulation/platform_test.h"
#include "temporary_folder.h"

namespace linewatch::desktop {
namespace {

using notices::LineKey;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notices of the lines U4 and U6, which have subscriptions, over a private bus.
class RiderNoticesTest : public PlatformTest {
 protected:
  RiderNoticesTest() {
    needApplication();
    for (const LineKey& line : {kLine, kOther}) EXPECT_TRUE(*stored_.subscribe({.line = line, .hours = {}}));
    startServer("server");
    restart();
    answer(0, {});
    wait([&] { return !stored_.state()->empty(); });
  }

  void startServer(const QString& connection) {
    server_ =
        std::make_unique<NotificationServer>(bus_.connection(connection), QStringList{"body", "actions"});
  }
  /// Another run of the program.
  void restart() {
    if (notices_) notices_->finish();
    notices_ = nullptr;
    notices_ = std::make_unique<RiderNotices>(
        bus_.connection("panel"), std::make_shared<const WindowTexts>(*UserLocale::parse("en")), stored_,
        platform_->mainLoop(),
        RiderNotices::Services{.inBackground = [](const std::function<void()>& work) { work(); },
                               .open = [this](const notices::Notice& notice,
                                              const std::string&) { opened_.push_back(notice.tag); }});
  }

  static void addLine(const LineKey& key, const std::string& name, const std::vector<std::string>& titles,
                      TransitStatus& status) {
    StatusLine line{.muid = stableMuid(key.feed, key.route), .name = name, .agency = {}, .incidents = {}};
    for (const std::string& title : titles) {
      line.incidents.push_back(status.incidents.size());
      status.incidents.push_back({.muid = std::hash<std::string>()(title),
                                  .title = title,
                                  .summary = "Until noon",
                                  .severity = StatusSeverity::severe});
    }
    status.lines.push_back(std::move(line));
  }
  /// An answer about the lines, `minutes` after the one before. Each incident has its title as its id.
  void answer(double minutes, const std::vector<std::string>& titles,
              const std::vector<std::string>& titlesOfOther = {}) {
    TransitStatus status;
    addLine(kLine, "U4", titles, status);
    addLine(kOther, "U6", titlesOfOther, status);
    take(status, minutes);
  }
  void take(const TransitStatus& status, double minutes) {
    platform_->mainLoop().advance(Seconds(minutes * 60));
    notices_->take(status);
    platform_->mainLoop().advance(Seconds(0));
  }

  /// Waits until the condition holds. Work in the background hands its results to the virtual loop.
  template <class Condition>
  void wait(Condition condition) {
    waitUntil([&] {
      platform_->mainLoop().advance(Seconds(0));
      return condition();
    });
  }
  /// The last of `count` notifications.
  NotificationServer::Shown shown(std::size_t count) {
    wait([&] { return server_->shown().size() >= count; });
    EXPECT_EQ(server_->shown().size(), count);
    return server_->shown().back();
  }
  /// The run of the server, as the saved state names it.
  std::string serverName() {
    const QDBusConnection bus = bus_.connection("panel");
    const QDBusReply<QString> id = bus.call(busDaemonCall("GetId"));
    return id.value().toStdString() + " " + bus_.connection("server").baseService().toStdString();
  }
  /// Activates the action until the program is ready for it.
  void invoke(uint id, const QString& action) {
    opened_.clear();
    wait([&] {
      server_->invoke(id, action);
      return !opened_.empty();
    });
  }

  static inline const LineKey kLine{"city", "u4"};
  static inline const LineKey kOther{"city", "u6"};
  TemporaryFolder folder_;
  RecordingLog log_;
  StoredNotices stored_{makeStateDatabase({.data = folder_.path(), .cache = folder_.path()}, log_)};
  PrivateBus bus_;
  std::unique_ptr<NotificationServer> server_;
  std::vector<std::string> opened_;
  std::unique_ptr<RiderNotices> notices_;
};

TEST_F(RiderNoticesTest, TellsMutesAndOpensTheNewsOfALine) {
  answer(2, {"Fire"});
  const NotificationServer::Shown fire = shown(1);
  EXPECT_EQ(fire.title, "LineWatch_Single_Line_Prepended_Incident_Text(U4|Fire)");
  EXPECT_EQ(fire.body, "Until noon");
  EXPECT_THAT(fire.actions, ElementsAre("default", "Details", "details", "Details", "mute", "Mute"));
  EXPECT_EQ(fire.urgency, 2);
  invoke(fire.id, "details");
  EXPECT_EQ(opened_.front(), "city:u4");
  server_->invoke(fire.id, "mute");
  wait([&] { return !server_->closed().empty(); });
  EXPECT_EQ(stored_.rules()->mutes.size(), 1U);
  answer(2, {"Fire", "Strike"});
  EXPECT_EQ(shown(2).body, "Until noon") << "a muted incident is not repeated";
  answer(2, {});
  answer(5, {});
  const NotificationServer::Shown over = shown(3);
  EXPECT_EQ(over.title, "LineWatch_Single_Line_Prepended_Incident_Text(U4|LineWatch_GoodService_Title)");
  EXPECT_EQ(over.urgency, 0);
  EXPECT_EQ(over.replaces, server_->shown()[1].id);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(RiderNoticesTest, KnowsItsNotificationsAfterARestartUntilTheServerEnds) {
  answer(2, {"Fire"});
  const uint fire = shown(1).id;
  wait([&] { return !stored_.shown(serverName())->empty(); });
  restart();
  invoke(fire, "details");
  answer(2, {"Fire", "Strike"});
  EXPECT_EQ(shown(2).replaces, fire);
  wait([&] { return stored_.shown(serverName())->front().notice.entries.front().incidents.size() == 2; });
  restart();
  server_ = nullptr;
  startServer("other server");
  answer(2, {"Fire", "Strike", "Works"});
  EXPECT_EQ(shown(1).replaces, 0U);
}

TEST_F(RiderNoticesTest, ClaimsNewsOnlyWhileAServerAnswers) {
  server_ = nullptr;
  answer(2, {"Fire"});
  answer(2, {"Fire"});
  EXPECT_THAT(stored_.state()->at(kLine).told, IsEmpty());
  startServer("server");
  EXPECT_EQ(shown(1).title, "LineWatch_Single_Line_Prepended_Incident_Text(U4|Fire)");
  answer(2, {"Fire"});
  answer(2, {"Strike"});
  shown(2);
}

TEST_F(RiderNoticesTest, RewritesANotificationOfSeveralLines) {
  answer(2, {"Fire"}, {"Fire"});
  const NotificationServer::Shown both = shown(1);
  EXPECT_EQ(both.title, "LineWatch_2_Lines_Prepended_Incident_Text(U4|U6|Fire)");
  wait([&] { return !stored_.shown(serverName())->empty(); });
  answer(2, {"Strike"}, {"Fire"});
  const NotificationServer::Shown strike = shown(3);
  const NotificationServer::Shown rest = server_->shown()[1];
  EXPECT_EQ(rest.title, "LineWatch_Single_Line_Prepended_Incident_Text(U6|Fire)");
  EXPECT_EQ(rest.replaces, both.id);
  EXPECT_EQ(strike.title, "LineWatch_Single_Line_Prepended_Incident_Text(U4|Strike)");
  EXPECT_EQ(strike.replaces, 0U);
  invoke(both.id, "details");
  EXPECT_EQ(opened_.front(), "city:u6");
}

TEST_F(RiderNoticesTest, MarksTheMadeUpCityAndKeepsTheOrderOfTheLines) {
  TransitStatus status{.isSampleCity = true};
  addLine(kOther, "U6", {"Fire"}, status);
  addLine(kLine, "U4", {"Fire"}, status);
  take(status, 2);
  EXPECT_EQ(shown(1).title, "A made-up city: LineWatch_2_Lines_Prepended_Incident_Text(U6|U4|Fire)");
}

}  // namespace
}  // namespace linewatch::desktop
