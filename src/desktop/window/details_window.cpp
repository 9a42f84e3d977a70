#include "desktop/window/details_window.h"

#include <QBoxLayout>
#include <QElapsedTimer>
#include <QFrame>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "companion/details_text.h"
#include "desktop/window/artwork_strip.h"
#include "desktop/window/link_button.h"
#include "desktop/window/plain_tool_tip.h"
#include "desktop/window/widget_role.h"
#include "desktop/window/window_colors.h"
#include "feeds/upcoming_incidents.h"
#include "platform/incident_string_provider.h"
#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kDetailsWidth = 440;
constexpr int kDetailsMargin = 24;
constexpr int kBesideDetails = 16;
constexpr int kGapWithinIncident = 8;
constexpr int kSmallGap = 4;
constexpr int kGapBetweenIncidents = 20;
constexpr int kGapAboveHeading = 32;
constexpr int kLeastDetailsHeight = 200;
constexpr double kLineSize = 20;
constexpr double kHeadingSize = 16;
constexpr double kBodySize = 14;
constexpr double kSmallSize = 12;
// Size steps.
constexpr std::int64_t kLineShieldStep = 7;
constexpr std::int64_t kAffectedShieldStep = 2;
// The window's largest initial height, as a part of the screen's height.
constexpr double kShareOfScreen = 0.8;
// Bytes of text in one label. The layout of such a label takes a few milliseconds.
constexpr std::size_t kTextBlock = 1000;
// Milliseconds in which one turn of the event loop adds incidents.
constexpr qint64 kAddingSlice = 4;
// The limits of lists and titles.
constexpr std::size_t kMostShields = 40;
constexpr std::size_t kMostNames = 60;
constexpr std::size_t kLongestShortText = 200;

std::string shieldTextOf(const SharedArtwork& artwork) {
  return artwork && artwork->shieldDataSource ? artwork->shieldDataSource->shieldText.value_or("") : "";
}

/// The text's first characters.
QString shortened(std::string_view text) {
  std::string_view rest = trimmed(text);
  const std::string_view first = takeTextBlock(rest, kLongestShortText);
  const QString shown = QString::fromUtf8(first.data(), static_cast<int>(first.size()));
  return rest.empty() ? shown : shown + QStringLiteral("…");
}

/// Lets long words wrap, after every `longest` characters.
QString withBreaks(std::string_view text, int longest) {
  QString broken = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
  int wordLength = 0;
  for (int i = 0; i < broken.size(); ++i) {
    wordLength = broken[i].isSpace() ? 0 : wordLength + 1;
    if (wordLength <= longest || broken[i].isLowSurrogate()) continue;
    broken.insert(i, QChar(0x200B));
    wordLength = 0;
  }
  return broken;
}

bool isWebPage(const QUrl& url) {
  return url.isValid() && (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"));
}

QWidget* makeRule() {
  auto* const rule = new QFrame;
  rule->setFrameShape(QFrame::HLine);
  rule->setFrameShadow(QFrame::Plain);
  rule->setForegroundRole(kOutlineRole);
  setAccessibleRole(*rule, QAccessible::Separator);
  return rule;
}

std::string_view descriptionOf(const TransitIncident& incident) {
  const OptionalText& full = incident.fullDescription() ? incident.fullDescription() : incident.summary();
  return full ? std::string_view(*full) : std::string_view();
}

const std::string& titleOf(const TransitIncident& incident) {
  static const std::string kNone;
  return incident.title() ? *incident.title() : kNone;
}

/// The groups of a line's incidents, in the order of the window.
enum class Group : std::size_t { now, comingUp, later, ended };
constexpr std::array<std::string_view, 4> kGroupHeadings = {"", "ComingUp", "Later", "Ended"};

Group groupOf(const TransitIncident& incident, Date now) {
  const auto start = incident.startDate();
  if (start && *start > now) return *start <= now + kUpcomingSpan ? Group::comingUp : Group::later;
  const auto end = incident.endDate();
  return end && *end <= now ? Group::ended : Group::now;
}

}  // namespace

struct DetailsWindow::TextStyles {
  TextStyle line, heading, title, body, small, faint, alarm;
};

