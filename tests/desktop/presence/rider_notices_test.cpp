#include "desktop/presence/rider_notices.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

/// Notices of the line U4, which has a subscription, over a private bus.
class RiderNoticesTest : public PlatformTest {
 protected:
  RiderNoticesTest() {
    needApplication();
    EXPECT_TRUE(*stored_.subscribe({.line = kLine, .hours = {}}));
  }

  /// An answer about the line, at `minutes` after the start. Each incident has its title as its id.
  void answer(double minutes, const std::vector<std::string>& titles) {
    TransitStatus status;
    StatusLine line{.muid = stableMuid(kLine.feed, kLine.route), .name = "U4", .agency = {}, .incidents = {}};
    for (const std::string& title : titles) {
      line.incidents.push_back(status.incidents.size());
      status.incidents.push_back({.muid = std::hash<std::string>()(title),
                                  .title = title,
                                  .summary = "Until noon",
                                  .severity = StatusSeverity::severe});
    }
    status.lines.push_back(std::move(line));
    platform_->mainLoop().advance(Seconds(minutes * 60));
    notices_->take(status);
    platform_->mainLoop().advance(Seconds(0));
  }

  static inline const LineKey kLine{"city", "u4"};
  TemporaryFolder folder_;
  RecordingLog log_;
  StoredNotices stored_{makeStateDatabase({.data = folder_.path(), .cache = folder_.path()}, log_)};
  PrivateBus bus_;
  NotificationServer server_{bus_.connection("server"), {"body", "actions"}};
  std::vector<std::string> opened_;
  std::unique_ptr<RiderNotices> notices_ = std::make_unique<RiderNotices>(
      bus_.connection("panel"), std::make_shared<const WindowTexts>(*UserLocale::parse("en")), stored_,
      platform_->mainLoop(),
      RiderNotices::Services{.inBackground = [](const std::function<void()>& work) { work(); },
                             .open = [this](const notices::Notice& notice,
                                            const std::string&) { opened_.push_back(notice.tag); }});
};

TEST_F(RiderNoticesTest, TellsMutesAndOpensTheNewsOfALine) {
  answer(0, {});
  answer(2, {"Fire"});
  waitUntil([&] { return server_.shown().size() == 1; });
  const NotificationServer::Shown fire = server_.shown().front();
  EXPECT_EQ(fire.title, "LineWatch_Single_Line_Prepended_Incident_Text(U4|Fire)");
  EXPECT_EQ(fire.body, "Until noon");
  EXPECT_THAT(fire.actions, ElementsAre("default", "Details", "details", "Details", "mute", "Mute"));
  EXPECT_EQ(fire.urgency, 2);
  server_.invoke(fire.id, "details");
  waitUntil([&] { return !opened_.empty(); });
  EXPECT_THAT(opened_, ElementsAre("city:u4"));
  server_.invoke(fire.id, "mute");
  waitUntil([&] { return !server_.closed().empty(); });
  EXPECT_EQ(stored_.rules()->mutes.size(), 1U);
  answer(2, {"Fire", "Strike"});
  waitUntil([&] { return server_.shown().size() == 2; });
  EXPECT_EQ(server_.shown().back().body, "Until noon") << "a muted incident is not repeated";
  answer(2, {});
  answer(5, {});
  waitUntil([&] { return server_.shown().size() == 3; });
  EXPECT_EQ(server_.shown().back().title,
            "LineWatch_Single_Line_Prepended_Incident_Text(U4|LineWatch_GoodService_Title)");
  EXPECT_EQ(server_.shown().back().urgency, 0);
  EXPECT_EQ(server_.shown().back().replaces, server_.shown()[1].id);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace
}  // namespace linewatch::desktop
