#pragma once

#include <QPointer>
#include <QUrl>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "companion/opened_content.h"
#include "desktop/window/companion_window.h"
#include "feeds/transit_feeds.h"

class QBoxLayout;
class QScrollArea;

namespace linewatch::desktop {

/// What the details window needs of the program around it.
struct DetailsServices {
  using LinesFound = std::function<void(const TransitFeeds::LinesOfIncidents&)>;

  /// Finds the lines that have the incidents with these `muid`s, and calls `found` once, at once or later, on
  /// the main thread.
  std::function<void(std::vector<std::uint64_t> muids, LinesFound found)> findLines;
  std::function<void(const QUrl&)> openLink;
};

/// Shows what a row opens: a line with its incidents, or a list of incidents. Each incident has its dates,
/// its full text, the lines that it affects and a link.
class DetailsWindow final : public CompanionWindow {
 public:
  DetailsWindow(SharedWindowTexts texts, DetailsServices services);

  /// Replaces what was shown before.
  void present(const OpenedContent& what);

 private:
  void present(const TransitLineItem& line);
  void present(const StoredIncidents& incidents);
  void presentIncidents(const TransitIncidents& incidents);

  void addLine(const TransitLine& line);
  void addIncident(const SharedIncident& incident);
  void addLink(const OptionalText& address);
  void addAffectedLines(const TransitFeeds::LinesOfIncidents& lines);
  QString periodOf(const TransitIncident& incident) const;

  void startOver();
  void fitHeight();

  DetailsServices services_;
  QScrollArea* scroll_ = nullptr;
  /// The widget with the present content; each `present` makes a new one.
  QPointer<QWidget> content_;
  QBoxLayout* column_ = nullptr;
  /// The layout for the affected lines of each shown incident, by the incident's `muid`.
  std::map<std::uint64_t, QBoxLayout*> placesOfLines_;
  /// The `muid` of the line that is shown; 0: none.
  std::uint64_t shownLine_ = 0;
  int fittedHeight_ = 0;
};

}  // namespace linewatch::desktop
