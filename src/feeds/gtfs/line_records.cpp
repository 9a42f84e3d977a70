#include "feeds/gtfs/line_records.h"

#include <string>
#include <string_view>
#include <utility>

#include "feeds/gtfs/colors.h"
#include "feeds/gtfs/route_mode.h"
#include "feeds/gtfs/shield_text.h"

namespace linewatch {

namespace {

/// A route without a colour has a shield in the colours of the theme.
ShieldDataSource shield(TransitMode mode, std::string text, const std::string& color,
                        const std::string& textColor) {
  return {
      .shieldType = static_cast<std::int64_t>(mode),
      .shieldText = std::move(text),
      .shieldColorString = color.empty() ? std::nullopt : std::optional(color),
      .textColorString = color.empty() ? std::nullopt : std::optional(readableTextColor(textColor, color))};
}

TransitArtworkDataSource artworkOf(ShieldDataSource shield, const std::string& spoken) {
  return {.artworkSourceType = kArtworkSourceShield,
          .shieldDataSource = std::move(shield),
          .accessibilityText = spoken};
}

/// Without a name: a screen reader's word for the mode depends on the user's language.
TransitArtworkDataSource iconOf(TransitMode mode) {
  return {.artworkSourceType = kArtworkSourceIcon,
          .iconDataSource = IconDataSource{.defaultTransitType = static_cast<std::int64_t>(mode)}};
}

/// For each agency the first route in the colour of more than half of its routes, which counts as the
/// agency's colour; null when no colour has that majority.
std::vector<const FeedRoute*> routesInAgencyColors(const LineIndex& index) {
  // Majority vote: a route of another colour takes a vote from the candidate, so only a colour with a
  // majority is sure to remain.
  struct Vote {
    const FeedRoute* leader = nullptr;
    std::ptrdiff_t votes = 0;
    std::ptrdiff_t margin = 0;
  };
  std::vector<Vote> votes(index.agencies().size());
  std::unordered_map<std::string_view, const FeedRoute*> firstInColor;
  for (const FeedRoute& route : index.routes()) {
    firstInColor.emplace(route.color, &route);
    if (!route.agency) continue;
    Vote& vote = votes[*route.agency];
    if (vote.votes == 0) vote.leader = &route;
    vote.votes += route.color == vote.leader->color ? 1 : -1;
  }
  for (const FeedRoute& route : index.routes()) {
    if (!route.agency) continue;
    Vote& vote = votes[*route.agency];
    vote.margin += route.color == vote.leader->color ? 1 : -1;
  }
  std::vector<const FeedRoute*> routes;
  routes.reserve(votes.size());
  for (const Vote& vote : votes) {
    routes.push_back(vote.margin > 0 ? firstInColor.at(vote.leader->color) : nullptr);
  }
  return routes;
}

}  // namespace

LineRecords::LineRecords(SharedLineIndex index) : index_(std::move(index)) {}

const std::shared_ptr<const TransitLineFields>& LineRecords::lineFieldsOfRoute(std::size_t route) {
  std::shared_ptr<const TransitLineFields>& fields = lines_[route];
  if (!fields) fields = makeLineFields(route);
  return fields;
}

std::shared_ptr<const TransitLineFields> LineRecords::makeLineFields(std::size_t route) {
  const FeedRoute& entry = index_->routes()[route];
  const TransitMode mode = modeOfRouteType(entry.type);
  const std::string& name = index_->nameOfRoute(route);
  const SharedArtwork artwork =
      shared(artworkOf(shield(mode, shieldText(entry), entry.color, entry.textColor), name));
  const std::uint64_t muid = index_->muidOfRoute(route);
  return std::make_shared<const TransitLineFields>(TransitLineFields{
      .muid = muid,
      .identifier = MapItemIdentifier{muid},
      .name = name,
      .system = entry.agency ? systemOf(*entry.agency) : nullptr,
      .artwork = artwork,
      .modeArtwork = shared(iconOf(mode)),
      .alternateArtwork = artwork,
      .lineColorString = entry.color,
  });
}

const std::shared_ptr<const TransitSystem>& LineRecords::systemOf(std::uint32_t agency) {
  std::shared_ptr<const TransitSystem>& system = systems_[agency];
  if (system) return system;
  const FeedAgency& entry = index_->agencies()[agency];
  const std::string& name = entry.name.empty() ? entry.id : entry.name;
  SharedArtwork badge;
  if (std::string text = badgeText(entry); !text.empty()) {
    static const FeedRoute colorless;
    const FeedRoute* colored = routeInColorOf(agency);
    if (!colored) colored = &colorless;
    badge = shared(
        artworkOf(shield(TransitMode::other, std::move(text), colored->color, colored->textColor), name));
  }
  // With a prefix, because an agency and a route may have the same id.
  const std::uint64_t muid = stableMuid(index_->feedName() + " agencies", entry.id.empty() ? name : entry.id);
  system = std::make_shared<const TransitSystem>(TransitSystem{.muid = muid, .name = name, .artwork = badge});
  return system;
}

const FeedRoute* LineRecords::routeInColorOf(std::uint32_t agency) {
  if (routesInAgencyColors_.empty()) routesInAgencyColors_ = routesInAgencyColors(*index_);
  return routesInAgencyColors_[agency];
}

SharedArtwork LineRecords::shared(TransitArtworkDataSource artwork) {
  return *artworks_.insert(std::make_shared<const TransitArtworkDataSource>(std::move(artwork))).first;
}

}  // namespace linewatch
