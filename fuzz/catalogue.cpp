// Reads any bytes as the spreadsheet of a catalogue, and searches in it. The first line is the query.

#include "feeds/catalogue/catalogue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "feeds/catalogue/feed_proposal.h"
#include "feeds/text/utf8.h"
#include "require.h"

namespace linewatch {
namespace {

/// Checks that hold for everything that can be added.
void use(const CatalogueHit& hit) {
  require(hit.alerts->kind == CatalogueFeed::Kind::alerts);
  for (const SharedCatalogueFeed& timetable : hit.timetables)
    require(timetable->kind == CatalogueFeed::Kind::timetable);
  for (const std::string& text : {hit.provider(), hit.place("de"), hit.coverage(), hit.license()})
    require(isValidUtf8(text) && text.find('\n') == std::string::npos);
  const FeedProposal proposal = proposalOf(hit, "key", {});
  require(!feedNameError(proposal.feed.name));
  const StoredFeed taken{.name = proposal.feed.name};
  require(proposalOf(hit, "key", {&taken, 1}).feed.name != taken.name);
}

void search(const Catalogue& catalogue, std::string_view query) {
  const CatalogueMatches matches = catalogue.search(query);
  require(matches.hits.empty() || matches.timetables.empty());
  require(std::ranges::is_partitioned(matches.hits, &CatalogueHit::isActive));
  const CatalogueMatches all = catalogue.search("");
  for (const CatalogueHit& hit : all.hits) {
    use(hit);
    require(catalogue.hitOf(hit.alerts->id).has_value());
  }
  if (all.hits.empty() || all.hits.front().alerts->provider.empty()) return;
  require(!catalogue.search(all.hits.front().alerts->provider).hits.empty());
}

}  // namespace
}  // namespace linewatch

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(text.find('\n'), text.size());
  const auto catalogue = readCatalogue(text.substr(std::min(end + 1, text.size())));
  if (catalogue) {
    search(**catalogue, text.substr(0, end));
  } else {
    requireOneLine(catalogue.error());
  }
  return 0;
}
