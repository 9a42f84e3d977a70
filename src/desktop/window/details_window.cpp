#include "desktop/window/details_window.h"

#include <QBoxLayout>
#include <QFrame>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "desktop/window/artwork_strip.h"
#include "desktop/window/link_button.h"
#include "desktop/window/plain_tool_tip.h"
#include "desktop/window/window_colors.h"
#include "platform/incident_string_provider.h"
#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kDetailsWidth = 440;
constexpr int kDetailsMargin = 24;
constexpr int kGapWithinIncident = 8;
constexpr int kGapBetweenIncidents = 20;
constexpr int kLeastDetailsHeight = 200;
constexpr double kLineSize = 20;
constexpr double kHeadingSize = 16;
constexpr double kBodySize = 14;
constexpr double kSmallSize = 12;
// Size steps.
constexpr std::int64_t kLineShieldStep = 7;
constexpr std::int64_t kAffectedShieldStep = 2;
// The part of the screen's height that the window takes by itself.
constexpr double kShareOfScreen = 0.8;

QString textOf(const OptionalText& text) { return QString::fromStdString(text.value_or("")).trimmed(); }

std::string shieldTextOf(const SharedArtwork& artwork) {
  return artwork && artwork->shieldDataSource ? artwork->shieldDataSource->shieldText.value_or("") : "";
}

QString listOfNames(const std::vector<std::shared_ptr<const TransitLineFields>>& lines) {
  std::vector<std::string_view> names;
  names.reserve(lines.size());
  for (const auto& line : lines) names.emplace_back(line->name);
  return QString::fromStdString(platform().localization().joinCommaDelimited(names));
}

QFrame* makeRule() {
  auto* const rule = new QFrame;
  rule->setFrameShape(QFrame::HLine);
  rule->setFrameShadow(QFrame::Plain);
  rule->setForegroundRole(kOutlineRole);
  return rule;
}

}  // namespace

DetailsWindow::DetailsWindow(SharedWindowTexts texts, DetailsServices services)
    : CompanionWindow(std::move(texts)), services_(std::move(services)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  scroll_ = new QScrollArea;
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setWidgetResizable(true);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setFocusPolicy(Qt::StrongFocus);
  layout->addWidget(scroll_);
}

void DetailsWindow::present(const OpenedContent& what) {
  startOver();
  if (const auto* const incidents = std::get_if<StoredIncidents>(&what)) {
    present(*incidents);
  } else if (const auto& line = std::get<std::shared_ptr<const RovaActivity>>(what)->lineItem()) {
    present(*line);
  }
  column_->addStretch();
  scroll_->setAccessibleName(windowTitle());
  fitHeight();
  bringUp();
  scroll_->setFocus(Qt::OtherFocusReason);
}

void DetailsWindow::startOver() {
  placesOfLines_.clear();
  shownLine_ = 0;
  content_ = new QWidget;
  column_ = new QVBoxLayout(content_);
  column_->setContentsMargins(kDetailsMargin, kDetailsMargin, kDetailsMargin, kDetailsMargin);
  column_->setSpacing(kGapWithinIncident);
  scroll_->setWidget(content_);
  setWindowTitle(texts()("Title"));
}

void DetailsWindow::fitHeight() {
  const int room = static_cast<int>(screen()->availableGeometry().height() * kShareOfScreen);
  column_->activate();
  const int needed = column_->totalHeightForWidth(kDetailsWidth);
  fittedHeight_ = std::clamp(needed, kLeastDetailsHeight, std::max(kLeastDetailsHeight, room));
  resize(kDetailsWidth, fittedHeight_);
}

// ---- The content ----

void DetailsWindow::present(const TransitLineItem& line) {
  shownLine_ = line.muid();
  // Qt would take a single "[*]" out of a title.
  setWindowTitle(QString::fromStdString(line.name()).replace(QLatin1String("[*]"), QLatin1String("[*][*]")));
  addLine(line);
  if (line.incidents().empty()) {
    column_->addSpacing(kGapBetweenIncidents - kGapWithinIncident);
    column_->addWidget(makeLabel(texts()("NoIncidents"), font(kBodySize)));
  }
  presentIncidents(line.incidents());
}

void DetailsWindow::present(const StoredIncidents& incidents) {
  setWindowTitle(texts()("Advisories", {std::uint64_t{incidents.size()}}));
  column_->addWidget(makeLabel(windowTitle(), font(kLineSize, QFont::DemiBold)));
  presentIncidents({incidents.begin(), incidents.end()});
}

void DetailsWindow::presentIncidents(const TransitIncidents& incidents) {
  std::vector<std::uint64_t> muids;
  for (const SharedIncident& incident : incidents) {
    addIncident(incident);
    muids.push_back(incident->muid());
  }
  services_.findLines(std::move(muids), [window = QPointer<DetailsWindow>(this),
                                         asked = content_](const TransitFeeds::LinesOfIncidents& lines) {
    if (window && asked && asked == window->content_) window->addAffectedLines(lines);
  });
}

