#pragma once

#include <memory>

#include "storage/state_directories.h"
#include "storage/stored_database.h"

namespace linewatch {

using SharedDatabase = std::shared_ptr<StoredDatabase>;

/// The database of favourites, feeds, preferences and analytics. Opens nothing yet; `log` must outlive it.
SharedDatabase makeStateDatabase(const StateDirectories& folders, Log& log,
                                 StoredDatabase::Options options = {});

/// The database of fetched feeds. Opens nothing yet; `log` must outlive it.
SharedDatabase makeCacheDatabase(const StateDirectories& folders, Log& log,
                                 StoredDatabase::Options options = {});

}  // namespace linewatch
