#include "simulation/recording/recording_text.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "simulation/roles/simulated_host.h"
#include "simulation/scenario/scenario_writing.h"
#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

std::string stepText(const Step& step) { return jsonText(written(step)); }

std::string arrayText(const std::vector<std::string>& elements) {
  std::string text = "[";
  for (const std::string& element : elements) text += (text.size() > 1 ? ", " : "") + element;
  return text + "]";
}

/// The keys of the entries as a JSON array.
std::string keysText(const std::vector<SharedEntry>& entries) {
  std::vector<std::string> keys;
  for (const SharedEntry& entry : entries) keys.push_back(jsonQuoted(entry->key));
  return arrayText(keys);
}

/// Writes the changes of the world that lead to the recorded answers, each entry once.
class WorldChanges {
 public:
  /// The keys to set before the answer.
  JsonMembers before(const RecordedAnswer& answer) {
    Tables tables;
    JsonMembers service;
    if (answer.error) {
      service = {{"answer", jsonQuoted("error")}, {"error", jsonText(written(*answer.error))}};
    } else if (answer.lines) {
      std::vector<std::string> keys;
      for (const RecordedAnswer::Line& line : *answer.lines) {
        addLine(tables, line.entry);
        addIncidents(tables, line);
        keys.push_back(jsonQuoted(line.entry->key));
      }
      service = {{"answer", jsonQuoted("lines")}, {"lines", arrayText(keys)}};
    } else {
      service = {{"answer", jsonQuoted("nothing")}};
    }
    JsonMembers changes = membersOf(tables);
    if (std::exchange(service_, service) != service) changes.emplace_back("service", objectText(service));
    return changes;
  }

  JsonMembers before(const RecordedFavorites& favorites) {
    if (favorites_ == favorites) return {};
    favorites_ = favorites;
    Tables tables;
    for (const SharedEntry& line : favorites.lines) addLine(tables, line);
    JsonMembers changes = membersOf(tables);
    changes.emplace_back("favorites", arrayText(favorites.texts));
    if (favorites.error != std::exchange(favoritesError_, favorites.error))
      changes.emplace_back("favoritesError", favorites.error ? jsonText(written(*favorites.error)) : "null");
    return changes;
  }

 private:
  struct Tables {
    /// By the name of the table.
    std::map<std::string_view, JsonMembers> tables;
    /// The keys of each line that change.
    std::map<std::string, std::string> lines;
  };

  static JsonMembers membersOf(const Tables& changed) {
    JsonMembers members;
    for (const auto& [name, table] : changed.tables) members.emplace_back(name, objectText(table));
    if (!changed.lines.empty())
      members.emplace_back("lines", objectText({changed.lines.begin(), changed.lines.end()}));
    return members;
  }

  /// Once in a scenario.
  void addEntry(Tables& tables, const SharedEntry& entry) {
    if (written_.insert(entry).second) tables.tables[entry->table].emplace_back(entry->key, entry->text);
  }
  void addLine(Tables& tables, const SharedEntry& line) {
    if (!written_.insert(line).second) return;
    for (const SharedEntry& needed : line->needed) {
      for (const SharedEntry& further : needed->needed) addEntry(tables, further);
      addEntry(tables, needed);
    }
    tables.lines.emplace(line->key, line->text);
  }
  void addIncidents(Tables& tables, const RecordedAnswer::Line& line) {
    for (const SharedEntry& incident : line.incidents) addEntry(tables, incident);
    std::vector<SharedEntry>& known = incidents_[line.entry];
    if (known == line.incidents) return;
    known = line.incidents;
    const std::string member = "\"incidents\": " + keysText(line.incidents) + "}";
    std::string& text = tables.lines[line.entry->key];
    text = text.empty() ? "{" + member : text.substr(0, text.size() - 1) + ", " + member;
  }

  std::unordered_set<SharedEntry> written_;
  std::unordered_map<SharedEntry, std::vector<SharedEntry>> incidents_;
  JsonMembers service_;
  RecordedFavorites favorites_;
  std::optional<Error> favoritesError_;
};

class RecordingWriter {
 public:
  RecordingWriter(World world, const std::deque<RecordedSegment>& segments)
      : world_(std::move(world)), segments_(segments) {}

  std::string text() {
    const RecordedSegment& first = segments_.front();
    const RecordedFavorites favorites = firstFavorites();
    JsonMembers changes;
    if (showsSomething(first)) {
      changes = addSavedList(first, favorites);
      addSet(changes_.before(favorites));
    } else {
      changes = changes_.before(favorites);
    }
    addStart(first);
    for (std::size_t i = 0; i < segments_.size(); ++i) {
      addEvents(segments_[i], i + 1 < segments_.size() ? &segments_[i + 1] : nullptr);
    }
    return scenarioText(worldMembers(first, std::move(changes)), steps_);
  }

