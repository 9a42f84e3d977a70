#include "app/status_reading.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/iso_time.h"
#include "status/status_document.h"

namespace linewatch::app {

namespace {

using Json = nlohmann::json;

/// Empty for null.
std::string textIn(const Json& form, const char* key) {
  const Json& text = form.at(key);
  return text.is_null() ? std::string() : text.get<std::string>();
}

std::uint64_t idOf(const Json& form) {
  const auto& text = form.get_ref<const std::string&>();
  std::uint64_t id = 0;
  std::from_chars(text.data(), text.data() + text.size(), id);
  return id;
}

/// The value of an enumeration of four with this name.
template <class Enumeration>
Enumeration named(const Json& name) {
  for (std::size_t i = 0; i < 4; ++i) {
    if (nameOf(static_cast<Enumeration>(i)) == name.get_ref<const std::string&>())
      return static_cast<Enumeration>(i);
  }
  throw std::out_of_range("an unknown name");
}

StatusIncident incidentOf(const Json& form) {
  return {.muid = idOf(form.at("id")),
          .title = textIn(form, "title"),
          .summary = textIn(form, "summary"),
          .isBlocking = form.at("blocking").get<bool>(),
          .severity = named<StatusSeverity>(form.at("severity"))};
}

using IncidentIndexes = std::map<std::uint64_t, std::size_t>;

StatusLine lineOf(const Json& form, const IncidentIndexes& indexes) {
  StatusLine line{.muid = idOf(form.at("id")),
                  .name = textIn(form, "name"),
                  .agency = textIn(form, "agency"),
                  .incidents = {}};
  for (const Json& id : form.at("incidents")) line.incidents.push_back(indexes.at(idOf(id)));
  return line;
}

TransitStatus readStatus(const Json& form) {
  TransitStatus status{.state = named<TransitStatus::State>(form.at("state")),
                       .unknownCount = form.at("unknownCount").get<std::size_t>(),
                       .unknownLines = form.at("unknownLines").get<std::vector<std::string>>(),
                       .error = textIn(form, "error"),
                       .received = parseTime(textIn(form, "received")),
                       .isSampleCity = form.at("sampleCity").get<bool>()};
  IncidentIndexes indexes;
  for (const Json& each : form.at("incidents")) {
    status.incidents.push_back(incidentOf(each));
    indexes.emplace(status.incidents.back().muid, indexes.size());
  }
  for (const Json& each : form.at("lines")) status.lines.push_back(lineOf(each, indexes));
  return status;
}

}  // namespace

std::optional<TransitStatus> parseStatus(const std::string& json) {
  try {
    const Json form = Json::parse(json);
    if (form.at("version").get<int>() > kStatusDocumentVersion) return std::nullopt;
    return readStatus(form);
  } catch (const std::exception&) {
    // The library reports a wrong text or a missing member this way, and std::map a wrong reference.
    return std::nullopt;
  }
}

}  // namespace linewatch::app
