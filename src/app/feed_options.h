#pragma once

#include <CLI/CLI.hpp>

#include "app/command_line.h"

namespace linewatch::app {

/// The help texts of the location options.
struct LocationHelp {
  const char* gtfs;
  const char* alerts;
  bool areRequired = false;
};

/// Adds --gtfs and --alerts, which may be repeated.
void addLocationOptions(CLI::App& app, FeedOptions& options, const LocationHelp& help);

/// Adds --header, --query-key and --key-command, and their variants for one document, e.g. --gtfs-header. No
/// error contains a value.
void addKeyOptions(CLI::App& app, FeedOptions& options);

}  // namespace linewatch::app
