#include "feeds/service_badge.h"

#include <algorithm>
#include <utility>

namespace linewatch {

namespace {

bool stopsServiceAt(const TransitIncident& incident, Date now) {
  if (!incident.isBlockingIncident()) return false;
  const auto start = incident.startDate(), end = incident.endDate();
  return !(start && *start > now) && !(end && *end < now);
}

SharedArtwork badged(const SharedArtwork& plain, const std::string& noService) {
  if (!plain) return nullptr;
  TransitArtworkDataSource artwork = *plain;
  artwork.hasRoutingIncidentBadge = true;
  std::string& spoken = artwork.accessibilityText.emplace(artwork.accessibilityText.value_or(""));
  spoken += (spoken.empty() || noService.empty() ? "" : ", ") + noService;
  return std::make_shared<const TransitArtworkDataSource>(std::move(artwork));
}

}  // namespace

std::shared_ptr<const TransitLineFields> withServiceBadge(std::shared_ptr<const TransitLineFields> line,
                                                          const TransitIncidents& incidents, Date now,
                                                          const std::string& noService) {
  const bool isStopped = std::ranges::any_of(
      incidents, [now](const SharedIncident& incident) { return stopsServiceAt(*incident, now); });
  if (!isStopped) return line;
  TransitLineFields fields = *line;
  const bool isShared = fields.alternateArtwork == fields.artwork;
  fields.artwork = badged(fields.artwork, noService);
  fields.alternateArtwork = isShared ? fields.artwork : badged(fields.alternateArtwork, noService);
  return std::make_shared<const TransitLineFields>(std::move(fields));
}

}  // namespace linewatch
