#include "feeds/unreliable_server.h"

#include <gtest/gtest.h>

#include "feeds/transit_feeds.h"
#include "simulation/simulated_platform.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

class UnreliableServerTest : public testing::Test {
 protected:
  void SetUp() override {
    installPlatform(simulation::SimulatedPlatform::make());
    writeFile(folder_.path() / "routes.txt", "route_id\n1\n");
  }
  void TearDown() override { installPlatform(nullptr); }

  /// As a host does: every two minutes, and earlier when a feed needs it.
  void update() {
    const MapItemIdentifier line{stableMuid("bus", "1"), "bus", "1"};
    isShown_ = feeds_.lineItems({&line, 1}, now_).succeeded();
    next_ = now_ + Seconds(120);
    const auto states = feeds_.states();
    if (const auto earlier = nextUpdate(states, now_); earlier && *earlier < next_)
      next_ = std::max(*earlier, now_ + Seconds(1));
  }

  TemporaryFolder folder_;
  Date now_{Seconds(1'700'000'000)};
  Date next_ = now_;
  bool isShown_ = false;
  std::shared_ptr<UnreliableServer> server_ = std::make_shared<UnreliableServer>([this] { return now_; });
  TransitFeeds feeds_{
      [this] {
        return std::vector<StoredFeed>{{"bus", folder_.path().string(), "https://example.org/alerts"}};
      },
      std::make_shared<FeedDocuments>(
          nullptr, [this] { return now_; },
          [this]() -> Outcome<std::shared_ptr<HttpFetcher>> {
            return std::shared_ptr<HttpFetcher>(server_);
          }),
      {}};
};

TEST_F(UnreliableServerTest, RowsOfADayAreNoOlderThanTheGraceAndSaidToBeKept) {
  int shown = 0, kept = 0, unknown = 0;
  for (int minute = 0; minute < 24 * 60; ++minute) {
    const Date end = now_ + Seconds(60);
    while (next_ < end) {
      now_ = next_;
      update();
    }
    now_ = end;
    const FeedState state = feeds_.states().at(0);
    EXPECT_EQ(isShown_, state.knowsLines());
    EXPECT_EQ(isShown_, feeds_.unknownLines().empty());
    if (isShown_) {
      EXPECT_LE(now_ - server_->lastGood, kAlertsGrace) << "minute " << minute;
      if (now_ - server_->lastGood > Seconds(120)) {
        EXPECT_EQ(state.kind, FeedState::Kind::kept) << "minute " << minute;
        EXPECT_EQ(state.since, server_->lastGood);
        ++kept;
      }
    }
    ++(isShown_ ? shown : unknown);
  }
  EXPECT_GT(shown, 100);
  EXPECT_GT(kept, 20);
  EXPECT_GT(unknown, 20);
  EXPECT_LT(server_->requests, 24U * 60) << "fewer than one request a minute";
}

}  // namespace
}  // namespace linewatch
