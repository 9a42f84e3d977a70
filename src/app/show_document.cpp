#include "app/show_document.h"

#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "app/forms_of.h"
#include "list/list_dictionary_form.h"
#include "list/transit_incident_filter.h"
#include "shared/failure.h"
#include "shared/hash_mixing.h"

namespace linewatch::app {

namespace {

// In the order of FeedState::Kind.
constexpr std::array<std::string_view, 7> kStateNames = {
    "fresh", "kept", "stale", "outdated", "notMatching", "incomplete", "unreachable"};
// The next three tables are in the order of the enumerations' values, from 1 on.
constexpr std::array<std::string_view, kAlertCauses> kCauseNames = {
    "unknown", "other",   "technicalProblem", "strike",       "demonstration",  "accident",
    "holiday", "weather", "maintenance",      "construction", "policeActivity", "medicalEmergency"};
constexpr std::array<std::string_view, kAlertEffects> kEffectNames = {
    "noService", "reducedService", "significantDelays", "detour",   "additionalService", "modifiedService",
    "other",     "unknown",        "stopMoved",         "noEffect", "accessibilityIssue"};
constexpr std::array<std::string_view, kAlertSeverities> kSeverityNames = {"unknown", "info", "warning",
                                                                           "severe"};

template <std::size_t count, class Number>
std::string_view nameOf(const std::array<std::string_view, count>& names, Number number) {
  return names.at(static_cast<std::size_t>(number) - 1);
}

// A string, because many JSON readers do not keep 64 bits of a number.
Value idForm(std::uint64_t muid) { return std::to_string(muid); }

Value dateForm(const std::optional<Date>& date) { return date ? Value(description(*date)) : noValue(); }

Value textForm(const std::string& text) { return text.empty() ? noValue() : Value(text); }

/// A start or end of 0 is open.
Value secondsForm(std::uint64_t seconds) {
  return seconds == 0 ? noValue() : Value(description(Date(Seconds(static_cast<double>(seconds)))));
}

Dictionary periodForm(const AlertPeriod& period) {
  return {{"start", secondsForm(period.start)}, {"end", secondsForm(period.end)}};
}

/// The periods in which the incident is shown.
std::vector<AlertPeriod> shownPeriods(std::vector<AlertPeriod> periods) {
  std::erase_if(periods, [](const AlertPeriod& period) { return period.use != AlertPeriod::Use::show; });
  return periods;
}

Dictionary incidentForm(const TransitIncident& incident, const IncidentDetails& details) {
  return {
      {"id", idForm(incident.muid())},
      {"title", valueOrNone(incident.title())},
      {"summary", valueOrNone(incident.summary())},
      {"description", valueOrNone(incident.fullDescription())},
      {"url", valueOrNone(incident.infoURL())},
      {"blocking", incident.isBlockingIncident()},
      {"severity", nameOf(kSeverityNames, details.severity)},
      {"effect", nameOf(kEffectNames, details.effect)},
      {"cause", nameOf(kCauseNames, details.cause)},
      {"start", dateForm(incident.startDate())},
      {"end", dateForm(incident.endDate())},
      {"periods", formsOf(shownPeriods(details.periods), periodForm)},
      {"stops", formsOf(details.stops,
                        [](const IncidentStop& stop) {
                          return Dictionary{{"id", stop.id}, {"name", textForm(stop.name)}};
                        })},
      {"directions", formsOf(details.directions, [](std::uint8_t direction) { return Value(direction); })}};
}

const IncidentDetails& detailsOf(const TransitIncident& incident, const ShownContent& content) {
  static const IncidentDetails kUnknown;
  const auto details = content.details.find(incident.muid());
  return details == content.details.end() ? kUnknown : details->second;
}

Dictionary upcomingForm(const UpcomingIncident& upcoming, const ShownContent& content) {
  Dictionary form = incidentForm(*upcoming.incident, detailsOf(*upcoming.incident, content));
  form.emplace("lines",
               formsOf(upcoming.lines, [](const SharedLineItem& line) { return idForm(line->muid()); }));
  return form;
}

/// Numbers the records of the rows. The rows of one line share a record, so its address identifies it.
class RowRecords {
 public:
  /// The reference that replaces the bytes in a row.
  Value reference(const Bytes& bytes) {
    const auto [place, isNew] = places_.try_emplace(&bytes, records_.size());
    if (isNew) records_.push_back(&bytes);
    return Dictionary{{"record", std::uint64_t{place->second}}};
  }
  /// The records, in base64; null if all of them together would exceed `limit`. Counts the null ones.
  Array forms(std::size_t limit, std::size_t& leftOut) const {
    return formsOf(records_, [&](const Bytes* bytes) {
      const bool fits = bytes->size() <= limit;
      limit -= fits ? bytes->size() : 0;
      leftOut += fits ? 0 : 1;
      return fits ? Value(*bytes) : noValue();
    });
  }

