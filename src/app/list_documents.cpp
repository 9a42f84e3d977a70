#include "app/list_documents.h"

#include <string>
#include <utility>

#include "app/forms_of.h"
#include "app/show_document.h"
#include "feeds/http/redacted.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

Value textOrNone(const std::string& text) { return text.empty() ? noValue() : Value(text); }

Dictionary lineForm(const FoundLine& line) {
  return {{"id", std::to_string(line.index->muidOfRoute(line.route))},
          {"feed", line.index->feedName()},
          {"route", line.entry().id},
          {"name", line.name()},
          {"longName", line.longName()},
          {"agency", textOrNone(line.agencyName())}};
}

Value stopsForm(const LineChoice& choice) {
  switch (choice.stops) {
    case LineChoice::Stops::all:
      return "all";
    case LineChoice::Stops::none:
      return "none";
    case LineChoice::Stops::chosen:
      break;
  }
  return formsOf(choice.stopIds, [](const std::string& id) { return Value(id); });
}

Dictionary favoriteForm(const FavoriteLine& favorite) {
  const StoredFavorite& stored = favorite.favorite;
  return {{"feed", stored.feed},
          {"route", stored.subject},
          {"line", favorite.line ? Value(lineForm(*favorite.line)) : noValue()},
          {"stops", stopsForm(stored.choice)},
          {"direction", stored.choice.direction ? Value(*stored.choice.direction) : noValue()}};
}

Dictionary sourceForm(const FeedSource& source) {
  return {{"locations",
           formsOf(source.locations, [](const std::string& location) { return Value(redacted(location)); })},
          {"hasKey", !source.keys.isEmpty()}};
}

Dictionary listedFeedForm(const ListedFeed& listed, Date now) {
  Dictionary form = listed.state ? feedStateForm(*listed.state, now) : Dictionary{{"state", noValue()}};
  form.insert_or_assign("name", listed.feed.name);
  form.emplace("lines", listed.lines ? Value(std::uint64_t{listed.lines->routes().size()}) : noValue());
  form.emplace("timetable", sourceForm(listed.feed.gtfs));
  form.emplace("alerts", sourceForm(listed.feed.alerts));
  return form;
}

}  // namespace

Dictionary linesDocument(const std::vector<FoundLine>& lines, const std::optional<Error>& error) {
  return {{"version", 1},
          {"lines", formsOf(lines, lineForm)},
          {"error", error ? Value(sentenceOf(*error)) : noValue()}};
}

Dictionary favoritesDocument(const std::vector<FavoriteLine>& favorites) {
  return {{"version", 1}, {"favorites", formsOf(favorites, favoriteForm)}};
}

Dictionary feedsDocument(const std::vector<ListedFeed>& feeds, Date now) {
  return {{"version", 1},
          {"feeds", formsOf(feeds, [now](const ListedFeed& feed) { return listedFeedForm(feed, now); })}};
}

}  // namespace linewatch::app
