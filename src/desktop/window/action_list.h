#pragma once

#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <functional>
#include <utility>

namespace linewatch::desktop {

/// A list without selected rows whose rows have an action for assistive technology. Qt carries out that
/// action of a list item as its selection, which nothing else changes here.
template <class List>
class ActionList : public List {
 public:
  using List::List;

  /// To be called after the model has been set.
  void setRowAction(std::function<void(const QModelIndex&)> act) {
    this->setSelectionMode(QAbstractItemView::SingleSelection);
    QObject::connect(this->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                     [this, act = std::move(act)](const QItemSelection& selected) {
                       if (selected.isEmpty()) return;
                       const QModelIndex index = selected.indexes().front();
                       this->selectionModel()->clearSelection();
                       act(index);
                     });
  }

 protected:
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex&, const QEvent*) const override {
    return QItemSelectionModel::NoUpdate;
  }
};

}  // namespace linewatch::desktop
