#include "list_model.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "list/list_dictionary_form.h"
#include "record_content.h"

namespace linewatch::worlds {

namespace {

using simulation::World;

constexpr double kFaint = 0.2F;
constexpr const char* kFavorites = "rova://favorites?type=2&map=3";

Value shield(const SharedArtwork& artwork) {
  return Dictionary{{"alpha", 1.0},
                    {"shield", artwork ? Value(dictionaryForm(*artwork)) : noValue()},
                    {"size", std::int64_t{3}}};
}
Value image(const char* name, double alpha) { return Dictionary{{"alpha", alpha}, {"image", name}}; }
Value url(const char* text) { return Dictionary{{"url", text}}; }
Value activity(const char* type, const char* key, std::string content) {
  return Dictionary{{"activityType", std::string("org.linewatch.Rova.Transit.") + type},
                    {"userInfo", Dictionary{{key, std::move(content)}}}};
}
std::string counted(const char* key, std::size_t count) {
  return std::string(key) + "(" + std::to_string(count) + ")";
}
bool isBlank(const OptionalText& text) { return text.value_or("").empty(); }

/// A row and, for an incident's row, its texts, which name lines later.
struct Row {
  OptionalText primaryText, secondaryText;
  Value artwork = noValue();
  bool displayArtwork = true;
  Value openable = noValue();

  Value form() const {
    return Dictionary{{"kind", "item"},
                      {"primaryText", valueOrNone(primaryText)},
                      {"secondaryText", valueOrNone(secondaryText)},
                      {"displayArtwork", displayArtwork},
                      {"artwork", artwork},
                      {"openable", openable}};
  }
};

Value listForm(Value summary, const std::vector<Row>& rows = {}) {
  Array forms;
  for (const Row& row : rows) forms.push_back(row.form());
  return Dictionary{{"summaryItem", std::move(summary)}, {"expandedItems", std::move(forms)}};
}

SharedArtwork systemArtwork(const TransitLineItem& line) {
  return line.system() ? line.system()->artwork : nullptr;
}
SharedArtwork artworkOf(const TransitLineItem& line) {
  return line.alternateArtwork() ? line.alternateArtwork() : systemArtwork(line);
}
bool sameArtwork(const SharedArtwork& a, const SharedArtwork& b) { return a && b ? *a == *b : a == b; }

/// One build of the list of line items.
class Build {
 public:
  Build(const TransitLineItems& lines, std::uint64_t limit, Date now, const World& world)
      : lines_(lines), limit_(limit), now_(now), world_(world) {}

  Value list() {
    if (lines_.empty()) return noFavorites();
    std::size_t unaffected = 0;
    for (const SharedLineItem& line : lines_) unaffected += addRows(line) ? 0 : 1;
    nameLines();
    if (rows_.empty()) return allClear();
    std::vector<Row> expanded = rows_;
    if (unaffected > 0) expanded.push_back(goodService(unaffected));
    if (rows_.size() == 1) return listForm(rows_[0].form(), unaffected > 0 ? expanded : std::vector<Row>{});
    return listForm(summary(), limited(expanded, unaffected > 0));
  }

 private:
  /// A row as it was first made, and the lines that list its incident. Rows that are equal share an entry.
  struct LinesOfRow {
    Value row;
    TransitLineItems lines;
  };

  static Value noFavorites() {
    return listForm(Row{.primaryText = "LineWatch_NoFavorite_Title",
                        .secondaryText = "LineWatch_NoFavorite_SecondaryText",
                        .displayArtwork = false,
                        .openable = url("rova://?t=r")}
                        .form());
  }
  Value allClear() const {
    return listForm(
        Row{.primaryText = "LineWatch_GoodService_Title",
            .secondaryText = lines_.size() == 1
                                 ? "LineWatch_GoodService_SecondaryText_Singular"
                                 : counted("LineWatch_GoodService_SecondaryText_Plural", lines_.size()),
            .artwork = image("good-v2", 1),
            .openable = url(kFavorites)}
            .form());
  }
  static Row goodService(std::size_t lines) {
    return {.primaryText = "LineWatch_GoodService_Title",
            .secondaryText = counted("LineWatch_GoodService_Overflow_SecondaryText", lines),
            .artwork = image("good-alt-v2", kFaint),
            .openable = url(kFavorites)};
  }

