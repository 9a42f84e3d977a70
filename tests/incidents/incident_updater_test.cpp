#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "incidents/transit_incident_updater.h"
#include "simulation/platform_test.h"
#include "simulation/world/world_records.h"

namespace linewatch {
namespace {

using simulation::SimulatedPlatform;
using simulation::World;
using testing::ElementsAre;

struct Period {
  std::optional<double> start, end;
};
/// The incidents of each line.
using Lines = std::vector<std::vector<Period>>;

/// Records its calls as "expired 60 at 60" and "refresh at 1800", in seconds from the start.
class Listener : public RVTransitIncidentUpdaterObserver {
 public:
  void transitIncidentUpdaterDateExpired(RVTransitIncidentUpdater& updater, Date date) override {
    EXPECT_EQ(&updater, updater.observer() ? updater.shared_from_this().get() : nullptr);
    heard.push_back("expired " + text(date) + " at " + text(platform().mainLoop().now()));
  }
  void transitIncidentUpdaterNeedsRefresh(RVTransitIncidentUpdater&) override {
    heard.push_back("refresh at " + text(platform().mainLoop().now()));
  }
  static std::string text(Date date) { return Value((date - World().start).count()).description(); }

  std::vector<std::string> heard;
};

class IncidentUpdater : public PlatformTest {
 protected:
  static TransitLineItems lineItems(const Lines& lines) {
    World world;
    std::uint64_t next = 0;
    for (const auto& incidents : lines) {
      auto& line = world.lines[std::to_string(++next)] = {.muid = next};
      for (const Period& period : incidents) {
        const std::string key = std::to_string(++next);
        world.incidents[key] = {.muid = next, .start = seconds(period.start), .end = seconds(period.end)};
        line.incidents.push_back(key);
      }
    }
    return simulation::WorldRecords(world).allLines();
  }
  static std::optional<Seconds> seconds(std::optional<double> count) {
    return count ? std::optional(Seconds(*count)) : std::nullopt;
  }

  std::shared_ptr<RVTransitIncidentUpdater> makeUpdater(const Lines& lines) {
    auto updater = RVTransitIncidentUpdater::make(lineItems(lines), Seconds(1800));
    updater->setObserver(listener_);
    return updater;
  }
  std::vector<std::string> datesOf(const RVTransitIncidentUpdater& updater) const {
    std::vector<std::string> texts;
    for (const Date date : updater.updateDates()) texts.push_back(Listener::text(date));
    return texts;
  }

