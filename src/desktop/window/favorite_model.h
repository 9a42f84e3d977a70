#pragma once

#include <QAbstractListModel>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "feeds/gtfs/line_search.h"
#include "platform/artwork.h"
#include "storage/stored_favorites.h"

namespace linewatch::desktop {

/// The rows of a list of lines: headings, favourites that can be ordered, and lines that can be added. A
/// row's texts and artwork are made when the row is drawn, so that a list may have any number of rows. Main
/// thread.
class FavoriteModel final : public QAbstractListModel {
 public:
  static constexpr int kHeadingRole = Qt::UserRole + 2;
  static constexpr int kOrderedRole = Qt::UserRole + 3;
  static constexpr int kFavoriteRole = Qt::UserRole + 4;

  struct Row {
    /// Of a row that is a heading; else null.
    QString heading = {};
    StoredFavorite favorite = {};
    /// Absent when the feed does not have the line.
    std::optional<FoundLine> line = {};
    /// Whether the row is one of the favourites that the user can put in order.
    bool isOrdered = false;
    /// Whether the heading above the row names the agency.
    bool isInGroup = false;

    bool isHeading() const { return !heading.isNull(); }
    bool operator==(const Row&) const = default;
  };
  struct Description {
    QString name;
    QString agency;
    /// May be null.
    SharedArtwork artwork = nullptr;
  };
  struct Mark {
    bool isFavorite = false;
    /// The incidents that the user has chosen, in words; empty for all.
    QString choice = {};
  };
  struct Source {
    std::function<Description(const Row&)> describe;
    std::function<Mark(const StoredFavorite&)> mark;
    /// Adds or removes a favourite; false on failure. Without it the marks cannot be changed.
    std::function<bool(const StoredFavorite&, bool isAdded)> change = {};
  };

  FavoriteModel(Source source, QObject* parent);

  void setRows(std::vector<Row> rows);
  const std::vector<Row>& rows() const { return rows_; }
  const Row& row(int index) const { return rows_[static_cast<std::size_t>(index)]; }
  /// The row of the line. Prefers an ordered one if `isOrdered`.
  std::optional<int> find(const StoredFavorite& favorite, bool isOrdered) const;
  /// To be called after the favourites have changed.
  void marksDidChange();
  /// Moves an ordered row to the place of another ordered one; false if that cannot be done. The new order is
  /// not saved.
  bool moveRow(int from, int to);
  std::vector<StoredFavorite> order() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  Source source_;
  std::vector<Row> rows_;
};

}  // namespace linewatch::desktop
