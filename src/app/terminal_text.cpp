#include "app/terminal_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <span>
#include <system_error>
#include <variant>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

#include "app/terminal_width.h"
#include "machine/terminal_line.h"
#include "shared/environment.h"

namespace linewatch::app {

namespace {

constexpr std::string_view kReset = "\x1b[0m";
constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kFaint = "\x1b[2m";
constexpr std::size_t kNarrowestText = 16;
constexpr std::size_t kIndentBelowMark = 2;

struct RGB {
  unsigned red, green, blue;
};

std::optional<RGB> parsedColor(const std::optional<std::string>& digits) {
  unsigned value = 0;
  if (!digits || digits->size() != 6) return std::nullopt;
  const auto [end, error] = std::from_chars(digits->data(), digits->data() + 6, value, 16);
  if (error != std::errc() || end != digits->data() + 6) return std::nullopt;
  return RGB{value >> 16U, (value >> 8U) & 0xFFU, value & 0xFFU};
}

// The nearest colour in the 6 × 6 × 6 cube of 256-colour terminals, which begins at entry 16.
unsigned paletteEntry(RGB color) {
  const auto step = [](unsigned channel) { return (channel * 5 + 127) / 255; };
  return 16 + 36 * step(color.red) + 6 * step(color.green) + step(color.blue);
}

std::string colorCode(int ground, RGB color, TerminalStyle::Colors colors) {
  const std::string start = "\x1b[" + std::to_string(ground);
  if (colors == TerminalStyle::Colors::palette)
    return start + ";5;" + std::to_string(paletteEntry(color)) + "m";
  return start + ";2;" + std::to_string(color.red) + ";" + std::to_string(color.green) + ";" +
         std::to_string(color.blue) + "m";
}

std::string painted(std::string_view code, std::string_view text, const TerminalStyle& style) {
  if (style.colors == TerminalStyle::Colors::none) return std::string(text);
  return std::string(code).append(text).append(kReset);
}

/// A shield or sign before a row.
struct Mark {
  std::string text;
  std::size_t width = 0;
};

Mark markOfImage(const std::string& name, const TerminalStyle& style) {
  struct NamedMark {
    std::string_view name, text, code;
  };
  static constexpr NamedMark kMarks[] = {{"good-v2", "✓", "\x1b[32m"},
                                         {"good-alt-v2", "✓", "\x1b[32m"},
                                         {"advisories-v2", "!", "\x1b[33m"},
                                         {"WidgetGenericTransit", "•", "\x1b[33m"}};
  for (const NamedMark& mark : kMarks) {
    if (mark.name == name) return {painted(mark.code, mark.text, style), 1};
  }
  return {};
}

std::string labelOf(const TransitArtworkDataSource& artwork) {
  const auto& shield =
      artwork.shieldDataSource ? artwork.shieldDataSource : artwork.iconFallbackShieldDataSource;
  std::string label = terminalLine(shield && shield->shieldText ? *shield->shieldText
                                                                : artwork.accessibilityText.value_or(""));
  // The sign for a line without service.
  if (artwork.hasRoutingIncidentBadge) label += label.empty() ? "✕" : " ✕";
  return label;
}

Mark markOfItem(const RVTransitItem& item, const TerminalStyle& style) {
  if (!item.displayArtwork() || !item.artwork() || !item.artwork()->artworkSource()) return {};
  const ArtworkImageSource* const source = item.artwork()->artworkSource().get();
  if (const auto* image = dynamic_cast<const NamedImage*>(source)) return markOfImage(image->name(), style);
  const auto* artwork = dynamic_cast<const SizedTransitArtwork*>(source);
  if (!artwork || !artwork->artworkDataSource()) return {};
  return {terminalShield(*artwork->artworkDataSource(), style),
          terminalShieldWidth(*artwork->artworkDataSource())};
}

/// Writes rows of a mark and texts. The texts of all rows begin at the same column.
class RowWriter {
 public:
  RowWriter(const TerminalStyle& style, std::size_t markWidth)
      : style_(style), indent_(markWidth == 0 ? 0 : markWidth + 2) {
    // Beside a wide mark the texts would be too narrow, so they begin under it.
    hasMarksAbove_ = style.columns > 0 && indent_ > 0 && style.columns < indent_ + kNarrowestText;
    if (hasMarksAbove_) indent_ = kIndentBelowMark;
  }

