#include "storage/state_database.h"

#include <array>
#include <chrono>

namespace linewatch {

namespace {

// Released steps never change: a change of the tables is a new step after them.
constexpr std::array<std::string_view, 5> kStateMigrations = {R"sql(
  CREATE TABLE favorite (
    position INTEGER PRIMARY KEY,
    kind TEXT NOT NULL,
    feed TEXT NOT NULL,     -- of a line; empty for the other kinds
    subject TEXT NOT NULL,  -- the route id of a line, else a name
    UNIQUE (kind, feed, subject)
  ) STRICT;
  CREATE TABLE feed (
    position INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE,
    gtfs TEXT NOT NULL,
    alerts TEXT NOT NULL
  ) STRICT;
  CREATE TABLE preference (
    suite TEXT NOT NULL,
    key TEXT NOT NULL,
    value BLOB NOT NULL,    -- CBOR
    PRIMARY KEY (suite, key)
  ) STRICT;
  CREATE TABLE widget_session (
    id INTEGER PRIMARY KEY,
    user_session TEXT NOT NULL,
    interaction_type INTEGER NOT NULL,
    end_state INTEGER NOT NULL,
    was_locked INTEGER NOT NULL,
    start REAL NOT NULL,    -- seconds since 1970
    duration REAL NOT NULL, -- seconds
    initially_expanded INTEGER,
    ever_expanded INTEGER,
    transit_message_type INTEGER,
    tapped_item_index INTEGER
  ) STRICT;
  CREATE TABLE shown_incident (
    widget_session INTEGER NOT NULL REFERENCES widget_session (id),
    position INTEGER NOT NULL,
    line_muid TEXT NOT NULL,
    title TEXT,
    PRIMARY KEY (widget_session, position)
  ) STRICT;
  CREATE TABLE user_action (
    id INTEGER PRIMARY KEY,
    time REAL NOT NULL,     -- seconds since 1970
    action TEXT NOT NULL,
    target INTEGER NOT NULL,
    value TEXT
  ) STRICT;
)sql",
                                                              R"sql(
  -- The stops whose notices are wanted: NULL for all, else ids, one a line; none when empty.
  ALTER TABLE favorite ADD COLUMN stops TEXT;
  -- 0, 1, or -1 for both directions.
  ALTER TABLE favorite ADD COLUMN direction INTEGER NOT NULL DEFAULT -1;
)sql",
                                                              R"sql(
  CREATE TABLE feed_part (
    feed TEXT NOT NULL,      -- its name
    document TEXT NOT NULL,  -- gtfs or alerts
    position INTEGER NOT NULL,
    kind TEXT NOT NULL,      -- location, header, query, key or command
    name TEXT NOT NULL,      -- of a header or a query parameter, else empty
    value TEXT NOT NULL,
    PRIMARY KEY (feed, document, position)
  ) STRICT;
  INSERT INTO feed_part SELECT name, 'gtfs', 0, 'location', '', gtfs FROM feed WHERE gtfs <> '';
  INSERT INTO feed_part SELECT name, 'alerts', 0, 'location', '', alerts FROM feed WHERE alerts <> '';
  ALTER TABLE feed DROP COLUMN gtfs;
  ALTER TABLE feed DROP COLUMN alerts;
)sql",
                                                              R"sql(
  CREATE TABLE subscription (
    feed TEXT NOT NULL,
    route TEXT NOT NULL,
    hours TEXT NOT NULL,     -- e.g. always or weekdays 7 to 9
    severity TEXT NOT NULL,  -- the least one
    PRIMARY KEY (feed, route)
  ) STRICT;
  -- Of a line (feed and route) or of an incident (the other columns).
  CREATE TABLE mute (
    feed TEXT NOT NULL,
    route TEXT NOT NULL,
    muid INTEGER NOT NULL,
    content INTEGER NOT NULL,
    title TEXT NOT NULL,
    until REAL NOT NULL,     -- seconds since 1970, as all times here
    PRIMARY KEY (feed, route, muid)
  ) STRICT;
  -- What the user knows of a line with a subscription.
  CREATE TABLE told_line (
    feed TEXT NOT NULL,
    route TEXT NOT NULL,
    seen REAL NOT NULL,
    clear REAL,
    ended REAL,
    withheld INTEGER NOT NULL,
    PRIMARY KEY (feed, route)
  ) STRICT;
  CREATE TABLE told_news (
    feed TEXT NOT NULL,
    route TEXT NOT NULL,
    position INTEGER NOT NULL,
    content INTEGER NOT NULL,
    muid INTEGER NOT NULL,
    title TEXT NOT NULL,
    gone REAL,
    PRIMARY KEY (feed, route, position)
  ) STRICT;
)sql",
                                                              R"sql(
  ALTER TABLE told_news ADD COLUMN gist INTEGER NOT NULL DEFAULT 0;
  ALTER TABLE told_news ADD COLUMN told REAL NOT NULL DEFAULT 0;
  ALTER TABLE told_news ADD COLUMN replaced REAL;
  -- The notices on the screen, a row for each incident of each line. A line that runs again has one row, without
  -- an incident.
  CREATE TABLE shown_news (
    server TEXT NOT NULL,    -- the run of the notification server
    tag TEXT NOT NULL,
    position INTEGER NOT NULL,
    id INTEGER NOT NULL,     -- the server's
    kind INTEGER NOT NULL,
    saved REAL NOT NULL,
    feed TEXT NOT NULL,
    route TEXT NOT NULL,
    name TEXT NOT NULL,
    over INTEGER NOT NULL,
    muid INTEGER,
    title TEXT NOT NULL,
    summary TEXT NOT NULL,
    severity INTEGER NOT NULL,
    blocking INTEGER NOT NULL,
    PRIMARY KEY (server, tag, position)
  ) STRICT;
)sql"};