// ---- Parts of the content ----

void DetailsWindow::addLine(const TransitLine& line) {
  auto* const row = new QHBoxLayout;
  row->setSpacing(kGapWithinIncident * 2);
  const SharedArtwork& artwork = line.alternateArtwork() ? line.alternateArtwork() : line.artwork();
  auto* const shield = new ArtworkStrip({artwork}, artworkStep(kLineShieldStep), artworkCache());
  shield->setAccessibleName(QString::fromStdString(line.name()));
  shield->setFixedSize(shield->sizeHint());
  row->addWidget(shield, 0, Qt::AlignTop);
  auto* const names = new QVBoxLayout;
  names->setSpacing(2);
  // The name is left out when the shield already says it.
  if (shield->isEmpty() || shieldTextOf(artwork) != line.name())
    names->addWidget(makeLabel(QString::fromStdString(line.name()), font(kLineSize, QFont::DemiBold)));
  if (line.system())
    names->addWidget(makeLabel(QString::fromStdString(line.system()->name), font(kBodySize), Tone::faint));
  row->addLayout(names, 1);
  row->setAlignment(names, Qt::AlignVCenter);
  column_->addLayout(row);
}

void DetailsWindow::addIncident(const SharedIncident& incident) {
  column_->addSpacing(kGapBetweenIncidents / 2 - kGapWithinIncident / 2);
  column_->addWidget(makeRule());
  column_->addSpacing(kGapBetweenIncidents / 2 - kGapWithinIncident / 2);
  auto* const lines = new QVBoxLayout;
  column_->addLayout(lines);
  placesOfLines_.emplace(incident->muid(), lines);
  const auto title = platform().incidentStringProvider().cellTitleForIncident(incident);
  column_->addWidget(makeLabel(textOf(*title), font(kHeadingSize, QFont::DemiBold)));
  if (incident->isBlockingIncident())
    column_->addWidget(makeLabel(texts()("NoService"), font(kSmallSize, QFont::DemiBold), Tone::alarming));
  column_->addWidget(makeLabel(periodOf(*incident), font(kSmallSize), Tone::faint));
  const OptionalText& full = incident->fullDescription() ? incident->fullDescription() : incident->summary();
  if (const QString text = textOf(full); !text.isEmpty()) {
    QLabel* const body = makeLabel(text, font(kBodySize));
    body->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    column_->addWidget(body);
  }
  addLink(incident->infoURL());
  if (const auto updated = incident->lastUpdated()) {
    const QString when = texts().dateAndTime(*updated, platform().mainLoop().now());
    column_->addWidget(makeLabel(texts()("Updated", {when.toStdString()}), font(kSmallSize), Tone::faint));
  }
}

QString DetailsWindow::periodOf(const TransitIncident& incident) const {
  const Date now = platform().mainLoop().now();
  const auto text = [&](Date date) { return texts().dateAndTime(date, now).toStdString(); };
  const std::optional<Date> start = incident.startDate();
  const std::optional<Date> end = incident.endDate();
  if (start && end) return texts()("Period", {text(*start), text(*end)});
  if (start) return texts()("From", {text(*start)});
  return end ? texts()("Until", {text(*end)}) : texts()("UntilFurtherNotice");
}

void DetailsWindow::addLink(const OptionalText& address) {
  const QUrl url(textOf(address), QUrl::StrictMode);
  // Only web pages are opened: other schemes may start any program.
  if (!url.isValid() || (url.scheme() != QLatin1String("https") && url.scheme() != QLatin1String("http")))
    return;
  auto* const link = new LinkButton(texts()("MoreInformation"));
  link->setFont(font(kBodySize));
  setPlainToolTip(*link, url.toDisplayString());
  link->setAccessibleDescription(url.host());
  connect(link, &LinkButton::clicked, this, [this, url] { services_.openLink(url); });
  column_->addWidget(link, 0, Qt::AlignLeading);
}

/// The lines of an incident are left out if the window is about that one line.
void DetailsWindow::addAffectedLines(const TransitFeeds::LinesOfIncidents& found) {
  for (const auto& [muid, lines] : found) {
    const auto place = placesOfLines_.find(muid);
    if (place == placesOfLines_.end() || lines.empty()) continue;
    if (lines.size() == 1 && lines.front()->muid == shownLine_) continue;
    const QString names =
        texts()("AffectedLines", {std::uint64_t{lines.size()}, listOfNames(lines).toStdString()});
    std::vector<SharedArtwork> artworks;
    for (const auto& line : lines)
      artworks.push_back(line->alternateArtwork ? line->alternateArtwork : line->artwork);
    auto* const strip = new ArtworkStrip(artworks, artworkStep(kAffectedShieldStep), artworkCache());
    strip->setAccessibleName(names);
    setPlainToolTip(*strip, names);
    place->second->addWidget(strip);
    strip->show();
  }
  // The window grows unless the user has changed its height.
  if (isVisible() && height() == fittedHeight_) fitHeight();
}

}  // namespace linewatch::desktop
