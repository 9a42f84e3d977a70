#pragma once

#include <QString>

#include "list/transit_list_item.h"

namespace linewatch::desktop {

/// What a row says to someone who does not see it.
struct RowWords {
  QString name;
  QString description;

  bool operator==(const RowWords&) const = default;
};

/// A row's texts with what its shields say: those stand beside the texts, and name the line that they are
/// about. Needs an installed platform. Main thread.
RowWords wordsOfItem(const SummaryItem& item);

}  // namespace linewatch::desktop
