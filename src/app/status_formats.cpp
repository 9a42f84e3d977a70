#include "app/status_formats.h"

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

#include "app/terminal_width.h"
#include "machine/terminal_line.h"
#include "shared/value.h"
#include "status/status_document.h"
#include "status/status_texts.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

/// In columns. A bar shares its width with other blocks, and not every bar shortens long texts.
constexpr std::size_t kLongestHeadline = 60;

/// The status and its texts. No text has a line end or another control character.
struct StatusWords {
  const TransitStatus& status;
  std::string summary;
  /// The summary; if all lines are known and one of them has incidents, the first of its incidents.
  std::string headline;
  /// Empty if neither the format nor the headline needs them.
  std::vector<std::string> details;
  std::string open, update;
};

StatusWords wordsOf(const TransitStatus& status, Date now, IcuLocalization& texts, bool needsDetails) {
  StatusWords words{.status = status,
                    .summary = terminalLine(statusSummary(status, texts)),
                    .headline = {},
                    .details = {},
                    .open = texts.windowString("LineWatch_Window_Open", ""),
                    .update = texts.windowString("LineWatch_Window_Update", "")};
  const bool isOneLine = status.affectedCount() == 1 && status.unknownCount == 0;
  if (isOneLine || needsDetails) {
    for (const std::string& detail : statusDetails(status, now, texts))
      words.details.push_back(terminalLine(detail));
  }
  words.headline =
      isOneLine ? terminalLine(markedIfSample(status, words.details.front(), texts)) : words.summary;
  return words;
}

std::string shortened(const std::string& text) {
  if (terminalWidth(text) <= kLongestHeadline) return text;
  return wrapped(text, kLongestHeadline - 1).front() + "…";
}

/// The colour of the headline; empty for the bar's own colour.
std::string_view colorOf(const TransitStatus& status) {
  switch (status.state) {
    case TransitStatus::State::incidents:
      return status.worstSeverity() == StatusSeverity::severe ? "#ff6b60" : "#f5c211";
    case TransitStatus::State::unknown:
      return "#9a9996";
    case TransitStatus::State::allClear:
    case TransitStatus::State::noFavorites:
      break;
  }
  return {};
}

using Replacement = std::pair<std::string_view, std::string_view>;

std::string replaced(std::string_view text, std::initializer_list<Replacement> replacements) {
  std::string result;
  while (!text.empty()) {
    const Replacement* found = nullptr;
    for (const Replacement& replacement : replacements) {
      if (text.starts_with(replacement.first)) found = &replacement;
    }
    result += found ? found->second : text.substr(0, 1);
    text.remove_prefix(found ? found->first.size() : 1);
  }
  return result;
}

/// For Pango's markup.
std::string pangoEscaped(std::string_view text) {
  return replaced(text, {{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&#39;"}});
}

/// The summary and the details, as lines.
std::string tooltipOf(const StatusWords& words, std::string_view lineEnd) {
  std::string tooltip = words.summary;
  for (const std::string& detail : words.details) tooltip.append(lineEnd).append(detail);
  return tooltip;
}

std::string plainText(const StatusWords& words) { return words.headline + "\n"; }

std::string jsonDocument(const StatusWords& words) {
  return jsonText(statusForm(words.status, words.summary)) + "\n";
}

std::string waybarText(const StatusWords& words) {
  const TransitStatus& status = words.status;
  Array classes{nameOf(status.state)};
  if (!status.incidents.empty() && status.worstSeverity() != StatusSeverity::unknown)
    classes.emplace_back(nameOf(status.worstSeverity()));
  return jsonText(Dictionary{{"text", pangoEscaped(shortened(words.headline))},
                             {"alt", nameOf(status.state)},
                             {"tooltip", pangoEscaped(tooltipOf(words, "\n"))},
                             {"class", std::move(classes)}}) +
         "\n";
}

/// i3blocks reads strings only, also for a boolean, and takes no escape in them.
std::string i3blocksText(const StatusWords& words) {
  const auto unescaped = [](std::string_view text) { return replaced(text, {{"\"", "”"}, {"\\", "∖"}}); };
  const bool isUrgent = words.status.worstSeverity() == StatusSeverity::severe;
  Dictionary block{{"full_text", unescaped(shortened(words.headline))},
                   {"short_text", unescaped(words.summary)},
                   {"markup", "none"},
                   {"urgent", isUrgent ? "true" : "false"}};
  const std::string_view color = colorOf(words.status);
  if (!color.empty()) block.emplace("color", color);
  return jsonText(block) + "\n";
}

std::string polybarText(const StatusWords& words) {
  // Polybar has no escape for the beginning of a tag.
  const std::string text = replaced(shortened(words.headline), {{"%{", "% {"}});
  const std::string_view color = colorOf(words.status);
  return color.empty() ? text + "\n" : "%{F" + std::string(color) + "}" + text + " %{F-}\n";
}

std::string genmonText(const StatusWords& words) {
  std::string text = pangoEscaped(shortened(words.headline));
  const std::string_view color = colorOf(words.status);
  if (!color.empty()) text = "<span foreground=\"" + std::string(color) + "\">" + text + "</span>";
  return "<txt>" + text + "</txt><txtclick>linewatch</txtclick><tool>" +
         replaced(pangoEscaped(tooltipOf(words, "\n")), {{"\n", "&#10;"}}) + "</tool>\n";
}

/// A text of a menu. "|" begins its attributes, and "--" a submenu or a separator.
std::string argosLine(std::string_view text, const std::string& attributes = {}) {
  std::string line = replaced(text, {{"|", "¦"}});
  if (line.starts_with('-')) line.replace(0, 1, "‐");
  return line + " | useMarkup=false emojize=false unescape=false ansi=false" + attributes + "\n";
}

std::string argosText(const StatusWords& words) {
  const std::string_view color = colorOf(words.status);
  std::string menu =
      argosLine(shortened(words.headline), color.empty() ? "" : " color=" + std::string(color));
  menu += "---\n" + argosLine(words.summary);
  for (const std::string& detail : words.details) menu += argosLine(detail);
  return menu + "---\n" + argosLine(words.open, " bash=linewatch terminal=false") +
         argosLine(words.update, " refresh=true");
}

struct FormatRow {
  std::string (*text)(const StatusWords&);
  bool needsDetails = false;
  bool isStream = true;
  bool alwaysSucceeds = true;
};

/// In the order of the enumeration.
constexpr std::array<FormatRow, kStatusFormatNames.size()> kFormats{
    {{.text = plainText, .alwaysSucceeds = false},
     {.text = jsonDocument, .alwaysSucceeds = false},
     {.text = waybarText, .needsDetails = true},
     {.text = i3blocksText},
     {.text = polybarText},
     {.text = genmonText, .needsDetails = true, .isStream = false},
     {.text = argosText, .needsDetails = true, .isStream = false}}};

const FormatRow& formatRow(StatusFormat format) { return kFormats.at(static_cast<std::size_t>(format)); }

}  // namespace

bool isStream(StatusFormat format) { return formatRow(format).isStream; }

bool alwaysSucceeds(StatusFormat format) { return formatRow(format).alwaysSucceeds; }

std::string statusText(StatusFormat format, const TransitStatus& status, Date now, IcuLocalization& texts) {
  const FormatRow& row = formatRow(format);
  return row.text(wordsOf(status, now, texts, row.needsDetails));
}

}  // namespace linewatch::app