 private:
  JsonMembers worldMembers(const RecordedSegment& first, JsonMembers changes) {
    world_.host = first.host;
    world_.host.activeMode = showsSomething(first) ? WidgetDisplayMode::compact : loadingMode(first);
    world_.textSize = first.textSize;
    world_.service.delay = std::nullopt;
    JsonMembers members;
    for (const auto& [key, value] : written(world_)) members.emplace_back(key, jsonText(value));
    members.insert(members.end(), first.told.begin(), first.told.end());
    members.insert(members.end(), changes.begin(), changes.end());
    return members;
  }

  void add(const Step& step) { steps_.push_back(stepText(step)); }
  void addSet(const JsonMembers& changes) {
    if (!changes.empty()) steps_.push_back(setText(changes));
  }
  void addActiveMode(WidgetDisplayMode mode) {
    addSet({{"host", objectText({{"activeMode", jsonQuoted(nameOf(mode))}})}});
  }
  void advanceTo(Microseconds time) {
    if (time > time_) add(step::Advance{Seconds(static_cast<double>(time - time_) / 1e6)});
    time_ = std::max(time, time_);
  }
  /// The clock may have stood still while the main loop ran.
  void advanceTo(const RecordedEvent& event) {
    if (event.isInNewTurn && event.time <= time_) add(step::Advance{});
    advanceTo(event.time);
  }
  void addAnswer(const RecordedAnswer& answer) {
    addSet(changes_.before(answer));
    add(step::Answer{});
  }

  /// The host's mode when the widget loads. A widget that is shown already is loaded in the compact mode.
  static WidgetDisplayMode loadingMode(const RecordedSegment& segment) {
    return segment.isShown ? WidgetDisplayMode::compact : segment.host.activeMode;
  }

  /// A new widget shows an empty list by itself.
  static bool showsSomething(const RecordedSegment& segment) {
    const auto& list = segment.list;
    return list && (segment.isExpanded || list->error || (list->lines && !list->lines->empty()));
  }

  RecordedFavorites firstFavorites() const {
    for (const RecordedSegment& segment : segments_) {
      if (segment.favorites) return *segment.favorites;
    }
    return {};
  }

  /// Another widget gets the list and saves it, so that the recorded one starts with it. Returns what the
  /// world needs for that.
  JsonMembers addSavedList(const RecordedSegment& segment, RecordedFavorites favorites) {
    const RecordedAnswer& list = *segment.list;
    if (list.lines && !list.lines->empty()) favorites = favoritesOf(*list.lines);
    JsonMembers world = changes_.before(favorites);
    add(step::Load{});
    add(step::Appear{});
    add(step::Advance{});
    // Without favourites the service is not asked, and the list is empty.
    if (!favorites.lines.empty()) addAnswer(list);
    if (segment.isExpanded) add(step::DisplayMode{WidgetDisplayMode::expanded});
    add(step::Disappear{});
    add(step::Restart{});
    const auto mode = segment.isExpanded ? WidgetDisplayMode::expanded : WidgetDisplayMode::compact;
    if (loadingMode(segment) != mode) addActiveMode(loadingMode(segment));
    return world;
  }
  static RecordedFavorites favoritesOf(const std::vector<RecordedAnswer::Line>& lines) {
    RecordedFavorites favorites;
    for (const RecordedAnswer::Line& line : lines) {
      WorldFavorite favorite;
      favorite.line = line.entry->key;
      favorites.texts.push_back(jsonText(written(favorite)));
      favorites.lines.push_back(line.entry);
    }
    return favorites;
  }

  void addStart(const RecordedSegment& segment) {
    advanceTo(segment.time);
    add(step::Load{});
    if (!segment.isShown) return;
    if (segment.isExpanded) addActiveMode(WidgetDisplayMode::expanded);
    add(step::Appear{});
  }

  /// The last event of a segment starts the next fetch, so the favourites change before it.
  void addEvents(const RecordedSegment& segment, const RecordedSegment* next) {
    for (const RecordedEvent& event : segment.events) {
      advanceTo(event);
      if (next && &event == &segment.events.back()) addFavorites(*next);
      add(event);
    }
    if (next && segment.events.empty()) addFavorites(*next);
  }
  void addFavorites(const RecordedSegment& segment) {
    if (segment.favorites) addSet(changes_.before(*segment.favorites));
  }
  void add(const RecordedEvent& event) {
    if (const auto* text = std::get_if<std::string>(&event.what)) {
      steps_.push_back(*text);
    } else {
      addAnswer(*std::get<std::shared_ptr<const RecordedAnswer>>(event.what));
    }
  }

  World world_;
  const std::deque<RecordedSegment>& segments_;
  WorldChanges changes_;
  std::vector<std::string> steps_;
  Microseconds time_ = 0;
};

}  // namespace

std::string recordingText(World world, const std::deque<RecordedSegment>& segments) {
  return RecordingWriter(std::move(world), segments).text();
}

}  // namespace linewatch::simulation
