#include <gtest/gtest.h>

#include "desktop/window/panel_news.h"
#include "desktop/window/panel_updates.h"
#include "feeds/transit_feeds.h"
#include "feeds/unreliable_server.h"
#include "simulation/platform_test.h"
#include "temporary_folder.h"

namespace linewatch::desktop {
namespace {

/// A panel's updates over real feeds and an unreliable server, in virtual time.
class PanelDayTest : public PlatformTest {
 protected:
  void SetUp() override {
    writeFile(folder_.path() / "routes.txt", "route_id\n1\n");
    updates_.setVisible(true);
    update();
  }

  Date now() { return platform_->mainLoop().now(); }
  void update() {
    const MapItemIdentifier line{stableMuid("bus", "1"), "bus", "1"};
    updates_.fetchDidBegin();
    isShown_ = feeds_.lineItems({&line, 1}, now()).succeeded();
    updates_.fetchDidEnd(/*failed=*/!isShown_);
  }
  std::string news() {
    return panelNews({feeds_.states(), feeds_.unknownLines(), {}}, texts_, now()).text.toStdString();
  }

  TemporaryFolder folder_;
  bool isShown_ = false;
  WindowTexts texts_{*UserLocale::parse("en")};
  std::shared_ptr<UnreliableServer> server_ = std::make_shared<UnreliableServer>([this] { return now(); });
  TransitFeeds feeds_{
      [this] {
        return std::vector<StoredFeed>{{"bus", folder_.path().string(), "https://example.org/alerts"}};
      },
      std::make_shared<FeedDocuments>(
          nullptr, [this] { return now(); },
          [this]() -> Outcome<std::shared_ptr<HttpFetcher>> {
            return std::shared_ptr<HttpFetcher>(server_);
          }),
      {}};
  PanelUpdates updates_{platform_->mainLoop(),
                        platform_->randomSource(),
                        [this] { update(); },
                        {.feedStates = [this] { return feeds_.states(); }}};
};

/// While the rows are kept ones, the header says so. The timers may be a second late.
TEST_F(PanelDayTest, RowsAreNeverOlderThanTheGrace) {
  const Seconds slack{2};
  int current = 0, kept = 0, unknown = 0;
  for (int minute = 0; minute < 24 * 60; ++minute) {
    platform_->advance(60);
    const Seconds age = now() - server_->lastGood;
    if (!isShown_) {
      EXPECT_TRUE(news().ends_with("No news of line 1.")) << minute << ": " << news();
      ++unknown;
    } else if (news().empty()) {
      EXPECT_LE(age, Seconds(120 * 1.1) + slack) << "minute " << minute;
      ++current;
    } else {
      const bool isKept = news().starts_with("bus cannot be updated; its advisories came ");
      EXPECT_TRUE(isKept || news().starts_with("bus last updated its advisories ")) << news();
      EXPECT_LE(age, kAlertsGrace + slack) << "minute " << minute;
      kept += isKept ? 1 : 0;
    }
  }
  EXPECT_GT(current, 100);
  EXPECT_GT(kept, 20);
  EXPECT_GT(unknown, 20);
  EXPECT_LT(server_->requests, 24U * 60) << "fewer than one request a minute";
}

}  // namespace
}  // namespace linewatch::desktop