DetailsWindow::DetailsWindow(SharedWindowTexts texts, DetailsServices services)
    : CompanionWindow(std::move(texts)),
      services_(std::move(services)),
      column_(new DetailsColumn(kDetailsMargin)),
      words_(this->texts().feedTexts()) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(column_);
  column_->setHeightHandler([this] {
    // The window grows with its content unless the user has changed its height.
    if (isVisible() && height() == fittedHeight_) fitHeight();
  });
  addingMore_.setSingleShot(true);
  connect(&addingMore_, &QTimer::timeout, this, [this] { addSomeEntries(); });
}

DetailsWindow::~DetailsWindow() = default;

void DetailsWindow::present(const OpenedContent& content) {
  startOver();
  content_ = content;
  if (const auto* const incidents = std::get_if<StoredIncidents>(&content)) {
    present(*incidents);
  } else if (const auto& line = std::get<std::shared_ptr<const RovaActivity>>(content)->lineItem()) {
    present(*line);
  }
  column_->setAccessibleName(windowTitle());
  addSomeEntries();
  lookUp();
  resize(usualWidth(), kLeastDetailsHeight);
  layout()->activate();
  column_->layOut();
  fitHeight();
  showInFront();
  column_->setFocus(Qt::OtherFocusReason);
}

void DetailsWindow::restore(const State& state) {
  setPlace(state.place);
  present(state.content);
  resize(state.place.size);
}

bool DetailsWindow::isComplete() const { return !hasMoreToAdd() && column_->isComplete(); }

void DetailsWindow::startOver() {
  column_->clear();
  entries_.clear();
  nextEntry_ = 0;
  steps_.clear();
  found_.clear();
  lookedUpParts_.clear();
  failedLinks_.clear();
  shownLine_ = 0;
  ++presentation_;
  const auto style = [this](double points, Tone tone = Tone::plain, QFont::Weight weight = QFont::Normal) {
    const QFont shown = font(points, weight);
    return TextStyle{shown, QFontMetrics(shown), tone, weight == QFont::DemiBold && tone != Tone::alarming};
  };
  styles_ = std::make_unique<const TextStyles>(TextStyles{
      style(kLineSize, Tone::plain, QFont::DemiBold), style(kBodySize, Tone::faint, QFont::DemiBold),
      style(kHeadingSize, Tone::plain, QFont::DemiBold), style(kBodySize), style(kSmallSize),
      style(kSmallSize, Tone::faint), style(kSmallSize, Tone::alarming, QFont::DemiBold)});
  setWindowTitle(texts()("Title"));
}

/// Qt removes a single "[*]" from a title.
void DetailsWindow::setTitle(const std::string& title) {
  setWindowTitle(shortened(title).replace(QLatin1String("[*]"), QLatin1String("[*][*]")));
}

void DetailsWindow::fitHeight() {
  const int room = static_cast<int>(screen()->availableGeometry().height() * kShareOfScreen);
  fittedHeight_ =
      std::clamp(column_->contentHeight(), kLeastDetailsHeight, std::max(kLeastDetailsHeight, room));
  resize(width(), fittedHeight_);
}

/// The window widens with its text, so that as many words fit into a line.
int DetailsWindow::usualWidth() const {
  const double growth = std::max(1.0, font(kBodySize).pixelSize() / kBodySize);
  const int room = screen()->availableGeometry().width() - kBesideDetails;
  return std::min(static_cast<int>(std::lround(kDetailsWidth * growth)), std::max(kDetailsWidth, room));
}

int DetailsWindow::textWidth() const { return usualWidth() - 2 * kDetailsMargin; }

// ---- The content ----

void DetailsWindow::present(const TransitLineItem& line) {
  shownLine_ = line.muid();
  setTitle(line.name());
  const SharedArtwork artwork = line.alternateArtwork() ? line.alternateArtwork() : line.artwork();
  column_->add({.make = [this, name = line.name(), system = line.system(),
                         artwork] { return makeLineHeader(name, system, artwork); },
                .gap = 0,
                .estimatedHeight = 40});
  addGroups(line.incidents());
}

void DetailsWindow::present(const StoredIncidents& incidents) {
  const QString title = texts()("Advisories", {std::uint64_t{incidents.size()}});
  setWindowTitle(title);
  column_->add({.make = [this, title] { return makeText(title.toStdString(), styles_->line); },
                .gap = 0,
                .estimatedHeight = styles_->line.metrics.lineSpacing()});
  for (const auto& incident : incidents) entries_.push_back({{}, incident});
}

