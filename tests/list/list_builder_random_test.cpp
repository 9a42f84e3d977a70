// Compares the lists of random cities with a simple, slow model. In the model rows are texts, and maps are
// lists that are searched from the start.

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "activity/bzip2_compression.h"
#include "activity/openable_url.h"
#include "activity/rova_activity.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/transit_records.h"
#include "platform/transit_storage_incident.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

/// A row or the summary as texts. Rows that differ have different texts.
struct ModelRow {
  std::string primary, secondary, artwork, opens;
  auto operator<=>(const ModelRow&) const = default;
};
std::ostream& operator<<(std::ostream& out, const ModelRow& row) {
  return out << row.primary << " / " << row.secondary << " / " << row.artwork << " / " << row.opens;
}

struct List {
  ModelRow summary;
  std::vector<ModelRow> rows;
  bool operator==(const List&) const = default;
};

std::string shieldOf(const SharedArtwork& artwork) {
  return artwork ? artwork->shieldDataSource->shieldText.value_or("") : "none";
}
std::string shown(const OptionalText& text) { return text.value_or("(absent)"); }
std::string incidentList(const TransitIncidents& incidents) {
  std::string text = "incidents";
  for (const SharedIncident& incident : incidents) text += " " + std::to_string(incident->muid());
  return text;
}
const std::string kGoodServiceURL = "rova://favorites?type=2&map=3";

/// The simple model.
class PlainList {
 public:
  PlainList(const TransitLineItems& lines, std::size_t limit) : lines_(lines), limit_(limit) { collect(); }

  List list() {
    if (lines_.empty()) {
      return {{"LineWatch_NoFavorite_Title", "LineWatch_NoFavorite_SecondaryText", "-", "rova://?t=r"}, {}};
    }
    nameLines();
    if (rows_.empty()) {
      const std::string text =
          lines_.size() == 1 ? "Singular" : "Plural(" + std::to_string(lines_.size()) + ")";
      return {{"LineWatch_GoodService_Title", "LineWatch_GoodService_SecondaryText_" + text, "good-v2 at 1",
               kGoodServiceURL},
              {}};
    }
    if (rows_.size() == 1) {
      List list{rows_[0], {}};
      if (unaffected_ > 0) list.rows = {rows_[0], goodService()};
      return list;
    }
    return {summary(), limited()};
  }

 private:
  using Lines = std::vector<const TransitLineItem*>;

  static bool isShown(const TransitIncident& incident) {
    return !incident.startDate() && !incident.endDate();
  }

  Lines* linesOf(const ModelRow& row) {
    for (auto& [key, lines] : table_)
      if (key == row) return &lines;
    return nullptr;
  }

  void collect() {
    for (const SharedLineItem& line : lines_) {
      bool madeRow = false;
      for (const SharedIncident& incident : line->incidents()) {
        if (!isShown(*incident)) continue;
        const auto known =
            std::ranges::find(incidents_, incident->muid(), [](const auto& i) { return i->muid(); });
        if (known != incidents_.end()) {
          linesOf(rows_[static_cast<std::size_t>(known - incidents_.begin())])->push_back(line.get());
          continue;
        }
        if (incident->title().value_or("").empty() && incident->summary().value_or("").empty()) continue;
        const SharedArtwork& artwork =
            line->alternateArtwork() ? line->alternateArtwork() : systemArtwork(*line);
        const ModelRow row{shown(incident->title()), shown(incident->summary()), shieldOf(artwork) + " at 1",
                           "line " + std::to_string(line->muid())};
        incidents_.push_back(incident);
        firstLines_.push_back(line->muid());
        rows_.push_back(row);
        if (Lines* lines = linesOf(row)) {
          lines->push_back(line.get());
        } else {
          table_.push_back({row, {line.get()}});
        }
        madeRow = true;
      }
      if (!madeRow) ++unaffected_;
    }
  }

