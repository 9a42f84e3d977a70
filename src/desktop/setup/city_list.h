#pragma once

#include <QAbstractListModel>
#include <QFont>
#include <QListView>
#include <QString>
#include <QStyledItemDelegate>
#include <functional>
#include <string>
#include <vector>

#include "desktop/window/action_list.h"
#include "desktop/window/window_texts.h"
#include "feeds/catalogue/catalogue_hit.h"

namespace linewatch::desktop {

/// The number of timetables that the alerts of a hit cover, and their names if the catalogue has any.
QString coverageInWords(const WindowTexts& texts, const CatalogueHit& hit);

/// The rows of a search in the catalogue: headings with countries, and hits.
class CityModel final : public QAbstractListModel {
 public:
  static constexpr int kHeadingRole = Qt::UserRole;
  static constexpr int kDetailsRole = Qt::UserRole + 1;
  /// A remark, e.g. that a key is needed; may be empty.
  static constexpr int kRemarkRole = Qt::UserRole + 2;

  struct Row {
    /// Of a row that is a heading; else null.
    QString heading = {};
    CatalogueHit hit = {};
  };

  CityModel(SharedWindowTexts texts, std::string language, QObject* parent);

  void setRows(std::vector<Row> rows);
  const Row& row(int index) const { return rows_[static_cast<std::size_t>(index)]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QString details(const CatalogueHit& hit) const;
  QString remark(const CatalogueHit& hit) const;

  SharedWindowTexts texts_;
  std::string language_;
  std::vector<Row> rows_;
};

/// The provider, the place and what a hit covers, in two lines, and the remark at the end.
class CityDelegate final : public QStyledItemDelegate {
 public:
  explicit CityDelegate(QObject* parent);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  QFont nameFont_, detailsFont_, headingFont_;
};

/// A list of hits. A click, Space or Enter chooses one. Main thread.
class CityList final : public ActionList<QListView> {
 public:
  using Chosen = std::function<void(const CatalogueHit&)>;

  CityList(const SharedWindowTexts& texts, const std::string& language, Chosen chosen);

  void setRows(std::vector<CityModel::Row> rows);
  /// Makes the first hit current and takes the focus; false without hits.
  bool enter();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void choose(const QModelIndex& index);

  CityModel* model_;
  Chosen chosen_;
};

}  // namespace linewatch::desktop
