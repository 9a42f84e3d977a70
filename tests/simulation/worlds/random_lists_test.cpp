// Compares the lists of random cities with the plain model of the list builders.

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "list/transit_item_data_source_builder.h"
#include "list_model.h"
#include "platform/transit_records.h"
#include "simulation/platform_test.h"

namespace linewatch::worlds {
namespace {

/// A small city with many duplicates: names, texts, artworks, incidents and whole lines.
class RandomCity {
 public:
  explicit RandomCity(std::uint64_t seed) : random_(seed) {}

  TransitLineItems lines() {
    std::vector<SharedArtwork> shields = {nullptr};
    for (const char* text : {"M", "M", "T"}) {
      shields.push_back(std::make_shared<const TransitArtworkDataSource>(
          TransitArtworkDataSource{.shieldDataSource = ShieldDataSource{.shieldText = text}}));
    }
    TransitIncidents incidents;
    for (std::uint64_t count = oneOf(8); count > 0; --count) incidents.push_back(incident());
    TransitLineItems lines;
    for (std::uint64_t count = oneOf(7); count > 0; --count) {
      if (!lines.empty() && oneOf(6) == 0) {
        lines.push_back(lines[oneOf(lines.size())]);
        continue;
      }
      TransitLineFields fields{.muid = lines.size() + 1, .name = text({"", "A", "A", "B", "C", "D"})};
      fields.alternateArtwork = oneOf(2) == 0 ? nullptr : shields[oneOf(shields.size())];
      if (oneOf(4) != 0) {
        fields.system = std::make_shared<const TransitSystem>(
            TransitSystem{.name = text({"", "Metro"}), .artwork = shields[oneOf(shields.size())]});
      }
      TransitIncidents listed;
      for (std::uint64_t left = incidents.empty() ? 0 : oneOf(5); left > 0; --left)
        listed.push_back(incidents[oneOf(incidents.size())]);
      lines.push_back(std::make_shared<const TransitLineRecord>(std::move(fields), std::move(listed)));
    }
    return lines;
  }

  std::uint64_t oneOf(std::uint64_t count) { return random_() % count; }

 private:
  std::string text(std::vector<std::string> choices) { return choices[oneOf(choices.size())]; }

  SharedIncident incident() {
    TransitIncidentFields fields{.muid = oneOf(10)};
    if (oneOf(4) != 0) fields.title = text({"", "Strike", "Works"});
    if (oneOf(4) != 0)
      fields.summary = text({"", "T", "A", "LineWatch_Single_Line_Prepended_Incident_Text(A|T)"});
    if (oneOf(8) == 0) fields.endDate = Date(Seconds(0));
    if (oneOf(8) == 0) fields.startDate = Date(Seconds(1e12));
    return std::make_shared<const TransitIncidentRecord>(std::move(fields));
  }

  std::mt19937_64 random_;
};

using RandomLists = PlatformTest;

TEST_F(RandomLists, AreThoseOfThePlainModel) {
  constexpr std::uint64_t kSeed = 20261124;
  RandomCity city(kSeed);
  for (int round = 0; round < 400 && !HasFailure(); ++round) {
    const TransitLineItems lines = city.lines();
    const std::uint64_t limit = city.oneOf(6);
    const auto list = RVTransitDataSourceBuilderForResult(
                          RVResult(std::make_shared<const TransitLineItems>(lines)), limit, nullptr, nullptr)
                          ->listItem();
    const Value expected = listModel({.items = lines}, limit == 0 ? kNoRowLimit : limit,
                                     platform_->mainLoop().now(), platform_->world());
    EXPECT_EQ(formOf(list.get()).description(), expected.description())
        << "seed " << kSeed << ", round " << round;
  }
}

}  // namespace
}  // namespace linewatch::worlds
