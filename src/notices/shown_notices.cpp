#include "notices/shown_notices.h"

#include <algorithm>
#include <utility>

namespace linewatch::notices {

namespace {

bool isAmong(std::span<const std::string> tags, const std::string& tag) {
  return std::ranges::find(tags, tag) != tags.end();
}

}  // namespace

const ShownNotice* ShownNotices::find(const std::string& tag) const {
  const auto found = shown_.find(tag);
  return found == shown_.end() ? nullptr : &found->second;
}

std::vector<ShownNotice> ShownNotices::withIds() const {
  std::vector<ShownNotice> all;
  for (const auto& [tag, shown] : shown_) {
    if (shown.id) all.push_back(shown);
  }
  return all;
}

std::vector<ShownNotices::Change> ShownNotices::take(const NoticeUpdate& update) {
  std::vector<std::string> lines = update.withdrawn;
  std::vector<std::string> replaced;
  for (const Notice& notice : update.notices) {
    replaced.push_back(notice.tag);
    for (const Notice::Entry& entry : notice.entries) lines.push_back(tagOf(entry.line));
  }
  std::vector<Change> changes = leave(lines, replaced);
  for (const Notice& notice : update.notices) shown_[notice.tag].notice = notice;
  return changes;
}

/// Takes the lines with these tags out of the notices. Notices with the tags `replaced` stay as they are.
std::vector<ShownNotices::Change> ShownNotices::leave(std::span<const std::string> lines,
                                                      std::span<const std::string> replaced) {
  std::vector<Change> changes;
  std::map<std::string, ShownNotice> kept;
  for (auto& [tag, shown] : shown_) {
    Notice& notice = shown.notice;
    const std::size_t before = notice.entries.size();
    std::erase_if(notice.entries,
                  [&](const Notice::Entry& entry) { return isAmong(lines, tagOf(entry.line)); });
    if (!notice.entries.empty() && notice.kind != Notice::Kind::summary)
      notice.tag = tagOf(notice.entries.front().line);
    const bool isReplaced = isAmong(replaced, notice.tag);
    if (notice.entries.empty() || isReplaced) {
      if (isReplaced)
        kept.emplace(tag, std::move(shown));
      else
        changes.push_back({tag, std::nullopt});
      continue;
    }
    if (notice.entries.size() != before) changes.push_back({tag, notice});
    std::string now = notice.tag;
    kept.emplace(std::move(now), std::move(shown));
  }
  shown_ = std::move(kept);
  return changes;
}

bool ShownNotices::adopt(ShownNotice shown) {
  const auto isNewer = [&shown](const auto& other) {
    return std::ranges::any_of(shown.notice.entries, [&other](const Notice::Entry& entry) {
      return std::ranges::find(other.second.notice.entries, entry.line, &Notice::Entry::line) !=
             other.second.notice.entries.end();
    });
  };
  if (std::ranges::any_of(shown_, isNewer)) return false;
  std::string tag = shown.notice.tag;
  return shown_.emplace(std::move(tag), std::move(shown)).second;
}

bool ShownNotices::setId(const std::string& tag, std::uint32_t id) {
  const auto found = shown_.find(tag);
  if (found == shown_.end()) return false;
  found->second.id = id;
  return true;
}

}  // namespace linewatch::notices
