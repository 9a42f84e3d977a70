#pragma once

#include <QFontMetrics>
#include <QTimer>
#include <QUrl>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "companion/opened_content.h"
#include "desktop/window/companion_window.h"
#include "desktop/window/details_column.h"
#include "desktop/window/found_incidents.h"
#include "feeds/alerts/feed_texts.h"

namespace linewatch::desktop {

/// Functions of the program that the details window calls.
struct DetailsServices {
  using IncidentsFound = std::function<void(const FoundIncidents&)>;

  /// Looks up the incidents with these `muid`s in the feeds. Calls `found` once, at once or later, on the
  /// main thread.
  std::function<void(std::vector<std::uint64_t> muids, IncidentsFound found)> findIncidents;
  /// Opens a page in the browser; false on failure.
  std::function<bool(const QUrl&)> openLink;
};

/// Shows the content of a row: a line with its incidents, or a list of incidents. Each incident has the lines
/// that it affects, its title, severity, effect, cause, dates, stops, full text and link. A turn of the event
/// loop adds a few incidents only, and only those near the visible range have widgets, so that thousands of
/// incidents do not block the main thread.
class DetailsWindow final : public CompanionWindow {
 public:
  DetailsWindow(SharedWindowTexts texts, DetailsServices services);
  ~DetailsWindow() override;

  /// Replaces the former content.
  void present(const OpenedContent& content);
  /// What the window shows and where, for a window in another language.
  struct State {
    WindowPlace place;
    OpenedContent content;
  };
  /// Only after `present`.
  State state() const { return {place(), *content_}; }
  void restore(const State& state);
  /// Whether every incident has been added and everything near the visible range has been drawn.
  bool isComplete() const;

 private:
  struct TextStyle {
    QFont font;
    QFontMetrics metrics;
    Tone tone = Tone::plain;
    bool isHeading = false;
  };
  struct TextStyles;
  /// An incident, or the heading of a group of incidents.
  struct Entry {
    QString heading;
    SharedIncident incident;
  };

  void present(const TransitLineItem& line);
  void present(const StoredIncidents& incidents);
  void lookUp();
  void addGroups(const TransitIncidents& incidents);
  bool hasMoreToAdd() const { return !steps_.empty() || nextEntry_ < entries_.size(); }
  void addSomeEntries();

  QWidget* makeLineHeader(const std::string& name, const std::shared_ptr<const TransitSystem>& system,
                          const SharedArtwork& artwork) const;
  void addHeading(const QString& heading);
  void addIncident(const SharedIncident& incident);
  void addHead(const SharedIncident& incident);
  void addFacts(const SharedIncident& incident);
  void addShortText(const QString& text, const TextStyle& style, int gap);
  /// Adds a step that adds the text block by block. `owner` keeps the text alive.
  void addLongText(const std::shared_ptr<const void>& owner, std::string_view text, const TextStyle& style,
                   int gap);
  void addBlock(const std::shared_ptr<const void>& owner, std::string_view block, const TextStyle& style,
                int gap);
  void addLink(const SharedIncident& incident);
  void addUpdated(const TransitIncident& incident);
  /// Adds a part that is made of the facts from the feeds. It is made again when they are found.
  void addLookedUp(const SharedIncident& incident, std::function<QWidget*(const FoundIncident&)> make,
                   int gap);

  QWidget* makeLines(const FoundIncident& found) const;
  QWidget* makeMoreLines(const FoundIncident& found) const;
  QWidget* makeFacts(const TransitIncident& incident, const FoundIncident& found) const;
  QWidget* makeStops(const TransitIncident& incident, const FoundIncident& found) const;
  QWidget* makeLink(const QUrl& url, std::size_t failurePart);
  QLabel* makeText(std::string_view text, const TextStyle& style) const;

  bool namesOtherLines(const FoundIncident& found) const;
  std::string listOfNames(const std::vector<std::string_view>& names, std::size_t most) const;
  const FoundIncident& foundOf(std::uint64_t muid) const;
  void showFound(FoundIncidents found);
  void startOver();
  void setTitle(const std::string& title);
  void fitHeight();
  int usualWidth() const;
  int textWidth() const;

  DetailsServices services_;
  /// Absent before `present`.
  std::optional<OpenedContent> content_;
  DetailsColumn* column_ = nullptr;
  FeedTexts words_;
  std::unique_ptr<const TextStyles> styles_;
  std::vector<Entry> entries_;
  std::size_t nextEntry_ = 0;
  /// The remaining steps of the present incident. A step adds some parts, and returns true when it has added
  /// all of its parts.
  std::deque<std::function<bool()>> steps_;
  QTimer addingMore_;
  FoundIncidents found_;
  /// The parts that are made again when facts are found, by the incident's `muid`.
  std::multimap<std::uint64_t, std::size_t> lookedUpParts_;
  std::set<std::size_t> failedLinks_;
  /// The number of `present` calls. An answer for an earlier one is ignored.
  int presentation_ = 0;
  /// The `muid` of the line in the window; 0 for a list of incidents.
  std::uint64_t shownLine_ = 0;
  int fittedHeight_ = 0;
};

}  // namespace linewatch::desktop
