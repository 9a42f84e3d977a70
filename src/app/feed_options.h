#pragma once

#include <CLI/CLI.hpp>

#include "app/command_line.h"

namespace linewatch::app {

/// The help of the options that name locations.
struct LocationHelp {
  const char* gtfs;
  const char* alerts;
  bool areRequired = false;
};

/// Adds --gtfs and --alerts, which may be repeated.
void addLocationOptions(CLI::App& app, FeedOptions& options, const LocationHelp& help);

/// Adds --header, --query-key and --key-command, and the same for one document as --gtfs-header,
/// --alerts-header and so on. No error shows a value.
void addKeyOptions(CLI::App& app, FeedOptions& options);

}  // namespace linewatch::app
