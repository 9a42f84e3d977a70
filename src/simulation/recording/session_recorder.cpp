#include "simulation/recording/session_recorder.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "incidents/result.h"
#include "platform/companion_application.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/preferences_store.h"
#include "simulation/recording/recording_text.h"
#include "simulation/roles/simulated_host.h"
#include "ui/interface_settings.h"
#include "ui/notification_center.h"
#include "widget/transit_incidents_view_controller.h"
#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

/// The memory of the answer without its entries, about.
std::size_t bytesOfAnswer(const RecordedAnswer& answer) {
  std::size_t bytes = sizeof answer;
  if (!answer.lines) return bytes;
  for (const RecordedAnswer::Line& line : *answer.lines)
    bytes += sizeof line + line.incidents.size() * sizeof(SharedEntry);
  return bytes;
}

std::size_t bytesOfFavorites(const RecordedFavorites& favorites) {
  std::size_t bytes = 0;
  for (const std::string& text : favorites.texts)
    bytes += text.size() + sizeof(std::string) + sizeof(SharedEntry);
  return bytes;
}

/// The keys of the host that change, but for its bounds.
JsonMembers hostChanges(const WorldHost& from, const WorldHost& to) {
  JsonMembers changes;
  const auto addSize = [&changes](std::string_view key, const Size& before, const Size& now) {
    if (before != now) changes.emplace_back(key, jsonText(Array{now.width, now.height}));
  };
  addSize("compact", from.compact, to.compact);
  addSize("expanded", from.expanded, to.expanded);
  if (from.activeMode != to.activeMode) changes.emplace_back("activeMode", jsonQuoted(nameOf(to.activeMode)));
  return changes;
}

constexpr const char* kInjectFakeIncidentsKey = "Rova.LineWatch.internal.injectFakeIncidents";
constexpr const char* kRandomNumberIncidentsKey = "Rova.LineWatch.internal.randomNumberIncidents";

/// The preferences that the widget reads, without its saved list. False ones are left out.
Dictionary recordedPreferences(Platform& platform) {
  const auto store = platform.makePreferencesStore(kCompanionAppGroupSuite);
  Dictionary values;
  for (const char* const key : {kInjectFakeIncidentsKey, kRandomNumberIncidentsKey}) {
    if (store->boolForKey(key)) values.emplace(key, true);
  }
  return values;
}

}  // namespace

void FavoritesOfFetch::set(Outcome<Favorites> favorites) {
  const MutexLock lock(mutex_);
  favorites_ = std::move(favorites);
}

std::optional<Outcome<Favorites>> FavoritesOfFetch::take() {
  const MutexLock lock(mutex_);
  return std::exchange(favorites_, std::nullopt);
}

std::shared_ptr<SessionRecorder> SessionRecorder::make(const Limits& limits) {
  return std::shared_ptr<SessionRecorder>(new SessionRecorder(limits));
}

void SessionRecorder::setPlatform(Platform& platform, RecordedRecords::WidthOf widthOf) {
  platform_ = &platform;
  widthOf_ = std::move(widthOf);
}

std::optional<std::string> SessionRecorder::scenario() {
  if (segments_.empty()) return std::nullopt;
  noteHost();
  auto segments = segments_;
  segments.back().events.push_back(
      {.time = now(), .what = jsonText(written(step::Snapshot{})), .isInNewTurn = true});
  return recordingText(world_, segments);
}

// ---- The host ----

void SessionRecorder::hostDidLoad(const std::shared_ptr<RVTransitIncidentsViewController>& controller,
                                  const Size& bounds) {
  const Seconds sinceEpoch = platform_->mainLoop().now().time_since_epoch();
  world_.start = Date(Seconds(std::floor(sinceEpoch.count())));
  const ui::InterfaceSettings& settings = platform_->interfaceSettings();
  world_.layoutDirection = settings.layoutDirection();
  world_.scale = settings.displayScale();
  records_.emplace(world_.start, widthOf_);
  controller_ = controller;
  world_.preferences = recordedPreferences(*platform_);
  host_ = {.bounds = bounds};
  host_ = hostNow();
  textSize_ = settings.textSizeCategory();
  segments_.push_back(segmentNow());
  platform_->notificationCenter().addObserver(shared_from_this(), ui::kTextSizeDidChangeNotification,
                                              [this] { textSizeDidPost(); });
}

void SessionRecorder::hostWillShow() {
  isShown_ = true;
  add(step::Appear{});
  snapshotTime_ = lastTime_;
}

void SessionRecorder::hostWillHide() {
  isShown_ = false;
  add(step::Disappear{});
}

