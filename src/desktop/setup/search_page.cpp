#include "desktop/setup/search_page.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <cstdint>
#include <map>
#include <utility>

#include "desktop/window/action_button.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_colors.h"
#include "desktop/window/window_style.h"
#include "feeds/catalogue/country_names.h"
#include "feeds/http/http_fetcher.h"
#include "feeds/text/folded_words.h"
#include "platform/log.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

constexpr std::size_t kMostShownHits = 300;

}  // namespace

SearchPage::SearchPage(SharedWindowTexts texts, SetupServices services, Actions actions)
    : texts_(std::move(texts)),
      services_(std::move(services)),
      actions_(std::move(actions)),
      search_(new OutlinedField),
      hint_(plainLabel({}, windowFont(kWindowTextSize), TextTone::faint)),
      tryAgain_(new ActionButton((*texts_)("TryAgain"))),
      list_(new CityList(texts_, services_.language,
                         [this](const CatalogueHit& hit) { actions_.choose(hit); })),
      addresses_(new ActionButton((*texts_)("EnterAddresses"))) {
  search_->setFont(windowFont(kWindowNameSize));
  search_->setPlaceholderText((*texts_)("SearchCity"));
  search_->setAccessibleName((*texts_)("SearchCity"));
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  setFocusProxy(search_);
  connect(search_, &QLineEdit::textChanged, this, [this] { showMatches(); });
  connect(tryAgain_, &QAbstractButton::clicked, this, [this] { read(); });
  connect(addresses_, &QAbstractButton::clicked, this,
          [this] { actions_.enterAddresses(timetable_, alerts_); });
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, kWindowMargin);
  layout->setSpacing(kWindowMargin / 2);
  const auto add = [layout](QWidget* part, bool isWide) {
    auto* const row = new QHBoxLayout;
    // A button's body is in line with the texts.
    const int side = isWide ? kWindowMargin : kWindowMargin - kButtonRing;
    row->setContentsMargins(side, 0, side, 0);
    row->addWidget(part);
    if (!isWide) row->addStretch();
    layout->addLayout(row);
  };
  add(search_, true);
  add(hint_, true);
  add(tryAgain_, false);
  layout->addWidget(list_, 1);
  add(addresses_, false);
}

void SearchPage::present() {
  if (!catalogue_ && !isReading_) read();
}

QString SearchPage::search() const { return search_->text(); }

void SearchPage::setSearch(const QString& search) { search_->setText(search); }

bool SearchPage::clearSearch() {
  if (search_->text().isEmpty()) return false;
  search_->clear();
  search_->setFocus(Qt::OtherFocusReason);
  return true;
}

void SearchPage::read() {
  isReading_ = true;
  showMatches();
  services_.readCatalogue(
      [page = QPointer<SearchPage>(this)](const Outcome<KeptCatalogue::Reading>& reading) {
        if (page) page->catalogueDidCome(reading);
      });
}

void SearchPage::catalogueDidCome(const Outcome<KeptCatalogue::Reading>& reading) {
  isReading_ = false;
  failure_ = reading ? std::string() : texts_->reason(reading.error());
  if (reading) catalogue_ = reading->catalogue;
  showMatches();
  if (reading)
    logDebug("The set-up lists a catalogue of %lu feeds",
             {static_cast<std::int64_t>(catalogue_->feeds().size())});
}

// ---- The list ----

void SearchPage::showMatches() {
  timetable_.clear();
  alerts_.clear();
  tryAgain_->hide();
  list_->setRows({});
  const QString query = search_->text().trimmed();
  if (isHttpURL(query.toStdString())) {
    alerts_ = query.toStdString();
    return showHint((*texts_)("AddressTyped"));
  }
  if (!catalogue_) return showNoCatalogue();
  const CatalogueMatches matches = catalogue_->search(query.toStdString());
  showHint({});
  if (query.isEmpty()) return list_->setRows(rowsByCountry(matches.hits));
  if (matches.hits.empty()) return showNoHit(matches);
  std::vector<CityModel::Row> rows;
  for (const CatalogueHit& hit : matches.hits) {
    if (rows.size() < kMostShownHits) rows.push_back({.hit = hit});
  }
  list_->setRows(std::move(rows));
  const std::string& holds = matches.hits.front().holds;
  if (!holds.empty()) showHint((*texts_)("CityHolds", {holds}));
}

/// The user's own country comes first, then the others by name.
std::vector<CityModel::Row> SearchPage::rowsByCountry(const std::vector<CatalogueHit>& hits) const {
  struct Country {
    std::string name;
    std::vector<const CatalogueHit*> hits;
  };
  std::map<std::pair<bool, std::string>, Country> countries;
  for (const CatalogueHit& hit : hits) {
    const std::string& code = hit.alerts->country;
    const std::string name = countryName(code, services_.language);
    Country& country = countries[{code != services_.region, comparableName(name)}];
    country.name = name;
    country.hits.push_back(&hit);
  }
  std::vector<CityModel::Row> rows;
  for (const auto& [order, country] : countries) {
    const QString name = QString::fromStdString(country.name);
    rows.push_back({.heading = name.isEmpty() ? (*texts_)("OtherCountries") : name});
    for (const CatalogueHit* const hit : country.hits) rows.push_back({.hit = *hit});
  }
  return rows;
}

void SearchPage::showNoCatalogue() {
  if (isReading_ || failure_.empty()) return showHint((*texts_)("LoadingCatalogue"));
  showHint((*texts_)("CatalogueFailed", {failure_}), true);
  tryAgain_->show();
}

void SearchPage::showNoHit(const CatalogueMatches& matches) {
  const std::string query = search_->text().trimmed().toStdString();
  if (!matches.timetables.empty()) {
    timetable_ = matches.timetables.front()->url;
    showHint((*texts_)("CityWithoutAlerts", {query, namesOf(matches.timetables)}));
  } else if (!matches.timetablesOnMap.empty()) {
    showHint((*texts_)("CityOnMapOnly", {query, namesOf(matches.timetablesOnMap)}));
  } else {
    showHint((*texts_)("NoCityFits", {query}));
  }
}

void SearchPage::showHint(const QString& hint, bool isError) {
  hint_->setText(hint);
  hint_->setForegroundRole(isError ? kAlarmRole : kFaintRole);
  hint_->setVisible(!hint.isEmpty());
}

/// In the search field, Enter and Down lead to the list, or to the addresses if an address was typed.
bool SearchPage::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = watched == search_ && event->type() == QEvent::KeyPress;
  const int key = isKey ? static_cast<const QKeyEvent*>(event)->key() : 0;
  const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (!isEnter && key != Qt::Key_Down) return QWidget::eventFilter(watched, event);
  if (isEnter && !alerts_.empty())
    actions_.enterAddresses(timetable_, alerts_);
  else
    list_->enter();
  return true;
}

}  // namespace linewatch::desktop
