#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/setup/city_list.h"
#include "desktop/setup/setup_services.h"
#include "desktop/window/window_texts.h"
#include "feeds/catalogue/catalogue.h"
#include "feeds/catalogue/catalogue_hit.h"

class QLabel;
class QLineEdit;

namespace linewatch::desktop {

class ActionButton;

/// The search for a city in the catalogue. Without a search all feeds are listed by country, the user's own
/// country first. Main thread.
class SearchPage final : public QWidget {
 public:
  struct Actions {
    std::function<void(const CatalogueHit&)> choose;
    /// The user wants to enter addresses or to choose files. `timetable` and `alerts`: the ones that are
    /// known already; may be empty.
    std::function<void(const std::string& timetable, const std::string& alerts)> enterAddresses;
  };

  SearchPage(SharedWindowTexts texts, SetupServices services, Actions actions);

  /// Reads the catalogue if that has not been done.
  void present();
  QString search() const;
  void setSearch(const QString& search);
  /// False when there was no search.
  bool clearSearch();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void read();
  void catalogueDidCome(const Outcome<KeptCatalogue::Reading>& reading);
  void showMatches();
  std::vector<CityModel::Row> rowsByCountry(const std::vector<CatalogueHit>& hits) const;
  void showNoCatalogue();
  void showNoHit(const CatalogueMatches& matches);
  void showHint(const QString& hint, bool isError = false);

  SharedWindowTexts texts_;
  SetupServices services_;
  Actions actions_;
  QLineEdit* search_;
  QLabel* hint_;
  ActionButton* tryAgain_;
  CityList* list_;
  ActionButton* addresses_;
  /// Null until it has been read.
  SharedCatalogue catalogue_;
  bool isReading_ = false;
  /// Why the last reading failed; empty if it did not.
  std::string failure_;
  /// What the user would enter for the present search.
  std::string timetable_, alerts_;
};

}  // namespace linewatch::desktop
