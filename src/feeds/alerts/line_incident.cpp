#include "feeds/alerts/line_incident.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "feeds/alerts/alert_period.h"
#include "feeds/alerts/incident_stops.h"
#include "feeds/alerts/incident_texts.h"
#include "feeds/alerts/row_text.h"
#include "platform/transit_storage_incident.h"

namespace linewatch {

namespace {

std::string_view routeIdNamedBy(const AlertSelector& selector) {
  return selector.routeId.empty() ? selector.tripRouteId : selector.routeId;
}

std::vector<std::string> lineNamesOf(const IncidentSources& sources, std::uint32_t place) {
  const AlertsMessage& message = sources.table->message();
  const LineIndex& lines = sources.table->lines();
  std::set<std::size_t> routes;
  for (const std::uint32_t entity : sources.table->entitiesOf(place)) {
    for (const AlertSelector& selector : message.selectors(message.entities()[entity])) {
      const auto route = lines.routeWithId(routeIdNamedBy(selector));
      if (route && !selector.namesTrip) routes.insert(*route);
    }
  }
  std::vector<std::string> names;
  for (const std::size_t route : routes) names.push_back(lines.nameOfRoute(route));
  return names;
}

/// Composes the texts of one incident from its header and description. When one is missing, a text made
/// from the effect, cause, lines and stops takes its place.
class LineIncidentTexts {
 public:
  LineIncidentTexts(const IncidentSources& sources, std::uint32_t place)
      : sources_(sources),
        place_(place),
        alert_(sources.alert(sources.incident(place))),
        words_(sources.language->texts),
        header_(bestText(sources, sources.incident(place), AlertText::header)),
        description_(bestText(sources, sources.incident(place), AlertText::description)) {}

  std::string title() const {
    std::string title = rowTitle(header_.text, header_.language);
    if (!title.empty() && !onlyNamesItsLine(sources_, title, alert_)) return title;
    const std::string& effect = words_.effect(alert_.effect);
    if (!effect.empty()) return effect;
    std::string news = titleFromText(description_.text, description_.language);
    if (!news.empty()) return news;
    // Without a header, the cause stands below.
    const std::string& cause = words_.cause(alert_.cause);
    return title.empty() ? words_.incident : cause.empty() ? title : cause;
  }

  std::string secondary(std::string_view title) const {
    std::string news = rowSecondaryText(description_.text, title, description_.language);
    if (news.empty()) news = effectAndCauseBelow(title);
    return isWordless() ? words_.together(news, stopNames()) : news;
  }

  std::string details(const std::string& title) const {
    if (isWordless()) return detailsInWords();
    const bool isCut = title.ends_with(kEllipsis) && !header_.text.ends_with(kEllipsis);
    if (!isCut) return description_.text;
    // The details show the part of the header that was cut from the row.
    return description_.text.empty() ? header_.text : header_.text + "\n\n" + description_.text;
  }

 private:
  bool isWordless() const { return header_.text.empty() && description_.text.empty(); }

  /// Effect and cause, each left out when the title says it already.
  std::string effectAndCauseBelow(std::string_view title) const {
    const auto unlessSaid = [title](const std::string& text) {
      return titleSays(title, text) ? std::string() : text;
    };
    return words_.together(unlessSaid(words_.effect(alert_.effect)), unlessSaid(words_.cause(alert_.cause)));
  }

  /// "Detour · Construction", then the lines and the stops.
  std::string detailsInWords() const {
    std::string text = words_.together(words_.effect(alert_.effect), words_.cause(alert_.cause));
    const auto add = [&text](const std::string& format, const std::string& names) {
      if (!names.empty()) text.append(text.empty() ? "" : "\n").append(filledIn(format, names));
    };
    add(words_.linesFormat, joinedNames(lineNamesOf(sources_, place_), *sources_.language));
    add(words_.stopsFormat, stopNames());
    return text;
  }

  std::string stopNames() const {
    return joinedNames(namesOfStops(sources_, stopIdsOf(sources_, place_)).names, *sources_.language);
  }

  const IncidentSources& sources_;
  std::uint32_t place_;
  const AlertsMessage::Entity& alert_;
  const FeedTexts& words_;
  IncidentText header_, description_;
};

}  // namespace

SharedIncident lineIncident(const IncidentSources& sources, std::uint32_t place) {
  const DistinctIncident& incident = sources.incident(place);
  const AlertsMessage::Entity& alert = sources.alert(incident);
  const ShownPeriod period = periodToShow(sources.table->message().periods(alert), sources.now);
  const LineIncidentTexts texts(sources, place);
  TransitIncidentFields fields{.muid = muidOf(sources, incident),
                               .isBlockingIncident = alert.effect == AlertEffect::noService,
                               .startDate = period.start,
                               .endDate = period.end};
  std::string title = texts.title();
  fields.summary = textIfAny(texts.secondary(title));
  fields.fullDescription = textIfAny(texts.details(title));
  fields.title = textIfAny(std::move(title));
  fields.infoURL = bestAddress(sources, incident);
  // lastUpdated stays absent. The feed's header time changes with every fetch, and with it an unchanged list
  // would count as a new one.
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

}  // namespace linewatch