  std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
};

TEST_F(IncidentUpdater, ReportsTheDatesAtWhichTheListChanges) {
  using Texts = std::vector<std::string>;
  struct Row {
    const char* name;
    Lines lines;
    Texts dates, expired;
  };
  constexpr double kDay = 86400;
  for (const Row& row : {
           Row{"no lines", {}, {}, {}},
           Row{"no incidents", {{}, {}}, {}, {}},
           Row{"always", {{{}}}, {}, {}},
           Row{"ended", {{{-60, -1}, {{}, 0}}}, {}, {}},
           Row{"running", {{{-kDay, 600}, {{}, 700}}}, {"600", "700"}, {"600", "700"}},
           Row{"starts now", {{{0, 600}}}, {"600"}, {"600"}},
           Row{"to come", {{{300, 900}}}, {"300", "900"}, {"300", "900"}},
           Row{"to come, without an end", {{{300, {}}}}, {"300"}, {"300"}},
           Row{"out of order over two lines",
               {{{-1, 900}}, {{-1, 30}, {60, 120}}},
               {"30", "60", "120", "900"},
               {"30", "60", "120", "900"}},
           Row{"one moment for three",
               {{{-1, 600}, {600, 700}}, {{-9, 600}}},
               {"600", "700"},
               {"600", "700"}},
           Row{"an end in the past stands in the way", {{{300, -60}, {-1, 600}}}, {"-60", "300", "600"}, {}},
           Row{"so does an end at this moment", {{{300, 0}}}, {"0", "300"}, {}},
       }) {
    listener_->heard.clear();
    install();
    const auto updater = makeUpdater(row.lines);
    EXPECT_EQ(datesOf(*updater), row.dates) << row.name;
    platform_->advance(1799);
    Texts expected;
    for (const std::string& date : row.expired) expected.push_back("expired " + date + " at " + date);
    EXPECT_EQ(listener_->heard, expected) << row.name;
    EXPECT_EQ(datesOf(*updater), row.expired.empty() ? row.dates : Texts()) << row.name;
    updater->invalidate();
  }
}

TEST_F(IncidentUpdater, RefreshesWheneverTheIntervalHasPassed) {
  const auto updater = makeUpdater({{{-60, 1000}}});
  platform_->advance(5400);
  EXPECT_THAT(listener_->heard,
              ElementsAre("expired 1000 at 1000", "refresh at 1800", "refresh at 3600", "refresh at 5400"));
  const auto timers = platform_->transcript().eventsNamed("timer");
  ASSERT_EQ(timers.size(), 2U);
  EXPECT_EQ(timers[0].fields,
            (Dictionary{{"kind", "repeating"}, {"interval", 1800.0}, {"tolerance", 180.0}}));
  EXPECT_EQ(timers[1].fields, (Dictionary{{"kind", "oneShot"}, {"interval", 1000.0}, {"tolerance", 0.0}}));
  EXPECT_THAT(
      platform_->transcript().logTexts(),
      ElementsAre("Incident updater calculated update dates for incidents: [\"2026-11-24T08:16:40Z\"]",
                  "Scheduling incident updater  auto refresh update with interval 1800.00",
                  "Incident updater next update date was reached: 2026-11-24T08:16:40Z.",
                  "Incident updater auto-refresh timer fired.", "Incident updater auto-refresh timer fired.",
                  "Incident updater auto-refresh timer fired."));
}

TEST_F(IncidentUpdater, ArmsTheNextTimerBeforeItNotifiesTheObserver) {
  struct Stopper : Listener {
    void transitIncidentUpdaterDateExpired(RVTransitIncidentUpdater& updater, Date date) override {
      Listener::transitIncidentUpdaterDateExpired(updater, date);
      timers = platform().mainLoop().now() == World().start + Seconds(30)
                   ? static_cast<SimulatedPlatform&>(platform()).transcript().countOf("timer")
                   : 0;
      updater.invalidate();
    }
    std::size_t timers = 0;
  };
  const auto stopper = std::make_shared<Stopper>();
  const auto updater = makeUpdater({{{-1, 30}, {-1, 60}}});
  updater->setObserver(stopper);
  const auto& before = updater->updateDates();
  platform_->advance(4000);
  EXPECT_EQ(stopper->timers, 3U) << "refresh, first date, second date";
  EXPECT_THAT(stopper->heard, ElementsAre("expired 30 at 30")) << "nothing after it was invalidated";
  EXPECT_THAT(datesOf(*updater), ElementsAre("60"));
  EXPECT_EQ(before.size(), 2U) << "dates once asked for stay as they were";
}

TEST_F(IncidentUpdater, LivesInTheLoopUntilItIsInvalidated) {
  std::weak_ptr<RVTransitIncidentUpdater> updater = makeUpdater({{{-1, 30}}});
  platform_->advance(40);
  ASSERT_FALSE(updater.expired());
  EXPECT_THAT(listener_->heard, ElementsAre("expired 30 at 30"));
  listener_ = nullptr;
  EXPECT_EQ(updater.lock()->observer(), nullptr) << "the observer is not kept alive";
  platform_->advance(1800);
  EXPECT_EQ(platform_->transcript().countOf("timerFired"), 2U) << "goes on although nobody listens";
  updater.lock()->invalidate();
  EXPECT_TRUE(updater.expired());
}

}  // namespace
}  // namespace linewatch
