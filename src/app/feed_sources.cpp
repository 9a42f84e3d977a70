#include "app/feed_sources.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/key_prompt.h"
#include "feeds/feed_keys.h"
#include "feeds/http/http_fetcher.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Changes the keys of a document. New headers or parameters replace all earlier ones. A new command alone
/// replaces only the key.
void change(FeedKeys& keys, const FeedOptions::Keys& given) {
  if (!given.areGiven()) return;
  if (!given.headers.empty() || !given.query.empty()) keys = {.headers = given.headers, .query = given.query};
  keys.key.clear();
  keys.command = given.command;
}

/// The options of one document. An option for this document replaces the general one.
FeedOptions::Keys chosen(const FeedOptions::Keys& common, const FeedOptions::Keys& own) {
  return {.headers = own.headers.empty() ? common.headers : own.headers,
          .query = own.query.empty() ? common.query : own.query,
          .command = own.command.empty() ? common.command : own.command};
}

bool hasUrl(const FeedSource& source) { return std::ranges::any_of(source.locations, isHttpURL); }

void change(FeedSource& source, const FeedOptions::Keys& common, const FeedOptions::Keys& own) {
  if (hasUrl(source)) change(source.keys, chosen(common, own));
}

bool isToBeAsked(const FeedKeys& keys) { return wantsKey(keys) && keys.key.empty() && keys.command.empty(); }

/// Asks for the keys that a feed still needs.
class KeyQuestions {
 public:
  KeyQuestions(const RiderTexts& texts, StoredFeed& feed) : texts_(texts), feed_(feed) {}

  /// `isShared`: both documents have the same key. An error if the rider gives none.
  std::optional<Error> ask(bool isShared) {
    FeedKeys& timetable = feed_.gtfs.keys;
    FeedKeys& alerts = feed_.alerts.keys;
    const bool wantsBoth = isToBeAsked(timetable) && isToBeAsked(alerts);
    if (!wantsBoth || !isShared) {
      if (auto error = ask(wantsBoth ? KeyUse::timetable : KeyUse::feed, timetable)) return error;
      return ask(wantsBoth ? KeyUse::alerts : KeyUse::feed, alerts);
    }
    auto error = ask(KeyUse::feed, timetable);
    alerts.key = timetable.key;
    return error;
  }

 private:
  std::optional<Error> ask(KeyUse use, FeedKeys& keys) {
    if (!isToBeAsked(keys)) return std::nullopt;
    auto key = askForKey(texts_, use, feed_.name);
    if (!key) return key.error();
    keys.key = *std::move(key);
    return std::nullopt;
  }

  const RiderTexts& texts_;
  StoredFeed& feed_;
};

bool haveFields(const FeedOptions::Keys& keys) { return !keys.headers.empty() || !keys.query.empty(); }

std::optional<Error> uselessCommand(const StoredFeed& feed) {
  for (const FeedSource* source : {&feed.gtfs, &feed.alerts}) {
    if (!source->keys.command.empty() && !wantsKey(source->keys))
      return failure("feed " + feed.name, "",
                     "say where the key of the command goes, with --header 'NAME: KEY' or --query-key NAME");
  }
  return std::nullopt;
}

FeedSource sourceAt(const std::vector<std::string>& locations) {
  FeedSource source;
  source.locations = locations;
  return source;
}

}  // namespace

Outcome<StoredFeed> withGivenKeys(const RiderTexts& texts, StoredFeed feed, const FeedOptions& options) {
  change(feed.gtfs, options.keys, options.gtfsKeys);
  change(feed.alerts, options.keys, options.alertsKeys);
  if (auto error = uselessCommand(feed)) return *std::move(error);
  if (auto error =
          KeyQuestions(texts, feed).ask(!haveFields(options.gtfsKeys) && !haveFields(options.alertsKeys)))
    return *std::move(error);
  return feed;
}

Outcome<StoredFeed> feedFrom(const RiderTexts& texts, const FeedOptions& options, const std::string& name) {
  return withGivenKeys(
      texts, {.name = name, .gtfs = sourceAt(options.gtfs), .alerts = sourceAt(options.alerts)}, options);
}

Outcome<StoredFeed> withNewKeys(const RiderTexts& texts, StoredFeed feed, const FeedOptions& options) {
  const bool areGiven =
      options.keys.areGiven() || options.gtfsKeys.areGiven() || options.alertsKeys.areGiven();
  const bool isShared = feed.gtfs.keys == feed.alerts.keys;
  if (!hasUrl(feed.gtfs) && !hasUrl(feed.alerts))
    return failure("feed " + feed.name, "", "none of its locations is a URL, so no key is sent");
  if (areGiven) return withGivenKeys(texts, std::move(feed), options);
  for (FeedSource* source : {&feed.gtfs, &feed.alerts}) {
    if (source->keys.command.empty()) source->keys.key.clear();
  }
  if (!isToBeAsked(feed.gtfs.keys) && !isToBeAsked(feed.alerts.keys))
    return failure("feed " + feed.name, "",
                   "say where its key goes, with --header 'NAME: KEY' or --query-key NAME");
  if (auto error = KeyQuestions(texts, feed).ask(isShared)) return *std::move(error);
  return feed;
}

}  // namespace linewatch::app
