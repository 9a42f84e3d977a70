#pragma once

#include <memory>

#include "storage/state_directories.h"
#include "storage/stored_database.h"

namespace linewatch {

using SharedDatabase = std::shared_ptr<StoredDatabase>;

/// The database of favourites, feeds, preferences and analytics, "linewatch.sqlite". Opens nothing yet; `log`
/// must outlive it.
SharedDatabase makeStateDatabase(const StateDirectories& folders, Log& log,
                                 StoredDatabase::Options options = {});

/// The database of fetched feeds, "feeds.sqlite". Opens nothing yet; `log` must outlive it. As it can be
/// fetched again, it waits only 0.1 s for another program.
SharedDatabase makeCacheDatabase(const StateDirectories& folders, Log& log);

}  // namespace linewatch
