#include "status/status_texts.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/localization.h"

namespace linewatch {

namespace {

/// Younger alerts are as fresh as the refresh interval allows, and their age is not worth a word.
constexpr Seconds kShownAge{5.0 * 60};

using FormatArguments = std::vector<FormatArgument>;

std::string kestrowText(const char* key, IcuLocalization& texts) {
  return texts.localizedString(key, kLocalizedStringNotFound, StringTable::kestrow);
}

std::string widgetText(const char* key, const FormatArguments& arguments, IcuLocalization& texts) {
  return texts.format(texts.localizedString(key, kLocalizedStringNotFound, StringTable::widget), arguments);
}

std::string windowText(const char* key, const FormatArguments& arguments, IcuLocalization& texts) {
  return texts.format(texts.windowString(key, kLocalizedStringNotFound), arguments);
}

std::string counted(const char* key, std::size_t count, IcuLocalization& texts) {
  return texts.format(texts.statusString(key, kLocalizedStringNotFound),
                      FormatArguments{std::uint64_t{count}});
}

std::string summaryOfUnknown(const TransitStatus& status, IcuLocalization& texts) {
  return status.error.empty() ? counted("LineWatch_Status_NoNews", status.unknownCount, texts)
                              : kestrowText("LineWatchLoadingError_Title", texts);
}

std::string summaryOfIncidents(const TransitStatus& status, IcuLocalization& texts) {
  std::string lines = counted("LineWatch_Status_LinesWithIncidents", status.affectedCount(), texts);
  if (status.unknownCount == 0) return lines;
  return texts.format(
      texts.feedString("LineWatch_Feed_EffectAndCause", kLocalizedStringNotFound),
      FormatArguments{std::move(lines), counted("LineWatch_Status_NoNews", status.unknownCount, texts)});
}

/// Without the mark of the made-up city.
std::string summaryOf(const TransitStatus& status, IcuLocalization& texts) {
  switch (status.state) {
    case TransitStatus::State::allClear:
      return kestrowText("LineWatch_GoodService_Title", texts);
    case TransitStatus::State::incidents:
      return summaryOfIncidents(status, texts);
    case TransitStatus::State::unknown:
      return summaryOfUnknown(status, texts);
    case TransitStatus::State::noFavorites:
      break;
  }
  return kestrowText("LineWatch_NoFavorite_Title", texts);
}

/// "U6: Delays +2", where two more incidents have no room.
std::string lineDetail(const StatusLine& line, const TransitStatus& status, IcuLocalization& texts) {
  const StatusIncident& first = status.incidents.at(line.incidents.front());
  const std::string& text = first.title.empty() ? first.summary : first.title;
  std::string detail =
      widgetText("LineWatch_Single_Line_Prepended_Incident_Text", FormatArguments{line.name, text}, texts);
  const std::size_t more = line.incidents.size() - 1;
  if (more == 0) return detail;
  return detail + " " +
         widgetText("Transit_Incident_Not_Displayed_Incidents", FormatArguments{std::uint64_t{more}}, texts);
}

void addAffectedLines(const TransitStatus& status, std::size_t limit, IcuLocalization& texts,
                      std::vector<std::string>& details) {
  std::size_t left = status.affectedCount();
  for (const StatusLine& line : status.lines) {
    if (line.incidents.empty()) continue;
    if (details.size() == limit) {
      details.push_back(
          windowText("LineWatch_Window_MoreNames", FormatArguments{std::uint64_t{left}}, texts));
      return;
    }
    details.push_back(lineDetail(line, status, texts));
    --left;
  }
}

void addUnknownLines(const TransitStatus& status, std::size_t limit, IcuLocalization& texts,
                     std::vector<std::string>& details) {
  if (status.unknownLines.empty()) return;
  const auto listed = static_cast<std::ptrdiff_t>(std::min(limit, status.unknownLines.size()));
  std::vector<std::string_view> names(status.unknownLines.begin(), status.unknownLines.begin() + listed);
  const std::string more =
      windowText("LineWatch_Window_MoreNames",
                 FormatArguments{std::uint64_t{status.unknownLines.size() - names.size()}}, texts);
  if (names.size() < status.unknownLines.size()) names.emplace_back(more);
  details.push_back(windowText(
      "LineWatch_Window_NoNewsOfLines",
      FormatArguments{std::uint64_t{status.unknownLines.size()}, texts.joinCommaDelimited(names)}, texts));
}

}  // namespace

std::string statusSummary(const TransitStatus& status, IcuLocalization& texts) {
  return markedIfSample(status, summaryOf(status, texts), texts);
}

std::string markedIfSample(const TransitStatus& status, std::string text, IcuLocalization& texts) {
  if (!status.isSampleCity) return text;
  return widgetText("LineWatch_Single_Line_Prepended_Incident_Text",
                    FormatArguments{windowText("LineWatch_Window_SampleCity", {}, texts), std::move(text)},
                    texts);
}

std::vector<std::string> statusDetails(const TransitStatus& status, Date now, IcuLocalization& texts,
                                       std::size_t limit) {
  std::vector<std::string> details;
  addAffectedLines(status, limit, texts, details);
  addUnknownLines(status, limit, texts, details);
  if (!status.error.empty()) details.push_back(status.error);
  const auto age = status.ageAt(now);
  if (age && *age >= kShownAge) {
    details.push_back(
        windowText("LineWatch_Window_ListUpdated", FormatArguments{timeAgo(*age, texts)}, texts));
  }
  return details;
}

std::string timeAgo(Seconds age, IcuLocalization& texts) {
  using Unit = std::pair<double, const char*>;
  for (const auto& [seconds, key] :
       {Unit{86400, "DaysAgo"}, Unit{3600, "HoursAgo"}, Unit{60, "MinutesAgo"}}) {
    const auto count = static_cast<std::uint64_t>(std::max(0.0, age.count()) / seconds);
    if (count > 0)
      return windowText(("LineWatch_Window_" + std::string(key)).c_str(), FormatArguments{count}, texts);
  }
  return windowText("LineWatch_Window_JustNow", {}, texts);
}

}  // namespace linewatch
