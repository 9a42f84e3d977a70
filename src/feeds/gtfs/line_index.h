#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace linewatch {

/// An agency of a feed, from agency.txt. Texts may be empty.
struct FeedAgency {
  std::string id;
  std::string name;
  /// A language tag, e.g. "de" or "pt-BR".
  std::string language;

  bool operator==(const FeedAgency&) const = default;
};

/// A route of a feed, from routes.txt. The rest of the program calls it a line. Texts may be empty.
struct FeedRoute {
  std::string id;
  std::string shortName;
  std::string longName;
  /// The index of its agency in `agencies()`; absent when the feed does not say.
  std::optional<std::uint32_t> agency;
  /// The basic or extended route type; absent when missing or not a number.
  std::optional<std::int32_t> type;
  /// Six upper-case hexadecimal digits each; empty when missing or malformed.
  std::string color;
  std::string textColor;

  bool operator==(const FeedRoute&) const = default;
};

/// A stable 64-bit identifier of a route or an alert of a feed: the same on every machine and in every run,
/// never 0.
std::uint64_t stableMuid(std::string_view feedName, std::string_view id);

/// The lines of one feed, for look-up. Immutable; read on any thread.
class LineIndex {
 public:
  struct Contents {
    std::string feedName;
    /// The feed's own language tag; empty when not stated.
    std::string language;
    std::vector<FeedAgency> agencies;
    /// In the feed's order, with distinct ids.
    std::vector<FeedRoute> routes;

    bool operator==(const Contents&) const = default;
  };

  explicit LineIndex(Contents contents);
  LineIndex(const LineIndex&) = delete;
  LineIndex& operator=(const LineIndex&) = delete;

  const Contents& contents() const { return contents_; }
  const std::string& feedName() const { return contents_.feedName; }
  const std::string& language() const { return contents_.language; }
  std::span<const FeedAgency> agencies() const { return contents_.agencies; }
  std::span<const FeedRoute> routes() const { return contents_.routes; }

  /// The route's index in `routes()`, or none.
  std::optional<std::size_t> routeWithId(std::string_view id) const;
  std::optional<std::size_t> routeWithMuid(std::uint64_t muid) const;
  /// The `muid` of the route's line.
  std::uint64_t muidOfRoute(std::size_t route) const { return muids_[route]; }
  /// Short name, else long name, else id.
  const std::string& nameOfRoute(std::size_t route) const;

 private:
  Contents contents_;
  std::vector<std::uint64_t> muids_;
  /// Sorted. It is built at each start of the program: sorting is faster than filling a hash table, and no
  /// feed can slow it down with colliding ids.
  std::vector<std::pair<std::uint64_t, std::uint32_t>> routesByMuid_;
};

using SharedLineIndex = std::shared_ptr<const LineIndex>;

}  // namespace linewatch
