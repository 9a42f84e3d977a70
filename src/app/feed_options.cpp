#include "app/feed_options.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "app/checked_options.h"
#include "feeds/feed_keys.h"
#include "feeds/http/http_fetcher.h"
#include "feeds/http/redacted.h"
#include "feeds/text/ascii.h"
#include "shared/shell_words.h"

namespace linewatch::app {

namespace {

using Texts = std::vector<std::string>;

/// True for a URL without its scheme, e.g. "agency.example/alerts?key=1": no file of that name exists, and
/// its query or user name may be a key.
bool lacksScheme(const std::string& text) {
  std::error_code error;
  return text.find("://") == std::string::npos && text.find_first_of("?@") != std::string::npos &&
         !std::filesystem::exists(text, error);
}

bool isLocation(const std::string& text) {
  if (isHttpURL(text) || text.starts_with("file://")) return true;
  return !text.empty() && text.find("://") == std::string::npos && !lacksScheme(text);
}

/// A location for an error message. Only the scheme is shown if it is not http(s), because the rest may
/// contain a password.
std::string printableLocation(const std::string& text) {
  if (lacksScheme(text)) return redacted("http://" + text).substr(7);
  const std::size_t scheme = text.find("://");
  if (scheme == std::string::npos || isHttpURL(text)) return redacted(text);
  return text.substr(0, scheme) + "://***";
}

void addLocation(CLI::App& app, const std::string& name, Texts& locations, const LocationHelp& help,
                 const char* about) {
  const auto take = [name, &locations](const Texts& texts) {
    for (const std::string& text : texts) {
      if (!isLocation(text))
        throw CLI::ValidationError(
            name, wrongValue(printableLocation(text),
                             "neither a file nor an address that starts with http:// or https://"));
    }
    locations = texts;
  };
  app.add_option_function<Texts>(name, take, about)
      ->type_name("PLACE")
      ->expected(1)
      ->take_all()
      ->required(help.areRequired);
}

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t start = std::min(text.find_first_not_of(" \t"), text.size());
  text.remove_prefix(start);
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

/// Parses "Name: value". Without a value the key is the value. The name is empty if the text is malformed.
FeedKeys::Field fieldIn(std::string_view text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view name = withoutBlanks(text.substr(0, end));
  const std::string_view value = withoutBlanks(text.substr(std::min(end + 1, text.size())));
  constexpr std::string_view kSigns = "!#$%&'*+-.^_`|~[]";
  const bool isName = std::ranges::all_of(name, [kSigns](char byte) {
    return isAsciiAlphanumeric(byte) || kSigns.find(byte) != std::string_view::npos;
  });
  const bool isPrintable = std::ranges::all_of(
      value, [](char byte) { return static_cast<unsigned char>(byte) >= ' ' && byte != '\x7F'; });
  if (!isName || !isPrintable) return {};
  return {std::string(name), std::string(value.empty() ? kKeyWord : value)};
}

void addFields(CLI::App& app, const std::string& name, char separator, std::vector<FeedKeys::Field>& fields,
               const std::string& about) {
  const auto take = [name, separator, &fields](const Texts& texts) {
    fields.clear();
    for (const std::string& text : texts) {
      fields.push_back(fieldIn(text, separator));
      if (fields.back().name.empty())
        throw CLI::ValidationError(name, "a value is not of the form NAME" + std::string(1, separator) +
                                             (separator == ':' ? " VALUE" : "VALUE"));
    }
  };
  app.add_option_function<Texts>(name, take, about)
      ->type_name(separator == ':' ? "'NAME: VALUE'" : "NAME")
      ->expected(1)
      ->take_all();
}

void addKeyCommand(CLI::App& app, const std::string& name, std::string& command, const std::string& about) {
  const auto take = [name, &command](const std::string& text) {
    const auto words = shellWords(text);
    if (!words || words->empty())
      throw CLI::ValidationError(name, "the command is empty, or a quote in it is not closed");
    command = text;
  };
  app.add_option_function<std::string>(name, take, about)->type_name("COMMAND");
}

/// The help texts of the three options.
struct KeyHelp {
  std::string header, queryKey, command;
};

void addKeysOf(CLI::App& app, const std::string& prefix, FeedOptions::Keys& keys, const KeyHelp& help) {
  addFields(app, "--" + prefix + "header", ':', keys.headers, help.header);
  addFields(app, "--" + prefix + "query-key", '=', keys.query, help.queryKey);
  addKeyCommand(app, "--" + prefix + "key-command", keys.command, help.command);
}

KeyHelp helpFor(const std::string& document) {
  return {"As --header, for " + document + " alone", "As --query-key, for " + document + " alone",
          "As --key-command, for " + document + " alone"};
}

}  // namespace

void addLocationOptions(CLI::App& app, FeedOptions& options, const LocationHelp& help) {
  addLocation(app, "--gtfs", options.gtfs, help, help.gtfs);
  addLocation(app, "--alerts", options.alerts, help, help.alerts);
}

void addKeyOptions(CLI::App& app, FeedOptions& options) {
  const std::string usualGroup = app.option_defaults()->get_group();
  app.option_defaults()->group("Keys");
  addKeysOf(app, "", options.keys,
            {"A header that the servers want, e.g. 'Authorization: apikey KEY'; the key is asked for",
             "A parameter that the servers want in the URL; its value, the key, is asked for",
             "A command that prints the key, which is then not asked for"});
  addKeysOf(app, "gtfs-", options.gtfsKeys, helpFor("the timetable"));
  addKeysOf(app, "alerts-", options.alertsKeys, helpFor("the alerts"));
  app.option_defaults()->group(usualGroup);
}

}  // namespace linewatch::app