constexpr std::array<std::string_view, 4> kCacheMigrations = {R"sql(
  CREATE TABLE document (
    feed TEXT NOT NULL,
    kind TEXT NOT NULL,
    location TEXT NOT NULL,
    fetched REAL NOT NULL,  -- seconds since 1970
    etag TEXT,
    last_modified TEXT,
    bytes BLOB NOT NULL,
    PRIMARY KEY (feed, kind)
  ) STRICT;
)sql",
                                                              R"sql(
  CREATE TABLE stop_page (
    feed TEXT NOT NULL,
    location TEXT NOT NULL,
    first_id TEXT NOT NULL,
    stops TEXT NOT NULL,    -- sorted by id, one line each
    PRIMARY KEY (feed, location, first_id)
  ) STRICT;
  -- Their stops were not kept, so they are read again.
  DELETE FROM document WHERE kind = 'gtfs';
)sql",
                                                              // Locations may have held keys.
                                                              R"sql(
  PRAGMA secure_delete = ON;
  DELETE FROM document WHERE location LIKE '%?%' OR location LIKE '%@%' OR location LIKE '%#%';
  DELETE FROM stop_page;  -- under other names from now on
  DELETE FROM document WHERE kind = 'gtfs';
)sql",
                                                              R"sql(
  -- Seconds after the fetch; NULL when the server did not say.
  ALTER TABLE document ADD COLUMN fresh_for REAL;
  -- Fetches that failed with a Retry-After.
  CREATE TABLE postponed (
    feed TEXT NOT NULL,
    kind TEXT NOT NULL,
    location TEXT NOT NULL,
    failed REAL NOT NULL,       -- seconds since 1970
    retry_after REAL NOT NULL,  -- seconds since 1970
    code INTEGER NOT NULL,
    reason TEXT NOT NULL,
    PRIMARY KEY (feed, kind)
  ) STRICT;
)sql"};

constexpr DatabaseSchema kStateSchema{
    "state database", 0x4C575354, kStateMigrations,  // "LWST"
    "add your feeds and favourites again, or remove that file to start afresh"};
// A commit that a power cut takes back is fetched again.
constexpr DatabaseSchema kCacheSchema{"feed cache", 0x4C574643, kCacheMigrations, "", "FULL"};  // "LWFC"

/// Everything works without the cache, only slower, so no call waits long for it.
constexpr std::chrono::milliseconds kCacheBusyTimeout{100};

}  // namespace

SharedDatabase makeStateDatabase(const StateDirectories& folders, Log& log, StoredDatabase::Options options) {
  return std::make_shared<StoredDatabase>(folders.data / "linewatch.sqlite", kStateSchema, log, options);
}

SharedDatabase makeCacheDatabase(const StateDirectories& folders, Log& log) {
  return std::make_shared<StoredDatabase>(
      folders.cache / "feeds.sqlite", kCacheSchema, log,
      StoredDatabase::Options{.busyTimeout = kCacheBusyTimeout, .waitsOnce = true});
}

}  // namespace linewatch
