#pragma once

#include <QPointer>
#include <QUrl>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "companion/handed_over.h"
#include "desktop/window/companion_window.h"
#include "feeds/transit_feeds.h"

class QBoxLayout;
class QScrollArea;

namespace linewatch::desktop {

/// What the details need of the program around them.
struct DetailsServices {
  using LinesFound = std::function<void(const TransitFeeds::LinesOfIncidents&)>;

  /// Finds the lines that have the incidents, by `muid`, and calls once, then or later, on the main thread.
  std::function<void(std::vector<std::uint64_t> muids, LinesFound found)> findLines;
  std::function<void(const QUrl&)> openLink;
};

/// Shows what a row has handed over: the line with its incidents, or incidents, each with its dates, its full
/// text, the lines that it affects and where to read on.
class DetailsWindow final : public CompanionWindow {
 public:
  DetailsWindow(SharedWindowTexts texts, DetailsServices services);

  /// Shows this in place of what was shown before.
  void present(const HandedOver& what);

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
  /// What is being shown; another with each `present`.
  QPointer<QWidget> content_;
  QBoxLayout* column_ = nullptr;
  /// Where the lines of each shown incident go, by the incident's `muid`.
  std::map<std::uint64_t, QBoxLayout*> placesOfLines_;
  /// The line whose details these are; 0: none.
  std::uint64_t shownLine_ = 0;
  int fittedHeight_ = 0;
};

}  // namespace linewatch::desktop
