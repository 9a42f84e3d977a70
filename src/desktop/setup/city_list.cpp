#include "desktop/setup/city_list.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <cmath>
#include <cstdint>
#include <utility>

#include "desktop/window/list_row.h"
#include "desktop/window/window_colors.h"
#include "desktop/window/window_style.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr double kCityPadding = 9;
constexpr double kCityLineGap = 2;
constexpr double kRoomAboveCountry = 14;
constexpr double kRoomBelowCountry = 4;
constexpr double kRemarkGap = 12;

}  // namespace

CityModel::CityModel(SharedWindowTexts texts, std::string language, QObject* parent)
    : QAbstractListModel(parent), texts_(std::move(texts)), language_(std::move(language)) {}

void CityModel::setRows(std::vector<Row> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  endResetModel();
}

int CityModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QString coverageInWords(const WindowTexts& texts, const CatalogueHit& hit) {
  const std::uint64_t count = hit.timetables.size();
  const std::string names = hit.coverage();
  if (count == 0) return QString::fromStdString(names);
  return names.empty() ? texts("CityCovers", {count}) : texts("CityCoversNamed", {count, names});
}

/// Here a name says more than the number of timetables.
QString CityModel::details(const CatalogueHit& hit) const {
  const QString names = QString::fromStdString(hit.coverage());
  QStringList words{QString::fromStdString(hit.place(language_)),
                    names.isEmpty() ? coverageInWords(*texts_, hit) : names};
  words.removeAll(QString());
  return words.join(QStringLiteral(" · "));
}

QString CityModel::remark(const CatalogueHit& hit) const {
  if (!hit.isActive()) return (*texts_)("CityGivenUp");
  return hit.needsKey() ? (*texts_)("CityNeedsKey") : QString();
}

QVariant CityModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Row& row = this->row(index.row());
  if (role == kHeadingRole) return !row.heading.isNull();
  if (!row.heading.isNull()) return role == Qt::DisplayRole ? QVariant(row.heading) : QVariant();
  const QString provider = QString::fromStdString(row.hit.provider());
  if (role == Qt::DisplayRole) return provider;
  if (role == kDetailsRole) return details(row.hit);
  if (role == kRemarkRole) return remark(row.hit);
  if (role != Qt::AccessibleTextRole) return {};
  QStringList words{provider, details(row.hit), remark(row.hit)};
  words.removeAll(QString());
  return words.join(QStringLiteral(", "));
}

Qt::ItemFlags CityModel::flags(const QModelIndex& index) const {
  if (!index.isValid() || !row(index.row()).heading.isNull()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

CityDelegate::CityDelegate(QObject* parent)
    : QStyledItemDelegate(parent),
      nameFont_(windowFont(kWindowNameSize, QFont::Medium)),
      detailsFont_(windowFont(kWindowNoteSize)),
      headingFont_(windowFont(kWindowNoteSize, QFont::DemiBold)) {}

QSize CityDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
  const double height = index.data(CityModel::kHeadingRole).toBool()
                            ? kRoomAboveCountry + QFontMetricsF(headingFont_).height() + kRoomBelowCountry
                            : QFontMetricsF(nameFont_).height() + kCityLineGap +
                                  QFontMetricsF(detailsFont_).height() + 2 * kCityPadding;
  return {0, static_cast<int>(std::ceil(height))};
}

void CityDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  const QRectF row = option.rect;
  const auto paintText = [&](int role, const QFont& font, QPalette::ColorRole color, const QRectF& place,
                             Qt::AlignmentFlag side) {
    const QFontMetricsF metrics(font);
    painter->setFont(font);
    painter->setPen(option.palette.color(color));
    painter->drawText(QRectF(place.left(), place.top(), place.width(), metrics.height()),
                      static_cast<int>(side | Qt::AlignVCenter),
                      metrics.elidedText(index.data(role).toString(), Qt::ElideRight, place.width()));
  };
  if (index.data(CityModel::kHeadingRole).toBool()) {
    paintText(Qt::DisplayRole, headingFont_, kFaintRole,
              row.adjusted(kRowInset, kRoomAboveCountry, -kRowInset, 0), Qt::AlignLeading);
    return painter->restore();
  }
  paintRowState(*painter, option);
  QRectF text = row.adjusted(kRowInset, kCityPadding, -kRowInset, -kCityPadding);
  const double lineHeight = QFontMetricsF(nameFont_).height();
  const QString remark = index.data(CityModel::kRemarkRole).toString();
  QRectF name = text;
  if (!remark.isEmpty()) {
    const double width = QFontMetricsF(detailsFont_).horizontalAdvance(remark) + kRemarkGap;
    paintText(CityModel::kRemarkRole, detailsFont_, kFaintRole, text, Qt::AlignTrailing);
    name =
        option.direction == Qt::LeftToRight ? text.adjusted(0, 0, -width, 0) : text.adjusted(width, 0, 0, 0);
  }
  paintText(Qt::DisplayRole, nameFont_, QPalette::Text, name, Qt::AlignLeading);
  text.setTop(text.top() + lineHeight + kCityLineGap);
  paintText(CityModel::kDetailsRole, detailsFont_, kFaintRole, text, Qt::AlignLeading);
  painter->restore();
}

CityList::CityList(const SharedWindowTexts& texts, const std::string& language, Chosen chosen)
    : model_(new CityModel(texts, language, this)), chosen_(std::move(chosen)) {
  setFrameShape(QFrame::NoFrame);
  setMouseTracking(true);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setItemDelegate(new CityDelegate(this));
  setModel(model_);
  setRowAction([this](const QModelIndex& index) { choose(index); });
  setAccessibleName((*texts)("Cities"));
  connect(this, &QListView::clicked, this, [this](const QModelIndex& index) { choose(index); });
}

void CityList::setRows(std::vector<CityModel::Row> rows) {
  model_->setRows(std::move(rows));
  scrollToTop();
}

bool CityList::enter() {
  for (int row = 0; row < model_->rowCount(); ++row) {
    if (!(model_->index(row).flags() & Qt::ItemIsEnabled)) continue;
    if (!currentIndex().isValid()) setCurrentIndex(model_->index(row));
    setFocus(Qt::TabFocusReason);
    return true;
  }
  return false;
}

void CityList::choose(const QModelIndex& index) {
  if (!(index.flags() & Qt::ItemIsEnabled)) return;
  // A copy, because the choice may replace the rows.
  const CatalogueHit hit = model_->row(index.row()).hit;
  chosen_(hit);
}

void CityList::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
    return QListView::keyPressEvent(event);
  if (!event->isAutoRepeat()) choose(currentIndex());
  event->accept();
}

}  // namespace linewatch::desktop
