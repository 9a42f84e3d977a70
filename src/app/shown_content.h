#pragma once

#include "app/session.h"
#include "app/show_document.h"
#include "incidents/result.h"

namespace linewatch::app {

/// Gathers what is known after a fetch: the favourite lines in the user's order, then lines of the result
/// that are no favourites. `list` may be null.
ShownContent shownContent(Session& session, const RVResult& result,
                          std::shared_ptr<const RVTransitListItem> list);

}  // namespace linewatch::app