  /// The first text is printed in bold. Empty texts are left out.
  void write(const Mark& mark, std::span<const OptionalText> texts) {
    pending_ = mark;
    if (hasMarksAbove_ && mark.width > 0) {
      text_ += mark.text + "\n";
      pending_ = {};
    }
    for (const OptionalText& text : texts) writeLines(text, &text == &texts.front() ? kBold : "");
  }
  std::string take() { return std::move(text_); }

 private:
  void writeLines(const OptionalText& text, std::string_view code) {
    if (!text || text->empty()) return;
    for (const std::string& line : wrapped(terminalLine(*text), textColumns())) {
      text_ += pending_.text;
      text_.append(indent_ - std::min(indent_, pending_.width), ' ');
      text_ += code.empty() ? line : painted(code, line, style_);
      text_ += '\n';
      pending_ = {};
    }
  }
  std::size_t textColumns() const {
    return style_.columns == 0 ? 0
                               : std::max<std::size_t>(1, style_.columns - std::min(style_.columns, indent_));
  }

  const TerminalStyle& style_;
  std::size_t indent_;
  bool hasMarksAbove_ = false;
  Mark pending_;
  std::string text_;
};

struct MarkedRow {
  Mark mark;
  std::vector<OptionalText> texts;
};

std::string rowsText(const std::vector<MarkedRow>& rows, const TerminalStyle& style) {
  std::size_t markWidth = 0;
  for (const MarkedRow& row : rows) markWidth = std::max(markWidth, row.mark.width);
  RowWriter writer(style, markWidth);
  for (const MarkedRow& row : rows) writer.write(row.mark, row.texts);
  return writer.take();
}

std::string rowsText(const TransitItems& items, const TerminalStyle& style) {
  std::vector<MarkedRow> rows;
  rows.reserve(items.size());
  for (const SharedTransitItem& item : items)
    rows.push_back({markOfItem(*item, style), {item->primaryText(), item->secondaryText()}});
  return rowsText(rows, style);
}

/// The first shields side by side, then the number of the others.
Mark markOfShields(const TransitArtworks& shields, const TerminalStyle& style) {
  constexpr std::size_t kMostShields = 3;
  Mark mark;
  const auto add = [&](const std::string& text, std::size_t width) {
    if (width == 0) return;
    if (mark.width > 0) mark.text += ' ';
    mark.width += width + (mark.width > 0 ? 1 : 0);
    mark.text += text;
  };
  const std::size_t shown = std::min(shields.size(), kMostShields);
  for (std::size_t shield = 0; shield < shown; ++shield)
    add(terminalShield(*shields[shield], style), terminalShieldWidth(*shields[shield]));
  const std::string others = "+" + std::to_string(shields.size() - shown);
  if (shields.size() > shown) add(others, others.size());
  return mark;
}

std::string shieldRow(const TransitArtworks& artworks, const TerminalStyle& style) {
  std::string row;
  std::size_t width = 0;
  for (const SharedArtwork& artwork : artworks) {
    const std::size_t shieldWidth = terminalShieldWidth(*artwork);
    if (shieldWidth == 0) continue;
    if (width > 0) row += style.columns > 0 && width + 1 + shieldWidth > style.columns ? '\n' : ' ';
    width = row.ends_with('\n') ? shieldWidth : width + 1 + shieldWidth;
    row += terminalShield(*artwork, style);
  }
  return row.empty() ? row : row + '\n';
}

struct SummaryText {
  const TerminalStyle& style;

