#include "widget_model.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>
#include <utility>
#include <variant>

#include "list/transit_item_data_source_builder.h"
#include "simulation/world/world_records.h"

namespace linewatch::worlds {

namespace {

using namespace simulation;

constexpr double kRefresh = 1800;
constexpr const char* kSavedKey = "Rova.LineWatch.savedUIData";

std::string text(double number) { return Value(number).description(); }

}  // namespace

struct WidgetModel::Performer {
  WidgetModel& model;
  bool resizeShows;

  void operator()(const step::Load&) const { model.load(); }
  void operator()(const step::Appear& appear) const {
    if (appear.will) model.appear();
  }
  void operator()(const step::Disappear& disappear) const {
    if (disappear.will) model.disappear();
  }
  void operator()(const step::Update& update) const { model.fetch(update.id); }
  void operator()(const step::Advance& advance) const { model.advance(advance.seconds.count()); }
  void operator()(const step::DisplayMode&) const { model.displayModeChanged(); }
  void operator()(const step::Resize& resize) const { model.resize(resize.width, resizeShows); }
  void operator()(const step::TextSize&) const { model.textSizeChanged(); }
  void operator()(const step::Set&) const { model.worldChanged(); }
  void operator()(const step::Release&) const {
    model.stopUpdater();
    model.controller_.reset();
    model.fetch_ = nullptr;
  }
  void operator()(const step::Restart&) const { model.restart(); }
  void operator()(const step::Tap&) const {}
  void operator()(const step::MemoryWarning&) const {}
  void operator()(const step::Snapshot&) const {}
  // Only recordings have these; the generator makes none.
  void operator()(const step::Limits&) const {}
  void operator()(const step::Answer&) const {}
};

void WidgetModel::perform(const Step& step, const SimulatedPlatform& platform, bool resizeShows) {
  platform_ = &platform;
  std::visit(Performer{*this, resizeShows}, step);
}

void WidgetModel::call(const std::string& made) { calls_.push_back(text(time_) + " " + made); }

// ---- Steps ----

void WidgetModel::load() {
  controller_ = Controller();
  controller_->number = ++controllerCount_;
  controller_->hosted = world().host.hosted;
  controller_->width = controller_->hosted ? world().host.compact.width : world().host.bounds.width;
  controller_->limit = rowLimit();
  controller_->held = saved_ ? saved_->result : FetchModel{.items = TransitLineItems{}};
  controller_->list = listModel(controller_->held, controller_->limit, now(), world());
  controller_->expanded = saved_ && saved_->expanded && expandedRowCount() > 0;
}

void WidgetModel::appear() {
  controller_->visible = true;
  startUpdater();
  updateGeometry();
  tellLargestMode();
  fetch(std::nullopt);
}

void WidgetModel::disappear() {
  if (world().archives) {
    call(std::string("preferencesSet ") + kSavedKey);
    const FetchModel& held = controller_->held;
    const bool holdsResult = held.failed || held.items;
    saved_ = holdsResult ? std::optional(SavedState{held, controller_->expanded}) : std::nullopt;
  }
  stopUpdater();
  controller_->visible = false;
}

void WidgetModel::displayModeChanged() {
  const bool wanted = controller_->hosted && world().host.activeMode == WidgetDisplayMode::expanded;
  if (wanted == controller_->expanded) return;
  controller_->expanded = wanted && expandedRowCount() > 0;
  contentChanged();
}

void WidgetModel::resize(double width, bool shows) {
  if (width == controller_->width) return;
  controller_->width = width;
  if (shows) contentChanged();
}

void WidgetModel::textSizeChanged() {
  if (std::exchange(textSize_, world().textSize) == world().textSize) return;
  if (controller_ && controller_->visible) updateGeometry();
}

void WidgetModel::worldChanged() {
  const auto saved = world().preferences.find(kSavedKey);
  if (saved != world().preferences.end() && !saved->second.get<Bytes>()) saved_.reset();
  textSizeChanged();
}

void WidgetModel::restart() {
  controller_.reset();
  fetch_ = nullptr;
  fetches_.clear();
  jobs_.clear();
  timers_.clear();
}

// ---- Fetching ----

void WidgetModel::fetch(const std::optional<std::string>& id) {
  if (!fetch_) {
    fetch_ = std::make_shared<Fetch>();
    fetch_->controller = controller_->number;
    controller_->fetching = true;
    fetches_.push_back(fetch_);
    jobs_.push_back({JobKind::readFavorites, fetch_});
  }
  if (id) fetch_->waiting.push_back(*id);
}

void WidgetModel::readFavorites(const SharedFetch& fetch) {
  bool anyLine = false;
  std::string muids;
  for (const WorldFavorite& favorite : world().favorites) {
    const auto* line = favorite.kind == WorldFavorite::Kind::line && favorite.line
                           ? world().lines.find(*favorite.line)
                           : nullptr;
    if (!line) continue;
    anyLine = true;
    if (!line->identifier) continue;
    fetch->identifiers.push_back({line->muid});
    muids += " " + std::to_string(line->muid);
  }
  if (!anyLine) return jobs_.push_back({JobKind::deliverNothing, fetch});
  call("lookup" + muids);
  const double delay = world().service.delay.value_or(Seconds(0)).count();
  if (delay > 0) return addTimer(TimerKind::answer, delay, fetch);
  jobs_.push_back({JobKind::answer, fetch});
}

FetchModel WidgetModel::answerTo(const Fetch& fetch) const {
  const WorldRecords records(world());
  switch (world().service.answer) {
    case WorldService::Answer::lines:
      return {.items = records.linesFor(fetch.identifiers)};
    case WorldService::Answer::all:
      return {.items = records.allLines()};
    case WorldService::Answer::error:
      return {.failed = true};
    case WorldService::Answer::nothing:
      break;
  }
  return {};
}

void WidgetModel::deliver(const SharedFetch& fetch, const FetchModel& result) {
  if (controller_ && controller_->number == fetch->controller) {
    controller_->fetched = controller_->held = result;
    startUpdater();
    rebuild();
    controller_->fetching = false;
    fetch_ = nullptr;
  }
  for (const std::string& id : fetch->waiting) call("updateResult " + id + (result.failed ? " 2" : " 0"));
  std::erase(fetches_, fetch);
}

// ---- Time ----

void WidgetModel::advance(double seconds) {
  const double end = time_ + seconds;
  runJobs();
  const auto order = [](const Timer& a, const Timer& b) {
    return std::pair(a.due, a.number) < std::pair(b.due, b.number);
  };
  while (true) {
    const auto next = std::ranges::min_element(timers_, order);
    if (next == timers_.end() || next->due > end) break;
    const Timer timer = *next;
    timers_.erase(next);
    time_ = timer.due;
    fire(timer);
    runJobs();
  }
  time_ = end;
}

void WidgetModel::runJobs() {
  while (!jobs_.empty()) {
    const Job job = jobs_.front();
    jobs_.pop_front();
    run(job);
  }
}

void WidgetModel::run(const Job& job) {
  switch (job.kind) {
    case JobKind::readFavorites:
      return readFavorites(job.fetch);
    case JobKind::answer:
      return deliver(job.fetch, answerTo(*job.fetch));
    case JobKind::deliverNothing:
      return deliver(job.fetch, {.items = TransitLineItems{}});
  }
}

void WidgetModel::fire(Timer timer) {
  if (timer.kind == TimerKind::answer) return deliver(timer.fetch, answerTo(*timer.fetch));
  call("timerFired");
  if (timer.kind == TimerKind::refresh) {
    timer.due += kRefresh;
    timers_.push_back(timer);
    return fetch(std::nullopt);
  }
  controller_->dates->erase(controller_->dates->begin());
  armDateTimer();
  rebuild();
}

void WidgetModel::addTimer(TimerKind kind, double interval, SharedFetch fetch) {
  timers_.push_back({time_ + interval, timerCount_++, kind, std::move(fetch)});
}

void WidgetModel::startUpdater() {
  stopUpdater();
  if (!controller_->visible || !controller_->fetched || !controller_->fetched->items) return;
  std::set<Date> dates;
  for (const SharedLineItem& line : *controller_->fetched->items) {
    for (const SharedIncident& incident : line->incidents()) {
      const auto start = incident->startDate(), end = incident->endDate();
      const bool isToCome = start && *start > now();
      if (isToCome) dates.insert(*start);
      if (end && (isToCome || *end > now())) dates.insert(*end);
    }
  }
  controller_->dates = std::move(dates);
  call("timer repeating " + text(kRefresh) + " " + text(kRefresh / 10));
  addTimer(TimerKind::refresh, kRefresh);
  armDateTimer();
}

void WidgetModel::stopUpdater() {
  if (!controller_) return;
  controller_->dates.reset();
  std::erase_if(timers_, [](const Timer& timer) { return timer.kind != TimerKind::answer; });
}

void WidgetModel::armDateTimer() {
  if (controller_->dates->empty()) return;
  const double interval = (*controller_->dates->begin() - now()).count();
  if (interval <= 0) return;
  call("timer oneShot " + text(interval) + " 0");
  addTimer(TimerKind::date, interval);
}

// ---- The list and its geometry ----

double WidgetModel::compactHeight() const { return controller_->hosted ? world().host.compact.height : 0; }

std::uint64_t WidgetModel::rowLimit() const {
  if (!controller_->hosted || !(compactHeight() > 0)) return kNoRowLimit;
  const double rows = std::floor(world().host.expanded.height / compactHeight());
  return rows >= 1 ? static_cast<std::uint64_t>(rows) : kNoRowLimit;
}

void WidgetModel::updateGeometry() {
  const double height = compactHeight();
  const std::uint64_t limit = rowLimit();
  const bool otherHeight = std::exchange(controller_->rowHeight, height) != height;
  if (std::exchange(controller_->limit, limit) != limit) return rebuild();
  if (otherHeight) contentChanged();
}

void WidgetModel::rebuild() {
  Value list = listModel(controller_->held, controller_->limit, now(), world());
  if (list == controller_->list) return;
  controller_->list = std::move(list);
  contentChanged();
}

std::size_t WidgetModel::expandedRowCount() const {
  const auto* list = controller_->list.get<Dictionary>();
  return list ? list->at("expandedItems").get<Array>()->size() : 0;
}

void WidgetModel::tellLargestMode() {
  if (!controller_->hosted) return;
  call(std::string("largestAvailableDisplayMode ") + (expandedRowCount() > 0 ? "expanded" : "compact"));
}

void WidgetModel::contentChanged() {
  tellLargestMode();
  call("reload 0");
  const WorldHost& host = world().host;
  const double width =
      host.activeMode == WidgetDisplayMode::expanded ? host.expanded.width : host.compact.width;
  const std::size_t summaries = isNoValue(controller_->list) ? 0 : 1;
  const std::size_t rows = controller_->expanded ? expandedRowCount() : summaries;
  call("preferredContentSize " + text(controller_->hosted ? width : 0) + " " +
       text(controller_->rowHeight * static_cast<double>(rows)));
}

// ---- Recorded events ----

std::optional<std::string> callOf(const TranscriptEvent& event) {
  static const std::map<std::string_view, std::vector<std::string>> fieldsOf = {
      {"lookup", {"identifiers"}},
      {"updateResult", {"id", "result"}},
      {"largestAvailableDisplayMode", {"mode"}},
      {"reload", {"section"}},
      {"preferredContentSize", {"size"}},
      {"preferencesSet", {"key"}},
      {"preferencesRemoved", {"key"}},
      {"timer", {"kind", "interval", "tolerance"}},
      {"timerFired", {}}};
  const auto fields = fieldsOf.find(event.name);
  if (fields == fieldsOf.end()) return std::nullopt;
  std::string made = text(event.time.count()) + " " + event.name;
  for (const std::string& key : fields->second) {
    const Value value = event.field(key);
    const auto* array = value.get<Array>();
    for (const Value& element : array ? *array : Array{value}) made += " " + element.description();
  }
  return made;
}

}  // namespace linewatch::worlds
