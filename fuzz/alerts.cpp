// Decodes any bytes as alerts, applies them as an update, matches them with lines and makes records. The
// result must be records with valid text, or an error.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "feeds/alerts/held_alerts.h"
#include "feeds/alerts/incident_records.h"
#include "feeds/alerts/row_text.h"
#include "feeds/text/hidden_characters.h"
#include "feeds/text/plain_text.h"
#include "feeds/text/utf8.h"
#include "require.h"

namespace {

using namespace linewatch;

void requireShowable(std::string_view text) {
  require(isValidUtf8(text));
  while (!text.empty()) {
    const std::int32_t character = takeCharacter(text);
    require(character == '\n' || !isHiddenCharacter(character));
  }
}

void checkText(std::string_view written) {
  const std::string text = plainText(written);
  requireShowable(text);
  const std::string title = rowTitle(text.substr(0, text.find('\n')), "de");
  for (const std::string& row : {title, rowSecondaryText(text, title, "de")}) {
    requireShowable(row);
    require(row.find('\n') == std::string::npos);
    require(!row.starts_with(' ') && !row.ends_with(' '));
  }
  webAddress(written);
}

/// Lines with some of the names that the alerts use.
SharedLineIndex linesOf(const AlertsMessage& message) {
  constexpr std::size_t kMostLines = 20;
  LineIndex::Contents contents{
      .feedName = "fuzz", .language = "de", .agencies = {{.id = "1", .name = "Metro"}}};
  for (const AlertsMessage::Entity& entity : message.entities()) {
    for (const AlertSelector& selector : message.selectors(entity)) {
      if (contents.routes.size() >= kMostLines) break;
      FeedRoute& route = contents.routes.emplace_back();
      route.id = selector.routeId.empty() ? selector.tripRouteId : selector.routeId;
      route.agency = static_cast<std::uint32_t>(contents.agencies.size() - 1);
      route.type = selector.routeType;
      if (!selector.agencyId.empty()) contents.agencies.push_back({.id = std::string(selector.agencyId)});
    }
  }
  return std::make_shared<const LineIndex>(std::move(contents));
}

void checkRecords(const SharedAlertsMessage& message) {
  const SharedLineIndex lines = linesOf(*message);
  IncidentRecords records(
      std::make_shared<const IncidentTable>(message, lines),
      std::make_shared<const IncidentLanguage>(IncidentLanguage{.languages = {"en-GB", "fr"}}),
      Date(Seconds(1'700'000'000)));
  for (std::size_t line = 0; line < lines->routes().size(); ++line) {
    for (const SharedIncident& incident : records.ofRoute(line)) {
      require(incident->title() && !incident->title()->empty());
      for (const OptionalText& text : {incident->title(), incident->summary(), incident->fullDescription()}) {
        if (text) requireShowable(*text);
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  checkText(input);
  const auto message = readAlertsMessage(Bytes(data, data + size));
  if (!message) {
    requireShowable(message.error().description());
    return 0;
  }
  checkRecords(*message);
  // Applying the same message again changes nothing, whether it is a full one or a difference.
  const auto again = updatedAlerts(*message, *message);
  require(again.succeeded() && (*again)->timestamp() == (*message)->timestamp());
  checkRecords(*again);
  return 0;
}
