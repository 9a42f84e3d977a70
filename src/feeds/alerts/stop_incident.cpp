#include "feeds/alerts/stop_incident.h"

#include <algorithm>
#include <map>
#include <utility>

#include <unicode/locid.h>
#include <unicode/msgfmt.h>

#include "feeds/alerts/row_text.h"
#include "feeds/gtfs/line_index.h"
#include "platform/transit_storage_incident.h"

namespace linewatch {

namespace {

using Notices = std::span<const WordedStopNotice>;
using Names = std::vector<std::string>;

/// A row has no room for more.
constexpr std::size_t kMostNames = 8;

OptionalText presentText(std::string text) {
  return text.empty() ? OptionalText() : OptionalText(std::move(text));
}

void addOnce(Names& names, const std::string& name) {
  if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

Names stopsOf(Notices notices) {
  Names all;
  for (const WordedStopNotice& notice : notices) {
    for (const std::string& stop : notice.stops) addOnce(all, stop);
  }
  return all;
}

std::string joinedNames(const Names& names) {
  std::string text;
  for (std::size_t place = 0; place < std::min(names.size(), kMostNames); ++place) {
    text.append(place == 0 ? "" : ", ").append(names[place]);
  }
  return names.size() > kMostNames ? text.append(", ").append(kEllipsis) : text;
}

/// The pattern with the count in the plural form that the language has for it.
std::string countedStops(const std::string& pattern, std::size_t count, const IncidentLanguage& language) {
  const std::string tag = language.languages.empty() ? "en" : language.languages.front();
  UErrorCode error = U_ZERO_ERROR;
  const icu::MessageFormat format(icu::UnicodeString::fromUTF8(pattern),
                                  icu::Locale::forLanguageTag(tag, error), error);
  const icu::Formattable number(static_cast<std::int64_t>(count));
  icu::UnicodeString text;
  icu::FieldPosition ignored(icu::FieldPosition::DONT_CARE);
  if (U_SUCCESS(error)) format.format(&number, 1, text, ignored, error);
  std::string result;
  return U_SUCCESS(error) ? text.toUTF8String(result) : pattern;
}

/// "Harbour, Pier closed, Market moved": the stops of each effect together, in the order of the notices.
std::string effectsAtStops(Notices notices, const FeedTexts& words) {
  std::vector<std::pair<AlertEffect, Names>> stopsByEffect;
  for (const WordedStopNotice& notice : notices) {
    auto known = std::ranges::find(stopsByEffect, notice.effect, &std::pair<AlertEffect, Names>::first);
    if (known == stopsByEffect.end()) known = stopsByEffect.insert(known, {notice.effect, {}});
    for (const std::string& stop : notice.stops) addOnce(known->second, stop);
  }
  std::string text;
  for (const auto& [effect, stops] : stopsByEffect) {
    text.append(text.empty() ? "" : "; ").append(words.effectAtStops(effect, joinedNames(stops)));
  }
  return text;
}

/// The header and the description, or the effect and the cause in words.
std::string ownTextOf(const WordedStopNotice& notice, const FeedTexts& words) {
  const std::string& header = notice.header;
  if (header.empty() && notice.description.empty()) {
    return words.together(words.effectAtStops(notice.effect, joinedNames(notice.stops)),
                          words.cause(notice.cause));
  }
  if (header.empty() || notice.description.empty()) return header + notice.description;
  return header + "\n" + notice.description;
}

std::string ownTextsOf(Notices notices, const FeedTexts& words) {
  std::string all;
  for (const WordedStopNotice& notice : notices) {
    const std::string text = ownTextOf(notice, words);
    if (!all.empty()) all += "\n\n";
    all += text;
    // The text may not tell the stops, or only some.
    const bool saysStops =
        std::ranges::all_of(notice.stops, [&](const std::string& stop) { return titleSays(text, stop); });
    if (!saysStops) {
      Names names = notice.stops;
      std::string list;
      for (const std::string& name : names) list.append(list.empty() ? "" : ", ").append(name);
      all += "\n" + filledIn(words.stopsFormat, list);
    }
    if (notices.size() > 1 && notice.url) all += "\n" + *notice.url;
  }
  return all;
}

/// The title for one stop: the agency's header where it is the only one and names the stop, else the stop
/// with the effect.
std::string titleForStop(const std::string& stop, Notices notices, const FeedTexts& words) {
  const WordedStopNotice& first = notices.front();
  if (notices.size() == 1) {
    std::string header = rowTitle(first.header, first.language);
    if (titleSays(header, stop)) return header;
  }
  const bool isOneEffect = std::ranges::all_of(
      notices, [&](const WordedStopNotice& notice) { return notice.effect == first.effect; });
  const std::string told = isOneEffect ? words.effectAtStops(first.effect, stop) : stop;
  return told == stop ? filledIn(words.stopAffectedFormat, stop) : told;
}

/// What the notices say beyond the title.
std::string newsOf(Notices notices, const std::string& title, const FeedTexts& words) {
  std::string texts;
  for (const WordedStopNotice& notice : notices) {
    texts.append(texts.empty() ? "" : "\n").append(notice.header);
    if (!notice.description.empty()) texts.append("\n").append(notice.description);
  }
  std::string news = rowSecondaryText(texts, title, notices.front().language);
  return news.empty() && !titleSays(title, words.cause(notices.front().cause))
             ? words.cause(notices.front().cause)
             : news;
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
    stops.insert(stops.end(), notice.stops.begin(), notice.stops.end());
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
  const bool isOne = stops.size() == 1;
  std::string title = isOne ? titleForStop(stops.front(), notices, words)
                            : countedStops(words.stopsAffectedFormat, stops.size(), language);
  fields.summary = presentText(isOne ? newsOf(notices, title, words) : effectsAtStops(notices, words));
  fields.title = presentText(std::move(title));
  fields.fullDescription = presentText(ownTextsOf(notices, words));
  if (notices.size() == 1) fields.infoURL = notices.front().url;
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

}  // namespace linewatch