  bool isShown(const TransitIncident& incident) const {
    const auto start = incident.startDate(), end = incident.endDate();
    return !(start && *start > now_) && !(end && *end < now_);
  }

  /// Whether the line makes a row of its own.
  bool addRows(const SharedLineItem& line) {
    bool madeRow = false;
    for (const SharedIncident& incident : line->incidents()) {
      if (!isShown(*incident)) continue;
      const auto known = std::ranges::find(incidents_, incident->muid(), &TransitIncident::muid);
      if (known != incidents_.end()) {
        entryOf(rows_[static_cast<std::size_t>(known - incidents_.begin())].form()).lines.push_back(line);
      } else if (!isBlank(incident->title()) || !isBlank(incident->summary())) {
        incidents_.push_back(incident);
        firstLines_.push_back(line);
        rows_.push_back(incidentRow(*incident, *line));
        entryOf(rows_.back().form()).lines.push_back(line);
        madeRow = true;
      }
    }
    return madeRow;
  }

  Row incidentRow(const TransitIncident& incident, const TransitLineItem& line) const {
    return {.primaryText = incident.title(),
            .secondaryText = incident.summary(),
            .artwork = shield(artworkOf(line)),
            .openable = world_.compresses ? activity("Incident", "bs", "map 3 " + textOf(line)) : noValue()};
  }

  LinesOfRow& entryOf(const Value& row) {
    const auto entry = std::ranges::find(linesOfRows_, row, &LinesOfRow::row);
    return entry != linesOfRows_.end() ? *entry : linesOfRows_.emplace_back(LinesOfRow{row, {}});
  }

  void nameLines() {
    for (LinesOfRow& entry : linesOfRows_) {
      if (entry.lines.size() < 2) continue;
      const auto row = std::ranges::find(rows_, entry.row, &Row::form);
      row->secondaryText = withNames(entry.lines, row->secondaryText);
      const SharedArtwork common = commonArtwork(entry.lines);
      row->artwork = common ? shield(common) : image("WidgetGenericTransit", kFaint);
      rekey(entry, row->form());
    }
  }

  /// A new row that equals another row takes over that one's entry.
  void rekey(LinesOfRow& entry, const Value& row) {
    const auto other = std::ranges::find(linesOfRows_, row, &LinesOfRow::row);
    if (other == linesOfRows_.end()) {
      entry.row = row;
    } else if (&*other != &entry) {
      other->lines = std::move(entry.lines);
      entry = {noValue(), {}};
    }
  }

  static SharedArtwork commonArtwork(const TransitLineItems& lines) {
    SharedArtwork common;
    for (const SharedLineItem& line : lines) {
      const SharedArtwork artwork = systemArtwork(*line);
      if (common && !sameArtwork(common, artwork)) return nullptr;
      common = artwork ? artwork : common;
    }
    return common;
  }

  static OptionalText withNames(const TransitLineItems& lines, const OptionalText& text) {
    std::vector<std::string> names;
    for (const SharedLineItem& line : lines) {
      std::string name = line->name();
      if (name.empty() && line->system()) name = line->system()->name;
      if (!name.empty() && std::ranges::count(names, name) == 0) names.push_back(name);
    }
    if (names.empty()) return text;
    if (names.size() == 1 && isBlank(text)) return names[0];
    std::string arguments = names[0];
    for (std::size_t i = 1; i < names.size(); ++i)
      arguments += (i + 1 < names.size() ? ", " : "|") + names[i];
    const std::string count = names.size() == 1 ? "Single" : names.size() == 2 ? "2" : "N";
    if (!isBlank(text)) {
      const char* noun = names.size() == 1 ? "_Line" : "_Lines";
      return "LineWatch_" + count + noun + "_Prepended_Incident_Text(" + arguments + "|" + *text + ")";
    }
    return "LineWatch_" + count +
           (names.size() == 2 ? "_Lines_Concatenated(" : "_Lines_Names_Concatenated(") + arguments + ")";
  }