 private:
  std::unordered_map<const Bytes*, std::size_t> places_;
  std::vector<const Bytes*> records_;
};

/// The lines, and their incidents in force.
class LineForms {
 public:
  explicit LineForms(const ShownContent& content) : content_(content) {
    for (const ShownLine& line : content.lines) add(line);
  }

  Array takeLines() { return std::move(lines_); }
  Array takeIncidents() { return std::move(incidents_); }

 private:
  void add(const ShownLine& line) {
    Array ids;
    if (line.item) ids = listIncidents(*line.item);
    const char* const status = !line.item ? "unknown" : ids.empty() ? "good" : "incidents";
    lines_.push_back(Dictionary{{"id", idForm(line.muid)},
                                {"feed", textForm(line.feed)},
                                {"route", textForm(line.routeId)},
                                {"name", line.name},
                                {"agency", textForm(line.agency)},
                                {"status", status},
                                {"incidents", std::move(ids)}});
  }
  Array listIncidents(const TransitLineItem& line) {
    Array ids;
    for (const SharedIncident& incident : line.incidents()) {
      if (!filter_.shouldDisplayIncident(*incident)) continue;
      ids.push_back(idForm(incident->muid()));
      if (known_.insert(incident->muid()).second) addIncident(*incident);
    }
    return ids;
  }
  void addIncident(const TransitIncident& incident) {
    incidents_.push_back(incidentForm(incident, detailsOf(incident, content_)));
  }

  const ShownContent& content_;
  RVTransitIncidentFilter filter_;
  Array lines_, incidents_;
  std::unordered_set<std::uint64_t, IdentifierHash> known_;
};

/// The error when the lines list more incidents than the limits allow.
std::optional<Error> excess(const ShownContent& content, const ShowDocumentLimits& limits) {
  std::size_t listings = 0;
  std::unordered_set<std::uint64_t, IdentifierHash> incidents;
  for (const ShownLine& line : content.lines) {
    if (!line.item) continue;
    listings += line.item->incidents().size();
    for (const SharedIncident& incident : line.item->incidents()) incidents.insert(incident->muid());
  }
  const auto tooMany = [](const char* verb, std::size_t count, std::size_t limit) {
    return failure(FailureCode::tooLarge, "show --json", "",
                   std::string("the favourite lines ") + verb + " " + std::to_string(count) +
                       " incidents, more than " + std::to_string(limit) + "; choose fewer lines");
  };
  if (listings > limits.listings) return tooMany("list", listings, limits.listings);
  if (incidents.size() > limits.incidents) return tooMany("have", incidents.size(), limits.incidents);
  return std::nullopt;
}

}  // namespace

Dictionary feedStateForm(const FeedState& state, Date now) {
  const std::optional<Seconds> age = ageOf(state, now);
  return {{"name", state.feed},
          {"state", kStateNames.at(static_cast<std::size_t>(state.kind))},
          {"since", dateForm(state.since)},
          {"age", age ? Value(std::floor(age->count())) : noValue()},
          {"error", state.error ? Value(sentenceOf(*state.error)) : noValue()}};
}

Outcome<ShowDocument> showDocument(const ShownContent& content, const ShowDocumentLimits& limits) {
  if (auto error = excess(content, limits)) return *std::move(error);
  ShowDocument document;
  RowRecords records;
  Dictionary& form = document.form;
  if (content.list) {
    form = dictionaryForm(*content.list, [&](const Bytes& bytes) { return records.reference(bytes); });
  } else {
    form = {{"summaryItem", noValue()}, {"expandedItems", Array()}};
  }
  LineForms lines(content);
  form.emplace("version", kShowDocumentVersion);
  form.emplace("generated", description(content.now));
  form.emplace("feeds", formsOf(content.feeds,
                                [&](const FeedState& state) { return feedStateForm(state, content.now); }));
  form.emplace("lines", lines.takeLines());
  form.emplace("incidents", lines.takeIncidents());
  form.emplace("upcoming", formsOf(content.upcoming, [&](const UpcomingIncident& upcoming) {
                 return upcomingForm(upcoming, content);
               }));
  form.emplace("records", records.forms(limits.recordBytes, document.recordsLeftOut));
  return document;
}

}  // namespace linewatch::app
