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

std::optional<Error> ask(const std::string& whose, FeedKeys& keys) {
  if (!isToBeAsked(keys)) return std::nullopt;
  auto key = askForKey(whose);
  if (!key) return key.error();
  keys.key = *std::move(key);
  return std::nullopt;
}

/// `isShared`: both documents have the same key.
std::optional<Error> ask(StoredFeed& feed, bool isShared) {
  const std::string name = "feed " + feed.name;
  const bool wantsBoth = isToBeAsked(feed.gtfs.keys) && isToBeAsked(feed.alerts.keys);
  if (!wantsBoth || !isShared) {
    if (auto error = ask(wantsBoth ? "the timetable of " + name : name, feed.gtfs.keys)) return error;
    return ask(wantsBoth ? "the alerts of " + name : name, feed.alerts.keys);
  }
  auto error = ask(name, feed.gtfs.keys);
  feed.alerts.keys.key = feed.gtfs.keys.key;
  return error;
}

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

Outcome<StoredFeed> withGivenKeys(StoredFeed feed, const FeedOptions& options) {
  change(feed.gtfs, options.keys, options.gtfsKeys);
  change(feed.alerts, options.keys, options.alertsKeys);
  if (auto error = uselessCommand(feed)) return *std::move(error);
  if (auto error = ask(feed, !haveFields(options.gtfsKeys) && !haveFields(options.alertsKeys)))
    return *std::move(error);
  return feed;
}

Outcome<StoredFeed> feedFrom(const FeedOptions& options, const std::string& name) {
  return withGivenKeys({.name = name, .gtfs = sourceAt(options.gtfs), .alerts = sourceAt(options.alerts)},
                       options);
}

Outcome<StoredFeed> withNewKeys(StoredFeed feed, const FeedOptions& options) {
  const bool areGiven =
      options.keys.areGiven() || options.gtfsKeys.areGiven() || options.alertsKeys.areGiven();
  const bool isShared = feed.gtfs.keys == feed.alerts.keys;
  if (!hasUrl(feed.gtfs) && !hasUrl(feed.alerts))
    return failure("feed " + feed.name, "", "none of its locations is a URL, so no key is sent");
  if (areGiven) return withGivenKeys(std::move(feed), options);
  for (FeedSource* source : {&feed.gtfs, &feed.alerts}) {
    if (source->keys.command.empty()) source->keys.key.clear();
  }
  if (!isToBeAsked(feed.gtfs.keys) && !isToBeAsked(feed.alerts.keys))
    return failure("feed " + feed.name, "",
                   "say where its key goes, with --header 'NAME: KEY' or --query-key NAME");
  if (auto error = ask(feed, isShared)) return *std::move(error);
  return feed;
}

}  // namespace linewatch::app
