#include "desktop/window/row_words.h"

#include <string>
#include <string_view>
#include <vector>

#include "list/localized_text.h"
#include "platform/platform.h"

namespace linewatch::desktop {

namespace {

// Listening to a longer list takes too long; the details name all lines.
constexpr std::size_t kMostShieldsSaid = 12;

QString joinedWords(const std::vector<std::string>& words) {
  const std::vector<std::string_view> texts(words.begin(), words.end());
  return QString::fromStdString(platform().localization().joinCommaDelimited(texts));
}

void addIfAny(const std::optional<std::string>& text, std::vector<std::string>& words) {
  if (text && !text->empty()) words.push_back(*text);
}

std::optional<std::string> spokenShield(const TransitArtworkDataSource& artwork) {
  if (artwork.accessibilityText) return artwork.accessibilityText;
  return artwork.shieldDataSource ? artwork.shieldDataSource->shieldText : std::nullopt;
}

/// Absent if the image is not a line's shield.
std::optional<std::string> spokenArtwork(const RVTransitItem& item) {
  if (!item.displayArtwork() || !item.artwork()) return std::nullopt;
  const auto* const sized = dynamic_cast<const SizedTransitArtwork*>(item.artwork()->artworkSource().get());
  return sized && sized->artworkDataSource() ? spokenShield(*sized->artworkDataSource()) : std::nullopt;
}

QString spokenShields(const TransitArtworks& artworks) {
  std::vector<std::string> words;
  std::uint64_t leftOut = 0;
  for (const SharedArtwork& artwork : artworks) {
    if (words.size() == kMostShieldsSaid) {
      ++leftOut;
    } else if (artwork) {
      addIfAny(spokenShield(*artwork), words);
    }
  }
  if (leftOut > 0) words.push_back(widgetText("Transit_Incident_Not_Displayed_Incidents", {leftOut}));
  return joinedWords(words);
}

struct WordsOfItem {
  RowWords operator()(std::monostate) const { return {}; }
  RowWords operator()(const SharedTransitItem& item) const {
    std::vector<std::string> name;
    addIfAny(spokenArtwork(*item), name);
    addIfAny(item->primaryText(), name);
    return {joinedWords(name), QString::fromStdString(item->secondaryText().value_or(""))};
  }
  RowWords operator()(const std::shared_ptr<const RVTransitSummaryItem>& item) const {
    return {QString::fromStdString(item->primaryText().value_or("")),
            item->artworks() ? spokenShields(*item->artworks()) : QString()};
  }
};

}  // namespace

RowWords wordsOfItem(const SummaryItem& item) { return std::visit(WordsOfItem{}, item); }

}  // namespace linewatch::desktop
