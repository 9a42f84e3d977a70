#include "status/status_document.h"

#include <array>

namespace linewatch {

namespace {

// Both in the order of the enumerations.
constexpr std::array<std::string_view, 4> kStateWords = {"allClear", "incidents", "unknown", "noFavorites"};
constexpr std::array<std::string_view, 4> kSeverityWords = {"unknown", "info", "warning", "severe"};

// A string, because many JSON readers do not keep 64 bits of a number.
Value idForm(std::uint64_t muid) { return std::to_string(muid); }

Value textForm(const std::string& text) { return text.empty() ? noValue() : Value(text); }

Value lineForm(const StatusLine& line, const TransitStatus& status) {
  Array ids;
  for (const std::size_t incident : line.incidents) ids.push_back(idForm(status.incidents.at(incident).muid));
  return Dictionary{{"id", idForm(line.muid)},
                    {"name", line.name},
                    {"agency", textForm(line.agency)},
                    {"status", ids.empty() ? "good" : "incidents"},
                    {"incidents", std::move(ids)}};
}

Value incidentForm(const StatusIncident& incident) {
  return Dictionary{{"id", idForm(incident.muid)},
                    {"title", textForm(incident.title)},
                    {"summary", textForm(incident.summary)},
                    {"blocking", incident.isBlocking},
                    {"severity", nameOf(incident.severity)}};
}

}  // namespace

Dictionary statusForm(const TransitStatus& status, const std::string& summary) {
  Array lines, incidents;
  for (const StatusLine& line : status.lines) lines.push_back(lineForm(line, status));
  for (const StatusIncident& incident : status.incidents) incidents.push_back(incidentForm(incident));
  return {{"version", kStatusDocumentVersion},
          {"state", nameOf(status.state)},
          {"summary", summary},
          {"lines", std::move(lines)},
          {"incidents", std::move(incidents)},
          {"unknownCount", std::uint64_t{status.unknownCount}},
          {"unknownLines", Array(status.unknownLines.begin(), status.unknownLines.end())},
          {"error", textForm(status.error)},
          {"received", status.received ? Value(description(*status.received)) : noValue()},
          {"sampleCity", status.isSampleCity}};
}

std::string_view nameOf(TransitStatus::State state) {
  return kStateWords.at(static_cast<std::size_t>(state));
}

std::string_view nameOf(StatusSeverity severity) {
  return kSeverityWords.at(static_cast<std::size_t>(severity));
}

}  // namespace linewatch
