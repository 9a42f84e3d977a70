#pragma once

#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "feeds/feed_documents.h"
#include "feeds/scripted_server.h"
#include "platform/recording_log.h"
#include "shared/failure.h"
#include "simulation/simulated_platform.h"
#include "temporary_folder.h"

namespace linewatch {

/// A simulated platform, a folder, and documents whose server and clock the test sets.
class FeedsFixture : public testing::Test {
 protected:
  void SetUp() override { installPlatform(platform_); }
  void TearDown() override { installPlatform(nullptr); }

  std::shared_ptr<FeedDocuments> documentsFrom(std::shared_ptr<HttpFetcher> server,
                                               std::shared_ptr<FeedCache> cache = nullptr,
                                               CommandKeys::Runner runKeyCommand = {}) {
    return std::make_shared<FeedDocuments>(
        std::move(cache), [this] { return now_; },
        [server = std::move(server)] { return Outcome<std::shared_ptr<HttpFetcher>>(server); },
        std::move(runKeyCommand));
  }
  std::shared_ptr<FeedDocuments> documents(std::shared_ptr<FeedCache> cache = nullptr) {
    return documentsFrom(server_, std::move(cache));
  }
  /// The same cache for each call, as another process would open it.
  std::shared_ptr<FeedCache> cache() {
    return std::make_shared<FeedCache>(makeCacheDatabase(*StateDirectories::under(folder_.path()), log_));
  }
  /// The ids of the alerts, and the sentence of the failure.
  static std::string ids(const FeedAlerts& alerts) {
    std::string all;
    if (alerts.message) {
      for (const auto& entity : alerts.message->entities()) all.append(entity.id).append(" ");
    }
    return all + (alerts.failure ? sentenceOf(*alerts.failure) : "");
  }

  TemporaryFolder folder_;
  RecordingLog log_;
  /// Sketched feeds are written at 1000.
  Date now_{Seconds(2000)};
  std::shared_ptr<ScriptedServer> server_ = std::make_shared<ScriptedServer>();
  std::shared_ptr<simulation::SimulatedPlatform> platform_ = simulation::SimulatedPlatform::make();
};

}  // namespace linewatch