void DetailsWindow::addGroups(const TransitIncidents& incidents) {
  const Date now = platform().mainLoop().now();
  std::array<TransitIncidents, kGroupHeadings.size()> groups;
  for (const SharedIncident& incident : incidents)
    groups[static_cast<std::size_t>(groupOf(*incident, now))].push_back(incident);
  for (const Group group : {Group::comingUp, Group::later}) {
    std::ranges::stable_sort(groups[static_cast<std::size_t>(group)], {},
                             [](const SharedIncident& incident) { return *incident->startDate(); });
  }
  if (groups.front().empty()) addShortText(texts()("NoIncidents"), styles_->body, kGapBetweenIncidents);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (i > 0 && !groups[i].empty()) entries_.push_back({texts()(kGroupHeadings[i]), nullptr});
    for (SharedIncident& incident : groups[i]) entries_.push_back({{}, std::move(incident)});
  }
}

void DetailsWindow::lookUp() {
  std::vector<std::uint64_t> muids;
  for (const Entry& entry : entries_) {
    if (entry.incident) muids.push_back(entry.incident->muid());
  }
  services_.findIncidents(std::move(muids), [window = QPointer<DetailsWindow>(this),
                                             presentation = presentation_](const FoundIncidents& found) {
    if (window && window->presentation_ == presentation) window->showFound(found);
  });
}

void DetailsWindow::showFound(FoundIncidents found) {
  found_ = std::move(found);
  for (const auto& [muid, part] : lookedUpParts_) {
    if (found_.contains(muid)) column_->remake(part, styles_->small.metrics.lineSpacing());
  }
}

void DetailsWindow::addSomeEntries() {
  QElapsedTimer slice;
  slice.start();
  while (hasMoreToAdd() && slice.elapsed() < kAddingSlice) {
    if (steps_.empty()) {
      const Entry& entry = entries_[nextEntry_++];
      entry.incident ? addIncident(entry.incident) : addHeading(entry.heading);
    } else if (steps_.front()()) {
      steps_.pop_front();
    }
  }
  if (hasMoreToAdd()) addingMore_.start(0);
}

// ---- Parts of the content ----

QWidget* DetailsWindow::makeLineHeader(const std::string& name,
                                       const std::shared_ptr<const TransitSystem>& system,
                                       const SharedArtwork& artwork) const {
  auto* const header = new QWidget;
  auto* const row = new QHBoxLayout(header);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kGapWithinIncident * 2);
  auto* const shield = new ArtworkStrip({artwork}, artworkStep(kLineShieldStep), artworkCache());
  shield->setAccessibleName(shortened(name));
  shield->setFixedSize(shield->sizeHint());
  row->addWidget(shield, 0, Qt::AlignTop);
  auto* const names = new QVBoxLayout;
  names->setSpacing(2);
  // With an alignment instead of stretches the layout would get the height of a single line.
  names->addStretch();
  // The shield has the name already.
  if (shield->isEmpty() || shieldTextOf(artwork) != name)
    names->addWidget(makeText(shortened(name).toStdString(), styles_->line));
  if (system) names->addWidget(makeLabel(shortened(system->name), font(kBodySize), Tone::faint));
  names->addStretch();
  row->addLayout(names, 1);
  return header;
}

void DetailsWindow::addHeading(const QString& heading) {
  addShortText(heading, styles_->heading, kGapAboveHeading);
}

void DetailsWindow::addIncident(const SharedIncident& incident) {
  const std::string_view title = trimmed(titleOf(*incident));
  addHead(incident);
  addLongText(incident, title, styles_->title, kGapBetweenIncidents / 2);
  steps_.emplace_back([this, incident] {
    addFacts(incident);
    return true;
  });
  addLongText(incident, descriptionWithoutTitle(descriptionOf(*incident), title), styles_->body,
              kGapWithinIncident);
  steps_.emplace_back([this, incident] {
    addLink(incident);
    addUpdated(*incident);
    return true;
  });
}

void DetailsWindow::addHead(const SharedIncident& incident) {
  column_->add({.make = makeRule, .gap = kGapBetweenIncidents / 2, .estimatedHeight = 2});
  addLookedUp(
      incident, [this](const FoundIncident& found) { return makeLines(found); }, kGapBetweenIncidents / 2);
  addLookedUp(
      incident, [this](const FoundIncident& found) { return makeMoreLines(found); }, kSmallGap);
}

