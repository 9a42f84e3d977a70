#include "storage/stored_notices.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/recording_log.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using notices::LineKey;
using notices::LineNews;
using notices::Mute;
using notices::MutedIncident;
using testing::ElementsAre;
using testing::IsEmpty;

class StoredNoticesTest : public testing::Test {
 protected:
  StoredNotices open() {
    return StoredNotices(makeStateDatabase({.data = folder_.path(), .cache = folder_.path()}, log_));
  }
  static notices::Moment at(double hours) { return {.date = Date(Seconds(hours * 3600)), .utcOffset = {}}; }
  static std::vector<LineNews> newsOf(std::vector<notices::IncidentNews> incidents) {
    return {{.line = kLine, .name = "U4", .isKnown = true, .incidents = std::move(incidents)}};
  }

  static inline const LineKey kLine{"city", "u4"};
  static inline const notices::IncidentNews kFire{
      .muid = 0xFFFFFFFFFFFFFFF0U, .title = "Fire", .summary = {}};
  TemporaryFolder folder_;
  RecordingLog log_;
};

TEST_F(StoredNoticesTest, KeepsWhatTheUserHasChosen) {
  const notices::Subscription wish{kLine, *notices::WeeklyHours::parse("weekdays 7 to 9"),
                                   notices::Severity::severe};
  const Mute ofLine{.subject = kLine, .until = at(3).date};
  const Mute ofIncident{.subject = MutedIncident{kFire.muid, 7, "Fire"}, .until = at(2).date};
  EXPECT_TRUE(*open().subscribe({kLine, {}, {}}));
  EXPECT_TRUE(*open().subscribe(wish));
  EXPECT_FALSE(*open().subscribe(wish));
  EXPECT_EQ(open().mute(ofLine, at(0).date), std::nullopt);
  EXPECT_EQ(open().mute(ofIncident, at(0).date), std::nullopt);
  EXPECT_TRUE(*open().unmute({.subject = MutedIncident{1, 7, "Fire"}, .until = {}})) << "has another id now";
  EXPECT_EQ(open().mute(ofIncident, at(0).date), std::nullopt);
  EXPECT_THAT(open().rules()->subscriptions, ElementsAre(wish));
  EXPECT_THAT(open().rules()->mutes, ElementsAre(ofIncident, ofLine));
  const Mute longer{.subject = kLine, .until = at(9).date};
  EXPECT_EQ(open().mute(longer, at(2).date), std::nullopt);
  EXPECT_THAT(open().rules()->mutes, ElementsAre(longer)) << "the other one has ended";
  EXPECT_TRUE(*open().unmute(longer));
  EXPECT_FALSE(*open().unmute(longer));
  EXPECT_TRUE(*open().unsubscribe(kLine));
  EXPECT_FALSE(*open().unsubscribe(kLine));
  EXPECT_EQ(*open().rules(), notices::NoticeRules());
}

TEST_F(StoredNoticesTest, TellsNewsOnceAcrossRestartsAndInstances) {
  ASSERT_TRUE(*open().subscribe({kLine, {}, {}}));
  ASSERT_THAT(open().update({}, newsOf({}), at(12))->notices, IsEmpty());
  std::atomic<std::size_t> count{0};
  std::vector<std::thread> instances;
  for (int i = 0; i < 4; ++i)
    instances.emplace_back([&] { count += open().update({}, newsOf({kFire}), at(12.1))->notices.size(); });
  for (std::thread& instance : instances) instance.join();
  EXPECT_EQ(count, 1U);
  EXPECT_THAT(open().update({}, newsOf({kFire}), at(12.2))->notices, IsEmpty());
  EXPECT_EQ(open().state()->at(kLine).told.front().title, "Fire");
  open().update({}, newsOf({}), at(12.3))->notices.clear();
  const auto running = open().update({}, newsOf({}), at(12.5));
  EXPECT_EQ(running->notices.at(0).kind, notices::Notice::Kind::over);
  EXPECT_EQ(*open().state(), running->state);
}

TEST_F(StoredNoticesTest, KeepsTheNoticesOnTheScreenByServer) {
  using notices::Notice;
  const notices::IncidentNews strike{.muid = 2,
                                     .title = "Strike",
                                     .summary = "All day",
                                     .severity = notices::Severity::severe,
                                     .isBlocking = true};
  const notices::ShownNotice one{.notice = {.kind = Notice::Kind::over,
                                            .tag = "city:u4",
                                            .entries = {{.line = kLine, .name = "U4", .isOver = true}}},
                                 .id = 7};
  const notices::ShownNotice two{
      .notice = {.kind = Notice::Kind::summary,
                 .tag = "summary",
                 .entries = {{.line = kLine, .name = "U4", .incidents = {kFire, strike}},
                             {.line = {"city", "u6"}, .name = "U6", .incidents = {strike}}}},
      .id = 0xFFFFFFFFU};
  EXPECT_EQ(open().setShown("a", std::vector{one, two}, at(0).date), std::nullopt);
  EXPECT_EQ(open().setShown("b", std::vector{two}, at(1).date), std::nullopt);
  EXPECT_THAT(*open().shown("a"), ElementsAre(one, two));
  EXPECT_EQ(open().setShown("a", std::vector{one}, at(2).date), std::nullopt);
  EXPECT_THAT(*open().shown("a"), ElementsAre(one));
  EXPECT_THAT(*open().shown("b"), ElementsAre(two));
  EXPECT_EQ(open().setShown("c", {}, at(24 * 8).date), std::nullopt);
  EXPECT_THAT(*open().shown("b"), IsEmpty());
}

}  // namespace
}  // namespace linewatch