void SessionRecorder::hostWillAskForUpdate() { add(step::Update{"u" + std::to_string(++updates_)}); }

void SessionRecorder::hostWillChangeMode(WidgetDisplayMode mode) {
  add(step::DisplayMode{mode});
  host_.activeMode = mode;
}

void SessionRecorder::hostWillResize(const Size& size) { add(step::Resize{size.width, size.height}); }

void SessionRecorder::hostWillTap(std::size_t row) {
  add(step::Tap{row});
  if (!segments_.empty()) segments_.back().events.back().isTap = true;
}

/// The snapshot follows when the turn that changed the rows has ended.
void SessionRecorder::hostDidShowContent() { snapshotTime_ = now(); }

/// The panel announces a text size also when the widget is to ask for its limits again.
void SessionRecorder::textSizeDidPost() {
  const ui::TextSizeCategory category = platform_->interfaceSettings().textSizeCategory();
  if (std::exchange(textSize_, category) != category) return add(step::TextSize{category});
  host_ = hostNow();
  add(step::Limits{host_.compact, host_.expanded});
}

// ---- The platform ----

std::shared_ptr<FavoritesOfFetch> SessionRecorder::fetchDidBegin() {
  noteHost();
  fetch_ = std::make_shared<FavoritesOfFetch>();
  if (!isShown_ || !records_) return fetch_;
  segments_.push_back(segmentNow());
  lastTime_ = segments_.back().time;
  trim();
  return fetch_;
}

void SessionRecorder::serviceWillAnswer(const std::shared_ptr<const TransitLineItems>& items,
                                        const std::optional<Error>& error) {
  noteHost();
  if (segments_.empty()) return;
  auto answer = recordedAnswer(items, error);
  if (!answer) return segments_.clear();
  if (answer_ && *answer_ == *answer) answer = answer_;
  const std::size_t bytes = answer == answer_ ? 0 : bytesOfAnswer(*answer);
  answer_ = answer;
  items_ = items;
  // Events before the answer in the same microsecond stay before it.
  addEvent({.time = std::max(now(), lastTime_ + 1), .what = std::move(answer)}, bytes);
  if (world_.preferences.contains(kInjectFakeIncidentsKey)) drawn_.emplace();
}

std::shared_ptr<const RecordedAnswer> SessionRecorder::recordedAnswer(
    const std::shared_ptr<const TransitLineItems>& items, const std::optional<Error>& error) {
  if (items && tooLarge_.lock() == items) return nullptr;
  auto answer = records_->answer(items.get(), error, limits_.bytes);
  if (!answer) tooLarge_ = items;
  return answer;
}

/// The list that the widget shows. It need not be an answer: it may be the saved one.
std::shared_ptr<const RecordedAnswer> SessionRecorder::recordedList() {
  const auto controller = controller_.lock();
  const auto result = controller ? controller->dataSource()->transitLineItemResult() : nullptr;
  if (!result) return nullptr;
  const auto items = result->successObject();
  if (answer_ && items && items_.lock() == items) return answer_;
  return recordedAnswer(items, result->error());
}

void SessionRecorder::serviceDidAnswer() {
  if (drawn_ && !drawn_->empty()) addBeforeLast({{"random", jsonText(*drawn_)}});
  drawn_.reset();
  if (answerHandler_) answerHandler_();
}

void SessionRecorder::randomSourceDidDraw(std::uint32_t number) {
  if (drawn_) drawn_->emplace_back(number);
}

void SessionRecorder::widgetWasTold(const std::string& key, const std::string& value) {
  if (std::exchange(told_[key], value) != value) addBeforeLast({{key, value}});
}

/// The tap may be some time ago.
void SessionRecorder::hostDidOpen(bool success) {
  const std::string value = success ? "true" : "false";
  const auto known = told_.try_emplace("opens", "true").first;
  if (std::exchange(known->second, value) == value) return;
  auto segment = segments_.rbegin();
  while (segment != segments_.rend()) {
    const auto tap = std::find_if(segment->events.rbegin(), segment->events.rend(),
                                  [](const RecordedEvent& event) { return event.isTap; });
    if (tap != segment->events.rend())
      return addBefore(std::prev(tap.base()), *segment, {{known->first, value}});
    segment->told.insert_or_assign(known->first, value);
    ++segment;
  }
}

// ---- Events ----

Microseconds SessionRecorder::now() const {
  const Seconds elapsed = platform_->mainLoop().now() - world_.start;
  // A clock that is set back stands still in the recording.
  return std::max(lastTime_, static_cast<Microseconds>(std::llround(elapsed.count() * 1e6)));
}

