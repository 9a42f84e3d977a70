#include "feeds/catalogue/feed_proposal.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

#include "feeds/feed_keys.h"
#include "feeds/http/http_fetcher.h"
#include "feeds/http/redacted.h"
#include "feeds/text/ascii.h"
#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

/// Bytes.
constexpr std::size_t kLongestName = 100;
/// Bytes of a name that is made, so that it fits a line with other words.
constexpr std::size_t kLongestMadeName = 40;

bool isReserved(std::string_view name) { return name == kSampleFeedName || name == kGivenFeedName; }

/// The start of the text, up to a space where there is one, never within a character.
std::string shortenedName(std::string text) {
  if (text.size() <= kLongestMadeName) return text;
  std::size_t end = text.rfind(' ', kLongestMadeName);
  if (end == std::string::npos || end == 0) end = kLongestMadeName;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text;
}

/// "MBTA" of "Massachusetts Bay Transportation Authority (MBTA)"; empty when there is no short form.
std::string shortForm(const std::string& provider) {
  const std::size_t open = provider.find('(');
  const std::size_t close = provider.find(')', std::min(open, provider.size()));
  if (close == std::string::npos) return {};
  const std::string inside = provider.substr(open + 1, close - open - 1);
  const bool isAcronym = inside.size() >= 2 && inside.size() <= 12 && inside.find(' ') == std::string::npos &&
                         std::ranges::count_if(inside, isAsciiCapital) >= 2;
  return isAcronym ? inside : std::string();
}

std::string nameFor(const CatalogueHit& hit) {
  const std::string& provider = hit.alerts->provider;
  const bool isOneAgency = provider.find(',') == std::string::npos;
  const std::string agency = isOneAgency ? shortForm(provider) : std::string();
  std::string name = !agency.empty() ? agency : isOneAgency ? provider : hit.alerts->municipality;
  if (name.empty()) name = hit.provider();
  return name;
}

/// How the server gets the key; none when it needs none, or in a way that is not known.
FeedKeys keysFor(const CatalogueKey& wanted, const std::string& key) {
  FeedKeys keys;
  if (wanted.kind == CatalogueKey::Kind::queryParameter)
    keys.query.push_back({wanted.name, std::string(kKeyWord)});
  if (wanted.kind == CatalogueKey::Kind::header) keys.headers.push_back({wanted.name, std::string(kKeyWord)});
  if (!keys.isEmpty()) keys.key = key;
  return keys;
}

std::optional<Error> locationError(const std::string& location) {
  const auto wrong = [](const std::string& shown) {
    return failure(FailureCode::invalid, shown, "",
                   "neither a file nor an address that starts with http:// or https://");
  };
  if (isHttpURL(location) || location.starts_with("file://")) return std::nullopt;
  const std::size_t scheme = location.find("://");
  if (scheme != std::string::npos) return wrong(location.substr(0, scheme) + "://***");
  std::error_code error;
  if (location.find_first_of("?@") != std::string::npos && !std::filesystem::exists(location, error))
    return wrong(redacted("http://" + location).substr(7));
  return location.empty() ? std::optional(wrong("an empty text")) : std::nullopt;
}

/// Files are later read from other working directories.
std::string absoluteLocation(const std::string& location) {
  if (location.find("://") != std::string::npos) return location;
  std::error_code error;
  const auto path = std::filesystem::absolute(location, error);
  return error ? location : path.lexically_normal().string();
}

}  // namespace

std::optional<Error> feedNameError(const std::string& name) {
  const std::string feed = "feed \"" + name.substr(0, kLongestName) + "\"";
  const bool isPlain = singleLine(name) == name && isValidUtf8(name);
  if (name.empty() || name.size() > kLongestName || !isPlain || name.find(':') != std::string::npos)
    return failure(FailureCode::invalid, feed, "",
                   "a name is one line of text without a colon, of 1 to 100 bytes");
  if (!isReserved(name)) return std::nullopt;
  return failure(FailureCode::invalid, feed, "", "the program uses this name itself; choose another one");
}

Error feedNameInUse(const std::string& name) {
  return failure(FailureCode::alreadyExists, "feed " + name, "",
                 "a feed of that name exists; remove it first");
}

std::string freeFeedName(std::string_view wanted, std::span<const StoredFeed> known) {
  std::string name = withValidUtf8(std::string(wanted));
  std::ranges::replace(name, ':', ' ');
  name = shortenedName(singleLine(name));
  if (name.empty()) name = "feed";
  const auto isTaken = [&known](const std::string& text) {
    return isReserved(text) || std::ranges::find(known, text, &StoredFeed::name) != known.end();
  };
  std::string free = name;
  for (int number = 2; isTaken(free); ++number) free = name + " " + std::to_string(number);
  return free;
}

StoredFeed withCopies(const FeedProposal& proposal) {
  StoredFeed feed = proposal.feed;
  feed.gtfs.keys = {};
  for (std::size_t i = 0; i < feed.gtfs.locations.size() && i < proposal.timetableCopies.size(); ++i) {
    const std::string& copy = proposal.timetableCopies[i];
    if (!copy.empty()) feed.gtfs.locations[i] = copy;
  }
  return feed;
}

FeedProposal proposalOf(const CatalogueHit& hit, const std::string& key, std::span<const StoredFeed> known) {
  FeedProposal proposal{.feed = {.name = freeFeedName(nameFor(hit), known)}, .timetableCopies = {}};
  proposal.feed.alerts = hit.alerts->url;
  proposal.feed.alerts.keys = keysFor(hit.alerts->key, key);
  for (const SharedCatalogueFeed& timetable : hit.timetables) {
    proposal.feed.gtfs.locations.push_back(timetable->url);
    proposal.timetableCopies.push_back(timetable->copyUrl);
    if (proposal.feed.gtfs.keys.isEmpty()) proposal.feed.gtfs.keys = keysFor(timetable->key, key);
  }
  const auto same = std::ranges::find_if(known, [&, copy = withCopies(proposal)](const StoredFeed& other) {
    return other.alerts == copy.alerts && (other.gtfs == proposal.feed.gtfs || other.gtfs == copy.gtfs);
  });
  if (same != known.end()) return {.feed = *same, .timetableCopies = {}, .isSaved = true};
  return proposal;
}

Outcome<FeedProposal> proposalOf(StoredFeed feed) {
  if (const auto error = feedNameError(feed.name)) return *error;
  for (FeedSource* const source : {&feed.gtfs, &feed.alerts}) {
    if (source->locations.empty())
      return failure(FailureCode::invalid, "feed " + feed.name, "",
                     source == &feed.gtfs ? "a timetable is missing" : "an address of alerts is missing");
    for (std::string& location : source->locations) {
      if (const auto error = locationError(location)) return *error;
      location = absoluteLocation(location);
    }
  }
  return FeedProposal{.feed = std::move(feed), .timetableCopies = {}};
}

}  // namespace linewatch