  static SharedArtwork systemArtwork(const TransitLineItem& line) {
    return line.system() ? line.system()->artwork : nullptr;
  }

  void nameLines() {
    std::vector<ModelRow> keys;
    for (const auto& entry : table_) keys.push_back(entry.first);
    for (const ModelRow& key : keys) {
      const Lines* found = linesOf(key);
      if (found == nullptr || found->size() < 2) continue;
      const Lines lines = *found;
      ModelRow named{key.primary, prepended(lines, key.secondary), commonArtwork(lines), key.opens};
      *std::ranges::find(rows_, key) = named;
      std::erase_if(table_, [&](const auto& entry) { return entry.first == key || entry.first == named; });
      table_.push_back({named, lines});
    }
  }

  static std::string commonArtwork(const Lines& lines) {
    std::string common = "none";
    for (const TransitLineItem* line : lines) {
      const std::string shield = shieldOf(systemArtwork(*line));
      if (common == "none") {
        common = shield;
      } else if (shield != common) {
        common = "none";
        break;
      }
    }
    return common == "none" ? "WidgetGenericTransit at 0.20000000298023224" : common + " at 1";
  }

  static std::string prepended(const Lines& lines, const std::string& text) {
    std::vector<std::string> names;
    for (const TransitLineItem* line : lines) {
      std::string name = line->name();
      if (name.empty() && line->system()) name = line->system()->name;
      if (!name.empty() && std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    if (names.empty()) return text;
    std::string start = names[0];
    for (std::size_t i = 1; i + 1 < names.size(); ++i) start += ", " + names[i];
    if (names.size() > 1) start += "|" + names.back();
    const std::string number = names.size() == 1 ? "Single_Line" : names.size() == 2 ? "2_Lines" : "N_Lines";
    if (!text.empty() && text != "(absent)") {
      return "LineWatch_" + number + "_Prepended_Incident_Text(" + start + "|" + text + ")";
    }
    if (names.size() == 1) return start;
    return "LineWatch_" + number + (names.size() == 2 ? "_Concatenated(" : "_Names_Concatenated(") + start +
           ")";
  }

  ModelRow summary() {
    std::vector<std::string> shields;
    for (const ModelRow& row : rows_) {
      const Lines* lines = linesOf(row);
      if (lines == nullptr) continue;
      for (const TransitLineItem* line : *lines) {
        const std::string shield =
            shieldOf(line->alternateArtwork() ? line->alternateArtwork() : systemArtwork(*line));
        if (shield != "none" && std::ranges::find(shields, shield) == shields.end())
          shields.push_back(shield);
      }
    }
    std::string artworks;
    for (const std::string& shield : shields) artworks += shield + " ";
    return {"LineWatch_Summary_advisory_count(" + std::to_string(rows_.size()) + ")", "", artworks,
            incidentList(incidents_)};
  }

  ModelRow goodService() const {
    return {"LineWatch_GoodService_Title",
            "LineWatch_GoodService_Overflow_SecondaryText(" + std::to_string(unaffected_) + ")",
            "good-alt-v2 at 0.20000000298023224", kGoodServiceURL};
  }

  /// Incident rows, then the overflow row, then the good-service row if there is room.
  std::vector<ModelRow> limited() const {
    const bool hasGood = unaffected_ > 0;
    std::vector<ModelRow> all = rows_;
    if (hasGood) all.push_back(goodService());
    if (limit_ == 0 || all.size() <= limit_) return all;
    const std::size_t last = hasGood && limit_ >= 2 ? 1 : 0, kept = limit_ - 1 - last;
    std::vector<ModelRow> rows(rows_.begin(), rows_.begin() + static_cast<std::ptrdiff_t>(kept));
    rows.push_back(overflow(kept));
    if (last == 1) rows.push_back(goodService());
    return rows;
  }

  ModelRow overflow(std::size_t kept) const {
    std::vector<std::uint64_t> lines;
    for (std::size_t i = kept; i < incidents_.size(); ++i)
      if (std::ranges::find(lines, firstLines_[i]) == lines.end()) lines.push_back(firstLines_[i]);
    return {"LineWatch_advisory_overflow_title(" + std::to_string(incidents_.size() - kept) + ")",
            "LineWatch_AdvisoriesOverflow_SecondaryText(" + std::to_string(lines.size()) + ")",
            "advisories-v2 at 0.20000000298023224",
            incidentList({incidents_.begin() + static_cast<std::ptrdiff_t>(kept), incidents_.end()})};
  }

  const TransitLineItems& lines_;
  std::size_t limit_, unaffected_ = 0;
  TransitIncidents incidents_;
  std::vector<std::uint64_t> firstLines_;
  std::vector<ModelRow> rows_;
  std::vector<std::pair<ModelRow, Lines>> table_;
};

/// The list of the real builder, as the same texts.
class Reading {
 public:
  explicit Reading(const TransitLineItems& lines) {
    for (const SharedLineItem& line : lines) {
      RovaActivity activity;
      activity.setLineItem(std::make_shared<TransitStorageLineItem>(*line));
      activity.setDisplayOptions(std::make_shared<UrlDisplayOptions>());
      activity.displayOptions()->setMapType(3);
      lineOfBytes_.emplace(*bzip2CompressedData(activity.data()), "line " + std::to_string(line->muid()));
    }
  }

  List read(const RVTransitListItem& list) const {
    List result;
    if (const auto* item = std::get_if<SharedTransitItem>(&list.summaryItem())) {
      result.summary = read(**item);
    } else {
      const auto& summary = *std::get<std::shared_ptr<const RVTransitSummaryItem>>(list.summaryItem());
      result.summary.primary = shown(summary.primaryText());
      for (const SharedArtwork& artwork : *summary.artworks())
        result.summary.artwork += shieldOf(artwork) + " ";
      result.summary.opens = read(summary.userActivityData().get());
    }
    for (const SharedTransitItem& item : *list.expandedItems()) result.rows.push_back(read(*item));
    return result;
  }

 private:
  ModelRow read(const RVTransitItem& item) const {
    return {shown(item.primaryText()), shown(item.secondaryText()), read(item.artwork().get()),
            read(item.openable().get())};
  }

  static std::string read(const RVConfiguredArtwork* artwork) {
    if (artwork == nullptr) return "-";
    const std::string alpha = " at " + Value(artwork->alpha()).description();
    if (const auto* image = dynamic_cast<const NamedImage*>(artwork->artworkSource().get()))
      return image->name() + alpha;
    return shieldOf(dynamic_cast<const SizedTransitArtwork&>(*artwork->artworkSource()).artworkDataSource()) +
           alpha;
  }

  std::string read(const RVOpenable* openable) const {
    if (const auto* url = dynamic_cast<const OpenableURL*>(openable)) return url->url().absoluteString;
    const auto& data = dynamic_cast<const RVUserActivityData&>(*openable);
    if (data.activityType() == "org.linewatch.Rova.Transit.Incident") {
      const auto line = lineOfBytes_.find(*data.userInfo()->at("bs").get<Bytes>());
      return line == lineOfBytes_.end() ? "unknown line" : line->second;
    }
    EXPECT_EQ(data.activityType(), "org.linewatch.Rova.Transit.IncidentList");
    return incidentsOf(*data.userInfo()->at("incidentListKey").get<Bytes>());
  }

  static std::string incidentsOf(const Bytes& archive) {
    const std::string name(TransitStorageIncident::kArchiveClassName);
    const auto unarchiver = platform().keyedArchiver().openForReading(archive);
    unarchiver->setFactory(name, TransitStorageIncident::makeWithDecoder);
    std::optional<Error> error;
    const auto root = unarchiver->decodeTopLevelObject({name, std::string(kArchivedArrayClass)}, error);
    TransitIncidents incidents;
    for (const ArchivedObject& object : std::get<ArchivedList>(root->contents)) {
      incidents.push_back(std::dynamic_pointer_cast<const TransitIncident>(
          std::get<std::shared_ptr<const Archivable>>(object.contents)));
    }
    return incidentList(incidents);
  }

  std::map<Bytes, std::string> lineOfBytes_;
};

/// A small city with many duplicates: names, texts, artworks, incidents and whole lines.
class RandomCity {
 public:
  explicit RandomCity(std::uint64_t seed) : random_(seed) {}

  TransitLineItems lines() {
    std::vector<SharedArtwork> shields = {nullptr};
    for (const char* text : {"M", "M", "T"}) {
      shields.push_back(std::make_shared<const TransitArtworkDataSource>(
          TransitArtworkDataSource{.shieldDataSource = ShieldDataSource{.shieldText = text}}));
    }
    TransitIncidents incidents;
    for (std::uint64_t count = oneOf(8); count > 0; --count) incidents.push_back(incident());
    TransitLineItems lines;
    for (std::uint64_t count = oneOf(7); count > 0; --count) {
      if (!lines.empty() && oneOf(6) == 0) {
        lines.push_back(lines[oneOf(lines.size())]);
        continue;
      }
      TransitLineFields fields{.muid = lines.size() + 1, .name = text({"", "A", "A", "B", "C", "D"})};
      fields.alternateArtwork = oneOf(2) == 0 ? nullptr : shields[oneOf(shields.size())];
      if (oneOf(4) != 0) {
        fields.system = std::make_shared<const TransitSystem>(
            TransitSystem{.name = text({"", "Metro"}), .artwork = shields[oneOf(shields.size())]});
      }
      TransitIncidents listed;
      for (std::uint64_t left = incidents.empty() ? 0 : oneOf(5); left > 0; --left)
        listed.push_back(incidents[oneOf(incidents.size())]);
      lines.push_back(std::make_shared<const TransitLineRecord>(std::move(fields), std::move(listed)));
    }
    return lines;
  }

  std::uint64_t oneOf(std::uint64_t count) { return random_() % count; }

 private:
  std::string text(std::vector<std::string> choices) { return choices[oneOf(choices.size())]; }

  SharedIncident incident() {
    TransitIncidentFields fields{.muid = oneOf(10)};
    if (oneOf(4) != 0) fields.title = text({"", "Strike", "Works"});
    if (oneOf(4) != 0)
      fields.summary = text({"", "T", "A", "LineWatch_Single_Line_Prepended_Incident_Text(A|T)"});
    if (oneOf(8) == 0) fields.endDate = Date(Seconds(0));
    if (oneOf(8) == 0) fields.startDate = Date(Seconds(1e12));
    return std::make_shared<const TransitIncidentRecord>(std::move(fields));
  }

  std::mt19937_64 random_;
};

using ListBuilderAtRandom = PlatformTest;

TEST_F(ListBuilderAtRandom, BuildsTheSameListsAsAPlainModel) {
  constexpr std::uint64_t kSeed = 20261124;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  RandomCity city(kSeed);
  for (int round = 0; round < 400 && !testing::Test::HasFailure(); ++round) {
    const auto lines = std::make_shared<const TransitLineItems>(city.lines());
    const std::uint64_t limit = city.oneOf(6);
    const auto list =
        RVTransitDataSourceBuilderForResult(RVResult(lines), limit, nullptr, nullptr)->listItem();
    const List built = Reading(*lines).read(*list), expected = PlainList(*lines, limit).list();
    EXPECT_EQ(built.summary, expected.summary) << "round " << round;
    EXPECT_THAT(built.rows, testing::ElementsAreArray(expected.rows)) << "round " << round;
  }
}

}  // namespace
}  // namespace linewatch
