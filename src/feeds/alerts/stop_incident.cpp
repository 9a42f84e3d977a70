#include "feeds/alerts/stop_incident.h"

#include <algorithm>
#include <map>
#include <utility>

#include "feeds/alerts/incident_texts.h"
#include "feeds/alerts/row_text.h"
#include "feeds/gtfs/line_index.h"
#include "platform/transit_storage_incident.h"

namespace linewatch {

namespace {

using Notices = std::span<const WordedStopNotice>;
using Names = std::vector<std::string>;

/// A row has no room for more.
constexpr std::size_t kMostNames = 8;

void addOnce(Names& names, const std::string& name) {
  if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

Names stopsOf(Notices notices) {
  Names all;
  for (const WordedStopNotice& notice : notices) {
    for (const std::string& stop : notice.stops.names) addOnce(all, stop);
  }
  return all;
}

/// The names that a row has room for: "A, B and 3 more".
std::string rowList(Names names, const IncidentLanguage& language) {
  if (names.size() > kMostNames) {
    const std::size_t more = names.size() - kMostNames;
    names.resize(kMostNames);
    names.push_back(filledIn(language.texts.moreStopsFormat, std::to_string(more)));
  }
  return joinedNames(names, language);
}

/// True when names and effect say what happens: "Harbour closed". Otherwise the agency's header says it
/// better.
bool areNamesEnough(const WordedStopNotice& notice) {
  return notice.header.empty() || (notice.stops.areAllKnown && FeedTexts::hasWordsForStops(notice.effect));
}

/// "Harbour and Pier closed; Market moved": the stops of each effect together, in the order of the notices.
std::string effectsAtNamedStops(Notices notices, const IncidentLanguage& language) {
  std::vector<std::pair<AlertEffect, Names>> stopsByEffect;
  for (const WordedStopNotice& notice : notices) {
    if (!areNamesEnough(notice)) continue;
    auto known = std::ranges::find(stopsByEffect, notice.effect, &std::pair<AlertEffect, Names>::first);
    if (known == stopsByEffect.end()) known = stopsByEffect.insert(known, {notice.effect, {}});
    for (const std::string& stop : notice.stops.names) addOnce(known->second, stop);
  }
  std::string text;
  for (const auto& [effect, stops] : stopsByEffect) {
    text.append(text.empty() ? "" : "; ")
        .append(language.texts.effectAtStops(effect, rowList(stops, language)));
  }
  return text;
}

std::string summaryOfStops(Notices notices, const IncidentLanguage& language) {
  Names headers;
  for (const WordedStopNotice& notice : notices) {
    if (!areNamesEnough(notice)) addOnce(headers, rowTitle(notice.header, notice.language));
  }
  std::string text = effectsAtNamedStops(notices, language);
  for (const std::string& header : headers) appendSentence(text, header);
  return cutToRow(std::move(text));
}

/// The header and the description, or the effect and the cause in words.
std::string ownTextOf(const WordedStopNotice& notice, const IncidentLanguage& language) {
  const FeedTexts& words = language.texts;
  const std::string& header = notice.header;
  if (header.empty() && notice.description.empty()) {
    return words.together(words.effectAtStops(notice.effect, joinedNames(notice.stops.names, language)),
                          words.cause(notice.cause));
  }
  if (header.empty() || notice.description.empty()) return header + notice.description;
  return header + "\n" + notice.description;
}

std::string ownTextsOf(Notices notices, const IncidentLanguage& language) {
  std::string all;
  for (const WordedStopNotice& notice : notices) {
    const std::string text = ownTextOf(notice, language);
    if (!all.empty()) all += "\n\n";
    all += text;
    // The agency's text may leave stops out.
    const Names& stops = notice.stops.names;
    const bool saysStops =
        std::ranges::all_of(stops, [&](const std::string& stop) { return titleSays(text, stop); });
    if (!saysStops) all += "\n" + filledIn(language.texts.stopsFormat, joinedNames(stops, language));
    if (notices.size() > 1 && notice.url) all += "\n" + *notice.url;
  }
  return all;
}

/// The agency's header, where it is a better title than the name of the stop or the number of stops; else
/// empty.
std::string headerAsTitle(Notices notices, const Names& stops) {
  const auto hasHeader = [](const WordedStopNotice& notice) { return !notice.header.empty(); };
  const auto notice = std::ranges::find_if(notices, hasHeader);
  if (notice == notices.end()) return {};
  std::string header = rowTitle(notice->header, notice->language);
  const bool isUnnamed =
      !std::ranges::all_of(notices, [](const WordedStopNotice& each) { return each.stops.areAllKnown; });
  if (isUnnamed) return notices.size() == 1 || stops.size() == 1 ? header : std::string();
  const bool isTheOnly = notices.size() == 1 && stops.size() == 1;
  return isTheOnly && titleSays(header, stops.front()) ? header : std::string();
}

/// "Harbour closed"; "Harbour affected" where no effect is known or there are several.
std::string titleForStop(const std::string& stop, Notices notices, const FeedTexts& words) {
  const AlertEffect effect = notices.front().effect;
  const bool isOneEffect =
      std::ranges::all_of(notices, [&](const WordedStopNotice& notice) { return notice.effect == effect; });
  return isOneEffect && FeedTexts::hasWordsForStops(effect) ? words.effectAtStops(effect, stop)
                                                            : filledIn(words.stopAffectedFormat, stop);
}

/// The sentences that add something to the title: from the headers, then from the descriptions.
std::string newsOf(Notices notices, const std::string& title, const FeedTexts& words) {
  std::string headers, descriptions;
  for (const WordedStopNotice& notice : notices) {
    headers.append(notice.header).append("\n");
    descriptions.append(notice.description).append("\n");
  }
  std::string news = rowSecondaryText(headers + descriptions, title, notices.front().language);
  if (!news.empty()) return news;
  const std::string& cause = words.cause(notices.front().cause);
  return titleSays(title, cause) ? std::string() : cause;
}

ShownPeriod wholePeriodOf(Notices notices) {
  ShownPeriod whole = notices.front().period;
  for (const WordedStopNotice& notice : notices) {
    const ShownPeriod& period = notice.period;
    whole.start =
        whole.start && period.start ? std::optional(std::min(*whole.start, *period.start)) : std::nullopt;
    whole.end = whole.end && period.end ? std::optional(std::max(*whole.end, *period.end)) : std::nullopt;
  }
  return whole;
}

}  // namespace

std::uint64_t muidOfStopIncident(std::string_view feedName, Notices notices) {
  std::map<std::uint64_t, Names> stopsByNotice;
  for (const WordedStopNotice& notice : notices) {
    Names& stops = stopsByNotice[notice.muid];
    stops.insert(stops.end(), notice.stops.names.begin(), notice.stops.names.end());
  }
  std::string id = "stops";
  for (auto& [muid, stops] : stopsByNotice) {
    std::ranges::sort(stops);
    id.append(1, '\0').append(std::to_string(muid));
    for (const std::string& stop : stops) id.append(1, '\0').append(stop);
  }
  return stableMuid(feedName, id);
}

SharedIncident stopIncident(std::uint64_t muid, Notices notices, const IncidentLanguage& language) {
  const FeedTexts& words = language.texts;
  const Names stops = stopsOf(notices);
  const ShownPeriod period = wholePeriodOf(notices);
  TransitIncidentFields fields{.muid = muid, .startDate = period.start, .endDate = period.end};
  std::string title = headerAsTitle(notices, stops);
  if (title.empty() && stops.size() == 1) title = titleForStop(stops.front(), notices, words);
  const bool isCounted = title.empty();
  if (isCounted) title = inPluralForm(words.stopsAffectedFormat, stops.size(), language);
  fields.summary = textIfAny(isCounted ? summaryOfStops(notices, language) : newsOf(notices, title, words));
  fields.title = textIfAny(std::move(title));
  fields.fullDescription = textIfAny(ownTextsOf(notices, language));
  if (notices.size() == 1) fields.infoURL = notices.front().url;
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

}  // namespace linewatch
