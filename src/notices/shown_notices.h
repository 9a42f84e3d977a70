#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "notices/notice.h"
#include "notices/notice_update.h"

namespace linewatch::notices {

/// A notice on the user's screen.
struct ShownNotice {
  Notice notice;
  /// The notification server's number of it; absent until the server has given it one.
  std::optional<std::uint32_t> id;

  bool operator==(const ShownNotice&) const = default;
};

/// The notices on the user's screen, by tag. A line is in one of them at most.
class ShownNotices {
 public:
  /// What has to change on the screen: the notice with the tag `from` is withdrawn or becomes `to`.
  struct Change {
    std::string from;
    std::optional<Notice> to;

    bool operator==(const Change&) const = default;
  };

  /// The notice with this tag; null if there is none.
  const ShownNotice* find(const std::string& tag) const;
  /// All notices with an id, in the order of their tags.
  std::vector<ShownNotice> withIds() const;

  /// Adds the update's notices; each replaces the one with its tag and keeps its id. Returns what has to
  /// change before they are sent: a notice of several lines goes on for the lines that the update does not
  /// name.
  std::vector<Change> take(const NoticeUpdate& update);
  /// Adds a notice of an earlier run, unless there is a newer one of one of its lines.
  bool adopt(ShownNotice shown);
  /// False if there is no such notice.
  bool setId(const std::string& tag, std::uint32_t id);
  /// False if there was no such notice.
  bool remove(const std::string& tag) { return shown_.erase(tag) > 0; }
  void clear() { shown_.clear(); }

 private:
  std::vector<Change> leave(std::span<const std::string> lines, std::span<const std::string> replaced);

  std::map<std::string, ShownNotice> shown_;
};

}  // namespace linewatch::notices
