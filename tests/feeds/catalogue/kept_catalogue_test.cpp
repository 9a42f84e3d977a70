#include "feeds/catalogue/kept_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/catalogue/spreadsheet_sketch.h"
#include "feeds/feeds_fixture.h"

namespace linewatch {
namespace {

using testing::HasSubstr;

constexpr double kDay = 86400;

class KeptCatalogueTest : public FeedsFixture {
 protected:
  static HttpResponse spreadsheet(const std::string& provider, std::string etag = {}) {
    const std::string csv = spreadsheetOf({{.id = "a", .entities = "sa", .provider = provider}});
    return {.body = Bytes(csv.begin(), csv.end()), .etag = std::move(etag)};
  }
  std::unique_ptr<KeptCatalogue> catalogueAt(const std::string& location) {
    return std::make_unique<KeptCatalogue>(
        location, cache(), [this] { return now_; },
        [this] { return Outcome<std::shared_ptr<HttpFetcher>>(server_); });
  }
  /// The provider of its feed, and the failure if there is one.
  static std::string read(KeptCatalogue& catalogue) {
    const auto reading = catalogue.read();
    if (!reading) return sentenceOf(reading.error());
    return reading->catalogue->hitOf("a")->provider() +
           (reading->failure ? "; " + sentenceOf(*reading->failure) : "");
  }
  /// As a new run of the program reads it.
  std::string readAfter(double seconds) {
    now_ += Seconds(seconds);
    return read(*catalogueAt("https://catalogue.example/feeds?key=s3cret"));
  }
};

TEST_F(KeptCatalogueTest, AsksAgainAfterAWeekAndServesOnWhenUnreachable) {
  server_->answer = failure("timed out", "", "");
  EXPECT_EQ(readAfter(0), "catalogue: https://catalogue.example/feeds?key=***: timed out");
  server_->answer = spreadsheet("First", "tag");
  EXPECT_EQ(readAfter(0), "First") << "nothing is kept, so it is tried again at once";
  server_->requests.clear();
  EXPECT_EQ(readAfter(7 * kDay - 1), "First");
  EXPECT_EQ(server_->requests.size(), 0U);

  server_->answer = failure("timed out", "", "");
  EXPECT_THAT(readAfter(1),
              HasSubstr("First; catalogue: https://catalogue.example/feeds?key=***: timed out"));
  EXPECT_EQ(server_->requests.back().etag, "tag");
  server_->answer = HttpResponse{.notModified = true};
  EXPECT_THAT(readAfter(899), HasSubstr("First; catalogue: "));
  EXPECT_EQ(server_->requests.size(), 1U) << "a failure is tried again after 15 minutes";
  EXPECT_EQ(readAfter(1), "First");
  EXPECT_EQ(readAfter(7 * kDay - 1), "First");
  EXPECT_EQ(server_->requests.size(), 2U);

  // As where a network answers with a page of its own.
  server_->answer = HttpResponse{.body = {'<'}};
  EXPECT_THAT(readAfter(1), HasSubstr("First; catalogue: https://catalogue.example/feeds?key=***: it is no"));
  server_->answer = spreadsheet("Second");
  EXPECT_EQ(readAfter(900), "Second");
  EXPECT_EQ(readAfter(-900), "Second") << "the clock was set back";
  EXPECT_EQ(server_->requests.size(), 5U);
}

TEST_F(KeptCatalogueTest, HoldsItInMemoryAndReadsFiles) {
  server_->answer = spreadsheet("First");
  const auto fetched = catalogueAt("https://catalogue.example/feeds");
  const auto once = fetched->read();
  const auto twice = fetched->read();
  EXPECT_EQ(once->catalogue, twice->catalogue);
  EXPECT_EQ(server_->requests.size(), 1U);

  const auto file = folder_.path() / "feeds.csv";
  EXPECT_THAT(read(*catalogueAt(file)), HasSubstr("feeds.csv: No such file"));
  writeFile(file, spreadsheetOf({{.id = "a", .entities = "sa", .provider = "Filed"}}));
  EXPECT_EQ(read(*catalogueAt("file://" + file.string())), "Filed");
}

TEST_F(KeptCatalogueTest, ACancelledFetchLeavesEverythingAsItWas) {
  std::stop_source stop;
  stop.request_stop();
  server_->answer = failure(FailureCode::cancelled, "", "", "it is no longer wanted");
  const auto catalogue = catalogueAt("https://catalogue.example/feeds");
  const auto reading = catalogue->read(stop.get_token());
  EXPECT_EQ(failureCodeOf(reading.error()), FailureCode::cancelled);
  server_->answer = spreadsheet("First");
  EXPECT_EQ(read(*catalogue), "First");
}

}  // namespace
}  // namespace linewatch
