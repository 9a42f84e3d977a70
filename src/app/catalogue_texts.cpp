#include "app/catalogue_texts.h"

#include <cstdint>
#include <string_view>

#include "app/forms_of.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"
#include "shared/shell_words.h"

namespace linewatch::app {

namespace {

std::string keyLine(const RiderTexts& texts, const CatalogueKey& key) {
  if (key.kind == CatalogueKey::Kind::none) return texts("FindNoKey");
  return key.page.empty() ? texts("FindKey") : texts("FindKeyFrom", {key.page});
}

constexpr std::string_view kKeyKinds[] = {"none", "queryParameter", "header", "other"};
constexpr std::string_view kStatuses[] = {"active", "inactive", "deprecated"};

Value textValue(const std::string& text) { return text.empty() ? noValue() : Value(text); }

Dictionary catalogueFeedForm(const CatalogueFeed& feed) {
  const Dictionary key = {{"kind", kKeyKinds[static_cast<std::size_t>(feed.key.kind)]},
                          {"name", textValue(feed.key.name)},
                          {"page", textValue(feed.key.page)}};
  return {{"id", feed.id},
          {"provider", textValue(feed.provider)},
          {"name", textValue(feed.name)},
          {"municipality", textValue(feed.municipality)},
          {"subdivision", textValue(feed.subdivision)},
          {"country", textValue(feed.country)},
          {"status", kStatuses[static_cast<std::size_t>(feed.status)]},
          {"url", feed.url},
          {"copyUrl", textValue(feed.copyUrl)},
          {"license", textValue(feed.license)},
          {"key", key}};
}

Array catalogueFeedForms(const std::vector<SharedCatalogueFeed>& feeds) {
  return formsOf(feeds, [](const SharedCatalogueFeed& feed) { return catalogueFeedForm(*feed); });
}

/// The command that adds a feed at addresses, with the known one of the two, so that only the other one is
/// to be pasted.
std::string commandWithAddresses(const std::string& name, const std::string& timetable,
                                 const std::string& alerts) {
  const auto address = [](const std::string& url) { return url.empty() ? "ADDRESS" : shellQuoted(url); };
  return "linewatch feed add " + shellQuoted(name) + " --gtfs " + address(timetable) + " --alerts " +
         address(alerts);
}

/// The number of timetables that the alerts cover, and their names if the catalogue has any.
std::string coverageLine(const RiderTexts& texts, const CatalogueHit& hit) {
  const std::uint64_t count = hit.timetables.size();
  if (count == 0) return hit.coverage();
  const std::string names = hit.coverage();
  return names.empty() ? texts("FindCovers", {count}) : texts("FindCoversNamed", {count, names});
}

/// The first address among the timetables that were found, or that of the catalogue's copy.
std::string timetableAddress(const std::vector<SharedCatalogueFeed>& timetables) {
  for (const SharedCatalogueFeed& timetable : timetables) {
    if (!timetable->url.empty()) return timetable->url;
    if (!timetable->copyUrl.empty()) return timetable->copyUrl;
  }
  return {};
}

}  // namespace

std::string addingCommand(const CatalogueHit& hit) {
  return "linewatch feed add " + terminalLine(shellQuoted(hit.alerts->id));
}

std::vector<std::string> hitLines(const RiderTexts& texts, const CatalogueHit& hit,
                                  const std::string& language) {
  std::vector<std::string> lines = {hit.provider(), hit.place(language), coverageLine(texts, hit)};
  if (!hit.holds.empty()) lines.push_back(texts("FindHolds", {hit.holds}));
  if (!hit.isActive()) lines.push_back(texts("FindInactive"));
  if (hit.timetables.empty()) lines.push_back(texts("FindNoTimetable"));
  lines.push_back(keyLine(texts, hit.key()));
  if (const std::string license = hit.license(); !license.empty())
    lines.push_back(texts("FindLicense", {license}));
  std::erase(lines, "");
  return lines;
}

std::string noHitText(const RiderTexts& texts, const std::string& query, const CatalogueMatches& matches) {
  const std::string command = commandWithAddresses(query, timetableAddress(matches.timetables), {});
  if (!matches.timetables.empty())
    return texts("FindOnlyTimetables", {query, command, namesOf(matches.timetables)});
  if (!matches.timetablesOnMap.empty())
    return texts("FindTimetablesOnMap", {query, namesOf(matches.timetablesOnMap), command});
  return texts("FindNothing", {query, command});
}

std::string noTimetableText(const RiderTexts& texts, const CatalogueHit& hit) {
  const RiderTexts::Phrase reason{texts("FindNoTimetable")};
  return texts("OfFeed",
               {hit.provider(), RiderTexts::Phrase{texts(
                                    "FindPasteTimetable",
                                    {reason, commandWithAddresses(hit.provider(), {}, hit.alerts->url)})}});
}

std::string keptNote(const RiderTexts& texts, const KeptCatalogue::Reading& reading, Date now) {
  if (!reading.failure || !reading.fetched) return {};
  return texts(
      "CatalogueKept",
      {texts.ago(now - *reading.fetched),
       RiderTexts::Phrase{texts.failure(failureCodeOf(*reading.failure), sentenceOf(*reading.failure))}});
}

Dictionary matchesForm(const std::string& query, const CatalogueMatches& matches,
                       const KeptCatalogue::Reading& reading) {
  const auto hitForm = [](const CatalogueHit& hit) {
    Dictionary form = catalogueFeedForm(*hit.alerts);
    form.insert_or_assign("holds", textValue(hit.holds));
    form.insert_or_assign("coverage", textValue(hit.coverage()));
    form.insert_or_assign("timetables", catalogueFeedForms(hit.timetables));
    return form;
  };
  return {{"version", std::int64_t{1}},
          {"query", query},
          {"hits", formsOf(matches.hits, hitForm)},
          {"timetables", catalogueFeedForms(matches.timetables)},
          {"timetablesOnMap", catalogueFeedForms(matches.timetablesOnMap)},
          {"fetched", reading.fetched ? Value(description(*reading.fetched)) : noValue()},
          {"error", reading.failure ? Value(sentenceOf(*reading.failure)) : noValue()}};
}

}  // namespace linewatch::app
