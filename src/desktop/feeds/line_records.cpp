#include "desktop/feeds/line_records.h"

#include <algorithm>
#include <string>
#include <utility>

#include "desktop/feeds/colors.h"
#include "desktop/feeds/route_mode.h"
#include "desktop/feeds/shield_text.h"

namespace linewatch::desktop {

namespace {

/// Without a colour of its own a shield is painted as the theme has it, text included.
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

/// Unnamed: what a screen reader calls a mode depends on the user's language.
TransitArtworkDataSource iconOf(TransitMode mode) {
  return {.artworkSourceType = kArtworkSourceIcon,
          .iconDataSource = IconDataSource{.defaultTransitType = static_cast<std::int64_t>(mode)}};
}

/// The colour of more than half of the agency's routes, or empty: such a colour is the agency's own.
std::string prevailingColor(std::span<const FeedRoute> routes, std::uint32_t agency) {
  // Each route with another colour takes one vote off: only a colour with a majority is sure to be left.
  const std::string* leader = nullptr;
  std::ptrdiff_t votes = 0;
  for (const FeedRoute& route : routes) {
    if (route.agency != agency) continue;
    if (votes == 0) leader = &route.color;
    votes += route.color == *leader ? 1 : -1;
  }
  std::ptrdiff_t margin = 0;
  for (const FeedRoute& route : routes) {
    if (leader != nullptr && route.agency == agency) margin += route.color == *leader ? 1 : -1;
  }
  return margin > 0 ? *leader : std::string();
}

std::string textColorBeside(std::span<const FeedRoute> routes, const std::string& color) {
  const auto route = std::find_if(routes.begin(), routes.end(),
                                  [&color](const FeedRoute& candidate) { return candidate.color == color; });
  return route == routes.end() ? std::string() : route->textColor;
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
    const std::string color = prevailingColor(index_->routes(), agency);
    badge = shared(artworkOf(
        shield(TransitMode::other, std::move(text), color, textColorBeside(index_->routes(), color)), name));
  }
  // Apart from the routes' ids: an agency and a route may go by the same one.
  const std::uint64_t muid = stableMuid(index_->feedName() + " agencies", entry.id.empty() ? name : entry.id);
  system = std::make_shared<const TransitSystem>(TransitSystem{.muid = muid, .name = name, .artwork = badge});
  return system;
}

SharedArtwork LineRecords::shared(TransitArtworkDataSource artwork) {
  return *artworks_.insert(std::make_shared<const TransitArtworkDataSource>(std::move(artwork))).first;
}

}  // namespace linewatch::desktop
