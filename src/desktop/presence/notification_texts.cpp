#include "desktop/presence/notification_texts.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "list/localized_text.h"

namespace linewatch::desktop {

namespace {

using notices::Notice;
using Entry = Notice::Entry;

/// More lines of text would be cut off by most servers.
constexpr std::size_t kMostLines = 6;

/// "U4: Fire", "U4 and U6: Fire" or "U4, U5, and U6: Fire".
std::string withLineNames(const std::vector<Entry>& entries, const std::string& text,
                          const WindowTexts& texts) {
  const std::string& last = entries.back().name;
  if (entries.size() == 1) return widgetText("LineWatch_Single_Line_Prepended_Incident_Text", {last, text});
  std::vector<std::string_view> others;
  for (const Entry& entry : entries) others.push_back(entry.name);
  others.pop_back();
  return widgetText(entries.size() == 2 ? "LineWatch_2_Lines_Prepended_Incident_Text"
                                        : "LineWatch_N_Lines_Prepended_Incident_Text",
                    {texts.joined(others), last, text});
}

std::string firstText(const Entry& entry, const WindowTexts& texts) {
  if (entry.incidents.empty()) return kestrowText("LineWatch_GoodService_Title");
  return entry.isOver ? texts("NoticeEased").toStdString() : entry.incidents.front().title;
}

void addLine(const std::string& line, std::size_t& count, std::string& body) {
  if (line.empty() || count++ >= kMostLines) return;
  body += (body.empty() ? "" : "\n") + line;
}

std::string andMore(std::size_t count, const WindowTexts& texts) {
  return count <= kMostLines ? std::string()
                             : "\n" + texts("MoreNames", {std::uint64_t{count - kMostLines}}).toStdString();
}

/// The summary of the first incident, which is in the title, and the titles of the others. The titles of all
/// if it is over.
std::string bodyOfIncidents(const Entry& entry, const WindowTexts& texts) {
  std::string body;
  std::size_t count = 0;
  if (!entry.incidents.empty() && !entry.isOver) addLine(entry.incidents.front().summary, count, body);
  for (std::size_t i = entry.isOver ? 0 : 1; i < entry.incidents.size(); ++i)
    addLine(entry.incidents[i].title, count, body);
  return body + andMore(count, texts);
}

std::string bodyOfSummary(const Notice& notice, const WindowTexts& texts) {
  std::string body;
  std::size_t count = 0;
  for (const Entry& entry : notice.entries)
    addLine(withLineNames({entry}, firstText(entry, texts), texts), count, body);
  return body + andMore(count, texts);
}

Notification::Urgency urgencyOf(const Notice& notice) {
  switch (severityOf(notice)) {
    case notices::Severity::severe:
      return Notification::Urgency::critical;
    case notices::Severity::info:
      return Notification::Urgency::low;
    default:
      return Notification::Urgency::normal;
  }
}

}  // namespace

Notification notificationOf(const Notice& notice, const WindowTexts& texts) {
  const bool isSummary = notice.kind == Notice::Kind::summary;
  const Entry& first = notice.entries.front();
  Notification notification{.tag = notice.tag, .urgency = urgencyOf(notice)};
  notification.title = isSummary ? texts("NoticesAfterQuietHours").toStdString()
                                 : withLineNames(notice.entries, firstText(first, texts), texts);
  notification.body = isSummary ? bodyOfSummary(notice, texts) : bodyOfIncidents(first, texts);
  notification.details = texts("NoticeDetails").toStdString();
  if (notice.kind != Notice::Kind::over) notification.mute = texts("NoticeMute").toStdString();
  return notification;
}

}  // namespace linewatch::desktop