RecordedSegment SessionRecorder::segmentNow() {
  const auto controller = controller_.lock();
  return {.time = now(),
          .list = recordedList(),
          .isExpanded = controller && controller->dataSource()->isExpanded(),
          .isShown = isShown_,
          .host = host_,
          .textSize = textSize_,
          .told = told_};
}

void SessionRecorder::addText(const Dictionary& step) {
  noteHost();
  std::string text = jsonText(step);
  const std::size_t bytes = text.size();
  addEvent({.time = now(), .what = std::move(text)}, bytes);
}

/// `bytes`: the memory that the event needs beside itself.
void SessionRecorder::addEvent(RecordedEvent event, std::size_t bytes) {
  if (segments_.empty()) return;
  lastTime_ = event.time;
  event.isInNewTurn = std::exchange(isInNewTurn_, false);
  watchTurn();
  segments_.back().bytes += bytes + sizeof event;
  segments_.back().events.push_back(std::move(event));
  trim();
}

/// Inserts a change of the world before an event. The change became known only after the event.
void SessionRecorder::addBefore(std::vector<RecordedEvent>::iterator place, RecordedSegment& segment,
                                const JsonMembers& changes) {
  std::string text = setText(changes);
  segment.bytes += text.size() + sizeof(RecordedEvent);
  const Microseconds time = place == segment.events.end() ? lastTime_ : place->time;
  // It takes the turn of the event.
  const bool isInNewTurn = place != segment.events.end() && std::exchange(place->isInNewTurn, false);
  segment.events.insert(place, {.time = time, .what = std::move(text), .isInNewTurn = isInNewTurn});
}

void SessionRecorder::addBeforeLast(const JsonMembers& changes) {
  if (segments_.empty()) return;
  auto& events = segments_.back().events;
  addBefore(events.empty() ? events.end() : std::prev(events.end()), segments_.back(), changes);
}

void SessionRecorder::watchTurn() {
  if (std::exchange(isTurnWatched_, true)) return;
  platform_->mainLoop().dispatchAsync([weakSelf = weak_from_this()] {
    if (const auto self = weakSelf.lock()) {
      self->isTurnWatched_ = false;
      self->isInNewTurn_ = true;
    }
  });
}

void SessionRecorder::noteFavorites() {
  const auto favorites = fetch_ ? fetch_->take() : std::nullopt;
  if (!favorites || segments_.empty()) return;
  RecordedSegment& segment = segments_.back();
  auto recorded = std::make_shared<const RecordedFavorites>(records_->favorites(*favorites));
  if (!favorites_ || *favorites_ != *recorded) {
    favorites_ = std::move(recorded);
    segment.bytes += bytesOfFavorites(*favorites_);
  }
  segment.favorites = favorites_;
}

void SessionRecorder::noteSnapshot() {
  if (const auto time = std::exchange(snapshotTime_, std::nullopt)) {
    std::string text = jsonText(written(step::Snapshot{}));
    const std::size_t bytes = text.size();
    addEvent({.time = *time, .what = std::move(text)}, bytes);
  }
}

/// Records a pending snapshot, and what of the host has changed without a word to the widget.
void SessionRecorder::noteHost() {
  noteFavorites();
  noteSnapshot();
  const WorldHost host = hostNow();
  const JsonMembers changes = hostChanges(host_, host);
  host_ = host;
  if (changes.empty()) return;
  std::string text = setText({{"host", objectText(changes)}});
  const std::size_t bytes = text.size();
  addEvent({.time = now(), .what = std::move(text)}, bytes);
}

WorldHost SessionRecorder::hostNow() const {
  WorldHost host = host_;
  const auto controller = controller_.lock();
  if (const auto context = controller ? controller->extensionContext() : nullptr) {
    host.compact = context->maximumSizeForDisplayMode(WidgetDisplayMode::compact);
    host.expanded = context->maximumSizeForDisplayMode(WidgetDisplayMode::expanded);
    host.activeMode = context->activeDisplayMode();
  }
  return host;
}

std::size_t SessionRecorder::bytes() const {
  std::size_t bytes = records_ ? records_->bytes() : 0;
  for (const RecordedSegment& segment : segments_) bytes += segment.bytes + sizeof segment;
  return bytes;
}

void SessionRecorder::trim() {
  const Microseconds oldest = lastTime_ - static_cast<Microseconds>(limits_.time.count() * 1e6);
  while (segments_.size() > 1 && (segments_[1].time <= oldest || bytes() > limits_.bytes))
    segments_.pop_front();
  if (bytes() > limits_.bytes) segments_.clear();
}

}  // namespace linewatch::simulation