void DetailsWindow::addFacts(const SharedIncident& incident) {
  addLookedUp(
      incident, [this, incident](const FoundIncident& found) { return makeFacts(*incident, found); },
      kSmallGap);
  const Date now = platform().mainLoop().now();
  addShortText(texts().period(incident->startDate(), incident->endDate(), now), styles_->faint, kSmallGap);
  addLookedUp(
      incident, [this, incident](const FoundIncident& found) { return makeStops(*incident, found); },
      kSmallGap);
}

void DetailsWindow::addShortText(const QString& text, const TextStyle& style, int gap) {
  const auto kept = std::make_shared<const std::string>(text.toStdString());
  addBlock(kept, *kept, style, gap);
}

void DetailsWindow::addLongText(const std::shared_ptr<const void>& owner, std::string_view text,
                                const TextStyle& style, int gap) {
  if (text.empty()) return;
  steps_.emplace_back([this, owner, rest = text, &style, gap]() mutable {
    addBlock(owner, takeTextBlock(rest, kTextBlock), style, std::exchange(gap, 0));
    return rest.empty();
  });
}

void DetailsWindow::addBlock(const std::shared_ptr<const void>& owner, std::string_view block,
                             const TextStyle& style, int gap) {
  const int perLine = std::max(1, textWidth() / std::max(1, style.metrics.averageCharWidth()));
  const auto lines = std::ranges::count(block, '\n') + 1 + std::ssize(block) / perLine;
  column_->add({.make = [this, owner, block, &style] { return makeText(block, style); },
                .gap = gap,
                .estimatedHeight = static_cast<int>(lines) * style.metrics.lineSpacing()});
}

QLabel* DetailsWindow::makeText(std::string_view text, const TextStyle& style) const {
  const int longest =
      std::max(1, textWidth() / std::max(1, style.metrics.horizontalAdvance(QLatin1Char('W'))));
  QLabel* const label = makeLabel(withBreaks(text, longest), style.font, style.tone);
  if (style.isHeading) setAccessibleRole(*label, QAccessible::Heading);
  if (&style == &styles_->body)
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return label;
}

void DetailsWindow::addUpdated(const TransitIncident& incident) {
  const auto updated = incident.lastUpdated();
  if (!updated) return;
  const QString when = texts().shortDateAndTime(*updated, platform().mainLoop().now());
  addShortText(texts()("Updated", {when.toStdString()}), styles_->faint, kGapWithinIncident);
}

/// Only web pages get a link: other URLs may start any program.
void DetailsWindow::addLink(const SharedIncident& incident) {
  const QString address = shortened(incident->infoURL().value_or(""));
  if (address.isEmpty()) return;
  const QUrl url(QString::fromStdString(*incident->infoURL()).trimmed(), QUrl::StrictMode);
  if (!isWebPage(url)) {
    addShortText(texts()("LinkRefused", {address.toStdString()}), styles_->faint, kGapWithinIncident);
    return;
  }
  const std::size_t failurePart = column_->partCount() + 1;
  column_->add({.make = [this, url, failurePart] { return makeLink(url, failurePart); },
                .gap = kGapWithinIncident,
                .estimatedHeight = styles_->body.metrics.lineSpacing() + 4,
                .takesFocus = true});
  column_->add({.make = [this, address, failurePart]() -> QWidget* {
                  if (!failedLinks_.contains(failurePart)) return nullptr;
                  return makeText(texts()("LinkFailed", {address.toStdString()}).toStdString(),
                                  styles_->alarm);
                },
                .gap = kSmallGap,
                .estimatedHeight = 0});
}

QWidget* DetailsWindow::makeLink(const QUrl& url, std::size_t failurePart) {
  auto* const link = new LinkButton(texts()("MoreInformation"));
  link->setFont(font(kBodySize));
  setPlainToolTip(*link, shortened(url.toDisplayString().toStdString()));
  link->setAccessibleDescription(url.host());
  connect(link, &LinkButton::clicked, this, [this, url, failurePart] {
    const bool isOpened = services_.openLink(url);
    if (isOpened == !failedLinks_.contains(failurePart)) return;
    isOpened ? (void)failedLinks_.erase(failurePart) : (void)failedLinks_.insert(failurePart);
    column_->remake(failurePart, isOpened ? 0 : styles_->alarm.metrics.lineSpacing());
  });
  return link;
}

