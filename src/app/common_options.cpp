#include "app/common_options.h"

#include <cstdint>
#include <string>
#include <vector>

#include "app/checked_options.h"
#include "app/feed_options.h"
#include "app/iso_time.h"

namespace linewatch::app {

namespace {

bool addPreference(const std::string& text, CommonOptions& options) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return false;
  const std::string value = text.substr(equals + 1);
  const bool isBoolean = value == "true" || value == "false";
  options.preferences.insert_or_assign(text.substr(0, equals),
                                       isBoolean ? Value(value == "true") : Value(value));
  return true;
}

void addShownLines(CLI::App& app, CommonOptions& options) {
  addLocationOptions(app, options.feed,
                     {.gtfs = "Timetable for this run: a GTFS folder, zip or URL; may be repeated",
                      .alerts = "Its GTFS-Realtime service alerts: a file or URL; may be repeated"});
  app.add_option("--favorite", options.favorites,
                 "A favourite for this run, by its route id; may be repeated")
      ->type_name("ROUTE_ID")
      ->expected(1)
      ->take_all();
}

void addSurroundings(CLI::App& app, CommonOptions& options) {
  const auto takeTime = [&options](const std::string& text) {
    return (options.now = parseTime(text)).has_value();
  };
  addChecked(app, "--now", takeTime, "The time to use instead of the present, e.g. 2026-11-24T08:00:00Z",
             "not a time such as 2026-11-24T08:00:00Z")
      ->type_name("TIME");
  addNumber<std::uint64_t>(app, "--max-rows", options.maxRows, {0, 1'000'000, "0 (no limit) to 1000000"},
                           "Rows of the expanded list");
  const auto takeLocale = [&options](const std::string& text) {
    return (options.locale = UserLocale::parse(text)).has_value();
  };
  addChecked(app, "--locale", takeLocale,
             "Language and region, e.g. de-CH; else those of LC_ALL, LC_MESSAGES or LANG, and LANGUAGE "
             "unless that is C",
             "not a language such as en or de-CH")
      ->type_name("TAG");
  app.add_option("--state-dir", options.stateDir, "Folder for all saved state, instead of the XDG folders")
      ->type_name("DIR");
  app.add_option("--catalogue", options.catalogue,
                 "The catalogue of feeds, a CSV file or URL; usually that of the Mobility Database")
      ->type_name("FILE|URL");
}

void addPreferences(CLI::App& app, CommonOptions& options) {
  const auto take = [&options](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      if (!addPreference(text, options))
        throw CLI::ValidationError("--preference", wrongValue(text, "not of the form KEY=VALUE"));
    }
  };
  app.add_option_function<std::vector<std::string>>(
         "--preference", take,
         "A preference for this run, e.g. Rova.LineWatch.internal.injectFakeIncidents=true; may be repeated")
      ->type_name("KEY=VALUE")
      ->expected(1)
      ->take_all();
}

}  // namespace

void addCommonOptions(CLI::App& app, CommonOptions& options) {
  const std::string usualGroup = app.option_defaults()->get_group();
  app.option_defaults()->group("Common options");
  addShownLines(app, options);
  addSurroundings(app, options);
  addPreferences(app, options);
  addKeyOptions(app, options.feed);
  app.add_flag("-v,--verbose", options.verbose, "Log every step to standard error");
  app.option_defaults()->group(usualGroup);
}

}  // namespace linewatch::app
