#pragma once

#include "app/session.h"
#include "app/show_document.h"
#include "incidents/result.h"

namespace linewatch::app {

/// Collects the content after a fetch: the favourite lines in the user's order, then other lines of the
/// result. `list` may be null.
ShownContent shownContent(Session& session, const RVResult& result,
                          std::shared_ptr<const RVTransitListItem> list);

}  // namespace linewatch::app