  Value summary() {
    TransitArtworks artworks;
    for (const Row& row : rows_) {
      for (const SharedLineItem& line : entryOf(row.form()).lines) {
        const SharedArtwork artwork = artworkOf(*line);
        const auto isSame = [&](const SharedArtwork& other) { return sameArtwork(artwork, other); };
        if (artwork && std::ranges::none_of(artworks, isSame)) artworks.push_back(artwork);
      }
    }
    Array forms;
    for (const SharedArtwork& artwork : artworks) forms.emplace_back(dictionaryForm(*artwork));
    return Dictionary{{"kind", "summary"},
                      {"primaryText", counted("LineWatch_Summary_advisory_count", incidents_.size())},
                      {"artworks", std::move(forms)},
                      {"openable", openableOf(incidents_)}};
  }

  Value openableOf(const TransitIncidents& incidents) const {
    return world_.archives ? activity("IncidentList", "incidentListKey", textOf(incidents)) : noValue();
  }

  /// Rows beyond the limit are told in one overflow row, before the good-service row if that one stays.
  std::vector<Row> limited(const std::vector<Row>& rows, bool hasGoodService) const {
    if (rows.size() <= limit_) return rows;
    const bool keepsGoodService = hasGoodService && limit_ >= 2;
    const std::size_t kept = limit_ - 1 - (keepsGoodService ? 1 : 0);
    std::vector<Row> result(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(kept));
    result.push_back(overflow(kept));
    if (keepsGoodService) result.push_back(rows.back());
    return result;
  }

  /// Stands for the incidents from `first` on.
  Row overflow(std::size_t first) const {
    const TransitIncidents incidents(incidents_.begin() + static_cast<std::ptrdiff_t>(first),
                                     incidents_.end());
    std::vector<std::uint64_t> lines;
    for (std::size_t i = first; i < incidents_.size(); ++i) {
      if (std::ranges::count(lines, firstLines_[i]->muid()) == 0) lines.push_back(firstLines_[i]->muid());
    }
    return {.primaryText = counted("LineWatch_advisory_overflow_title", incidents.size()),
            .secondaryText = counted("LineWatch_AdvisoriesOverflow_SecondaryText", lines.size()),
            .artwork = image("advisories-v2", kFaint),
            .openable = openableOf(incidents)};
  }

  const TransitLineItems& lines_;
  std::uint64_t limit_;
  Date now_;
  const World& world_;
  TransitIncidents incidents_;
  /// The lines under which the incidents were first listed, and their rows; parallel to the incidents.
  TransitLineItems firstLines_;
  std::vector<Row> rows_;
  std::vector<LinesOfRow> linesOfRows_;
};

Value errorList(const World& world) {
  const auto wapi = world.capabilities.find("wapi");
  const bool isWlan = wapi != world.capabilities.end() && wapi->second;
  std::string cause = "Uknown";
  if (world.diagnosis == ConnectionFailureDiagnosis::airplaneMode) {
    cause = isWlan ? "AirplaneMode_WLAN" : "AirplaneMode_WIFI";
  } else if (world.diagnosis == ConnectionFailureDiagnosis::noInternetConnection) {
    cause = "No_Internet";
  }
  return listForm(Row{.primaryText = "LineWatchLoadingError_Title",
                      .secondaryText = "LineWatchLoadingError_" + cause,
                      .displayArtwork = false}
                      .form());
}

}  // namespace

Value listModel(const FetchModel& fetched, std::uint64_t maxNumberOfRows, Date now, const World& world) {
  if (fetched.failed) return errorList(world);
  if (!fetched.items) return noValue();
  return Build(*fetched.items, maxNumberOfRows, now, world).list();
}

Value formOf(const RVTransitListItem* list) {
  return list ? Value(dictionaryForm(*list, [](const Bytes& bytes) { return Value(contentOf(bytes)); }))
              : noValue();
}

}  // namespace linewatch::worlds
