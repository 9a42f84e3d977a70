#pragma once

#include <QString>

#include "list/transit_list_item.h"

namespace linewatch::desktop {

/// The words of a row for assistive technology.
struct RowWords {
  QString name;
  QString description;

  bool operator==(const RowWords&) const = default;
};

/// The row's texts and the texts of its shields, which name the lines. Needs an installed platform. Main
/// thread.
RowWords wordsOfItem(const SummaryItem& item);

}  // namespace linewatch::desktop