  std::string operator()(std::monostate) const { return {}; }
  std::string operator()(const SharedTransitItem& item) const { return rowsText({item}, style); }
  std::string operator()(const std::shared_ptr<const RVTransitSummaryItem>& item) const {
    RowWriter writer(style, 0);
    writer.write({}, std::vector<OptionalText>{item->primaryText()});
    return writer.take() + (item->artworks() ? shieldRow(*item->artworks(), style) : "");
  }
};

/// The value of COLUMNS; absent unless it is a number of columns.
std::optional<std::size_t> columnsOf(const std::string& text) {
  constexpr std::size_t kMostColumns = 10'000;
  std::size_t columns = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  return isNumber && columns > 0 && columns <= kMostColumns ? std::optional(columns) : std::nullopt;
}

/// COLUMNS, or else the width of the terminal; 0 if there is neither.
std::size_t columnsOfStream(int stream) {
  if (const auto columns = columnsOf(valueOf(processEnvironment, "COLUMNS"))) return *columns;
  winsize size{};
  return isatty(stream) == 1 && ioctl(stream, TIOCGWINSZ, &size) == 0 ? size.ws_col : std::size_t{0};
}

TerminalStyle::Colors colorsOfTerminal() {
  const auto value = [](const char* name) { return valueOf(processEnvironment, name); };
  if (!value("NO_COLOR").empty()) return TerminalStyle::Colors::none;
  const std::string terminal = value("TERM");
  if (terminal.empty() || terminal == "dumb") return TerminalStyle::Colors::none;
  const std::string depth = value("COLORTERM");
  return depth == "truecolor" || depth == "24bit" ? TerminalStyle::Colors::full
                                                  : TerminalStyle::Colors::palette;
}

}  // namespace

TerminalStyle TerminalStyle::ofStandardOutput() {
  return {.colors = isatty(STDOUT_FILENO) == 0 ? Colors::none : colorsOfTerminal(),
          .columns = columnsOfStream(STDOUT_FILENO)};
}

TerminalStyle TerminalStyle::ofStandardError() { return {.columns = columnsOfStream(STDERR_FILENO)}; }

std::string terminalText(const RVTransitListItem& list, bool expanded, const TerminalStyle& style) {
  // A list without expanded items has the same row in both modes.
  if (expanded && list.hasExpandedItems()) return rowsText(*list.expandedItems(), style);
  return std::visit(SummaryText{style}, list.summaryItem());
}

std::string terminalRows(std::span<const TerminalRow> rows, const TerminalStyle& style) {
  std::vector<MarkedRow> marked;
  marked.reserve(rows.size());
  for (const TerminalRow& row : rows) marked.push_back({markOfShields(row.shields, style), row.texts});
  return rowsText(marked, style);
}

std::string terminalShield(const TransitArtworkDataSource& artwork, const TerminalStyle& style) {
  const std::string label = labelOf(artwork);
  if (label.empty()) return {};
  const auto fill =
      artwork.shieldDataSource ? parsedColor(artwork.shieldDataSource->shieldColorString) : std::nullopt;
  if (style.colors == TerminalStyle::Colors::none || !fill) return "[" + label + "]";
  const bool light = fill->red * 299 + fill->green * 587 + fill->blue * 114 > 128000;
  const RGB readable = light ? RGB{0, 0, 0} : RGB{255, 255, 255};
  const RGB ink = parsedColor(artwork.shieldDataSource->textColorString).value_or(readable);
  return painted(colorCode(48, *fill, style.colors) + colorCode(38, ink, style.colors), " " + label + " ",
                 style);
}

std::size_t terminalShieldWidth(const TransitArtworkDataSource& artwork) {
  const std::string label = labelOf(artwork);
  return label.empty() ? 0 : terminalWidth(label) + 2;
}

std::string terminalFaint(const std::string& text, const TerminalStyle& style) {
  return painted(kFaint, text, style);
}

}  // namespace linewatch::app
