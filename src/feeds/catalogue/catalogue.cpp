#include "feeds/catalogue/catalogue.h"

#include <algorithm>
#include <utility>

#include "feeds/catalogue/catalogue_index.h"
#include "feeds/catalogue/search_words.h"

namespace linewatch {

Catalogue::Catalogue(std::vector<SharedCatalogueFeed> feeds, std::size_t skippedRows)
    : feeds_(std::move(feeds)),
      skippedRows_(skippedRows),
      index_(std::make_unique<const CatalogueIndex>(feeds_)) {}

Catalogue::~Catalogue() = default;

CatalogueMatches Catalogue::search(std::string_view query) const {
  return index_->search(SearchQuery(query));
}

std::optional<CatalogueHit> Catalogue::hitOf(std::string_view id) const {
  const auto& entries = index_->entries();
  const auto entry =
      std::ranges::find_if(entries, [id](const auto& other) { return other.hit.alerts->id == id; });
  return entry == entries.end() ? std::nullopt : std::optional(entry->hit);
}

}  // namespace linewatch