// ---- Look-ups ----

const FoundIncident& DetailsWindow::foundOf(std::uint64_t muid) const {
  static const FoundIncident kNothing;
  const auto found = found_.find(muid);
  return found == found_.end() ? kNothing : found->second;
}

void DetailsWindow::addLookedUp(const SharedIncident& incident,
                                std::function<QWidget*(const FoundIncident&)> make, int gap) {
  const std::uint64_t muid = incident->muid();
  const std::size_t part =
      column_->add({.make = [this, muid, make = std::move(make)] { return make(foundOf(muid)); },
                    .gap = gap,
                    .estimatedHeight = found_.contains(muid) ? styles_->small.metrics.lineSpacing() : 0});
  lookedUpParts_.emplace(muid, part);
}

/// In the window of a line, an incident that only this line has does not name it.
bool DetailsWindow::namesOtherLines(const FoundIncident& found) const {
  return !found.lines.empty() && (found.lines.size() > 1 || found.lines.front()->muid != shownLine_);
}

std::string DetailsWindow::listOfNames(const std::vector<std::string_view>& names, std::size_t most) const {
  const std::size_t shown = std::min(names.size(), most);
  const std::vector<std::string_view> first(names.begin(),
                                            names.begin() + static_cast<std::ptrdiff_t>(shown));
  std::string list = platform().localization().joinCommaDelimited(first);
  if (shown == names.size()) return list;
  return texts()("AndMore", {std::move(list), std::uint64_t{names.size() - shown}}).toStdString();
}

QWidget* DetailsWindow::makeLines(const FoundIncident& found) const {
  if (!namesOtherLines(found)) return nullptr;
  std::vector<std::string_view> names;
  std::vector<SharedArtwork> artworks;
  for (const auto& line : found.lines) {
    names.push_back(line->name);
    if (artworks.size() < kMostShields)
      artworks.push_back(line->alternateArtwork ? line->alternateArtwork : line->artwork);
  }
  const QString text =
      texts()("AffectedLines", {std::uint64_t{names.size()}, listOfNames(names, kMostNames)});
  auto* const strip = new ArtworkStrip(artworks, artworkStep(kAffectedShieldStep), artworkCache());
  strip->setAccessibleName(text);
  setPlainToolTip(*strip, text);
  return strip;
}

QWidget* DetailsWindow::makeMoreLines(const FoundIncident& found) const {
  if (found.lines.size() <= kMostShields) return nullptr;
  const QString text = texts()("MoreAffectedLines", {std::uint64_t{found.lines.size() - kMostShields}});
  return makeText(text.toStdString(), styles_->faint);
}

/// Severity, effect and cause in one line, without words that are in the title.
QWidget* DetailsWindow::makeFacts(const TransitIncident& incident, const FoundIncident& found) const {
  // By AlertSeverity, whose first value is 1.
  static constexpr std::array<std::string_view, kAlertSeverities + 1> kSeverities = {
      "", "", "SeverityInfo", "SeverityWarning", "SeveritySevere"};
  const std::string_view severity = kSeverities[static_cast<std::size_t>(found.severity)];
  const std::vector<std::string> words =
      distinctWords({severity.empty() ? "" : texts()(severity).toStdString(),
                     incident.isBlockingIncident() ? words_.effect(AlertEffect::noService) : "",
                     words_.effect(found.effect), words_.cause(found.cause),
                     found.isOneDirectionOnly ? texts()("OneDirection").toStdString() : ""},
                    titleOf(incident));
  if (words.empty()) return nullptr;
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " · ") + word;
  const bool isAlarming = incident.isBlockingIncident() || found.severity == AlertSeverity::severe;
  return makeText(line, isAlarming ? styles_->alarm : styles_->small);
}

QWidget* DetailsWindow::makeStops(const TransitIncident& incident, const FoundIncident& found) const {
  if (found.stops.empty()) return nullptr;
  const std::string_view searched = descriptionOf(incident).substr(0, kTextBlock);
  if (namesAll(searched, found.stops)) return nullptr;
  const std::vector<std::string_view> names(found.stops.begin(), found.stops.end());
  const QString text = texts()("Stops", {std::uint64_t{names.size()}, listOfNames(names, kMostNames)});
  return makeText(text.toStdString(), styles_->small);
}

}  // namespace linewatch::desktop
