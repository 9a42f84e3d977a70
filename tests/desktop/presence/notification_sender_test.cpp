#include "desktop/presence/notification_sender.h"

#include <QDBusServiceWatcher>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/presence/notification_server.h"
#include "desktop/presence/private_bus.h"
#include "desktop/window/window_events.h"
#include "simulation/platform_test.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class NotificationSenderTest : public PlatformTest {
 protected:
  NotificationSenderTest() {
    needApplication();
    platform_->log().setListener([this](const LogMessage& message) { log_.push_back(message.text(false)); });
    const QDBusConnection bus = bus_.connection("panel");
    watcher_ = std::make_unique<QDBusServiceWatcher>("org.freedesktop.Notifications", bus);
    QObject::connect(watcher_.get(), &QDBusServiceWatcher::serviceRegistered, [this] { ++startedServers_; });
    sender_.emplace(bus,
                    NotificationSender::Handlers{
                        .serverDidChange = [this](const std::string& server) { servers_.push_back(server); },
                        .shown = [this](const std::string& tag, std::uint32_t id) { ids_[tag] = id; },
                        .closed = [this](const std::string& tag) { ids_.erase(tag); },
                        .open = [this](const std::string& tag,
                                       const std::string& token) { opened_.emplace_back(tag, token); },
                        .mute = [this](const std::string& tag) { muted_.push_back(tag); }});
  }

  void startServer(const QStringList& capabilities) {
    const int before = startedServers_;
    server_ = nullptr;
    server_ = std::make_unique<NotificationServer>(bus_.connection("server"), capabilities);
    waitUntil([&] { return startedServers_ > before; });
  }
  void waitForShown(std::size_t count) {
    waitUntil([&] { return server_->shown().size() == count; });
  }

  PrivateBus bus_;
  std::unique_ptr<QDBusServiceWatcher> watcher_;
  int startedServers_ = 0;
  std::unique_ptr<NotificationServer> server_;
  std::vector<std::string> log_;
  std::vector<std::string> servers_;
  std::map<std::string, std::uint32_t> ids_;
  std::vector<std::pair<std::string, std::string>> opened_;
  std::vector<std::string> muted_;
  std::optional<NotificationSender> sender_;
};

const Notification kFire{.tag = "city:u4",
                         .title = "U4: Fire",
                         .body = "<b>No trains</b> & buses",
                         .urgency = Notification::Urgency::critical,
                         .details = "Details",
                         .mute = "Mute"};

TEST_F(NotificationSenderTest, ShowsWhatTheServerCanShow) {
  startServer({"body", "body-markup", "actions", "persistence"});
  sender_->send(kFire);
  waitForShown(1);
  const NotificationServer::Shown& rich = server_->shown().front();
  EXPECT_EQ(rich.title, "U4: Fire");
  EXPECT_EQ(rich.body, "&lt;b&gt;No trains&lt;/b&gt; &amp; buses") << "texts of feeds are no markup";
  EXPECT_THAT(rich.actions, ElementsAre("default", "Details", "details", "Details", "mute", "Mute"));
  EXPECT_EQ(rich.urgency, 2);
  EXPECT_EQ(rich.timeout, -1);
  startServer({"body"});
  sender_->send(kFire);
  waitForShown(1);
  const NotificationServer::Shown& plain = server_->shown().front();
  EXPECT_EQ(plain.body, "<b>No trains</b> & buses");
  EXPECT_THAT(plain.actions, IsEmpty());
  EXPECT_EQ(plain.timeout, 0) << "it would be lost when it expires";
  EXPECT_EQ(plain.replaces, 0U) << "another server knows none of the ids";
}

TEST_F(NotificationSenderTest, ReplacesWithdrawsAndTakesActions) {
  startServer({"body", "actions"});
  Notification changed = kFire;
  changed.title = "U4: Fire is out";
  sender_->send(kFire);
  waitForShown(1);
  sender_->send(changed);
  sender_->send({.tag = "city:u6", .title = "U6: Good Service"});
  waitForShown(3);
  const auto& shown = server_->shown();
  EXPECT_EQ(shown[1].replaces, shown[0].id);
  EXPECT_EQ(shown[2].replaces, 0U);
  server_->invoke(shown[0].id, "default", "token");
  server_->invoke(7, "details");
  server_->invoke(shown[0].id, "mute");
  waitUntil([&] { return !muted_.empty(); });
  EXPECT_THAT(opened_, ElementsAre(Pair("city:u4", "token"))) << "7 is of another program";
  EXPECT_THAT(muted_, ElementsAre("city:u4"));
  sender_->withdraw("city:u4");
  sender_->withdraw("city:u4");
  waitUntil([&] { return !server_->closed().empty(); });
  sender_->send(kFire);
  waitForShown(4);
  EXPECT_EQ(shown[3].replaces, 0U);
  EXPECT_THAT(server_->closed(), ElementsAre(shown[0].id));
}

TEST_F(NotificationSenderTest, KeepsWhatNoServerHasTakenForTheNextOne) {
  sender_->send(kFire);
  sender_->send(kFire);
  bool isThere = true;
  sender_->findServer([&isThere](bool is) { isThere = is; });
  waitUntil([&] { return !isThere; });
  EXPECT_EQ(log_.size(), 1U);
  EXPECT_FALSE(sender_->hasServer());
  startServer({"body"});
  waitForShown(1);
  sender_->send({.tag = "city:u6", .title = "U6: Good Service"});
  waitForShown(2);
  EXPECT_EQ(server_->shown()[0].title, "U4: Fire");
  EXPECT_TRUE(sender_->hasServer());
}

TEST_F(NotificationSenderTest, RewritesUnlessClosedOrOfAnEarlierRun) {
  startServer({"body", "actions"});
  waitUntil([&] { return !servers_.empty() && !servers_.back().empty(); });
  sender_->adopt("city:u1", 7);
  sender_->send(kFire);
  waitUntil([&] { return ids_.contains("city:u4"); });
  const std::uint32_t id = ids_["city:u4"];
  sender_->rewrite("city:u1", {.tag = "city:u2", .title = "U2: Works"});
  sender_->rewrite("city:u4", {.tag = "city:u6", .title = "U6: Fire"});
  waitForShown(2);
  EXPECT_EQ(server_->shown()[1].title, "U6: Fire");
  EXPECT_EQ(server_->shown()[1].replaces, id);
  server_->invoke(7, "mute");
  server_->close(id);
  waitUntil([&] { return !muted_.empty() && ids_.contains("city:u4"); });
  waitUntil([&] { return !ids_.contains("city:u6"); });
  EXPECT_THAT(muted_, ElementsAre("city:u2"));
  sender_->rewrite("city:u6", kFire);
  sender_->withdraw("city:u2");
  waitUntil([&] { return !server_->closed().empty(); });
  EXPECT_THAT(server_->closed(), ElementsAre(7U));
  EXPECT_EQ(server_->shown().size(), 2U);
}

}  // namespace
}  // namespace linewatch::desktop
