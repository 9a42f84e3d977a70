#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/favorites.h"
#include "platform/transit_service.h"
#include "shared/mutex.h"
#include "shared/object.h"
#include "simulation/recording/recorded_answer.h"
#include "simulation/recording/recorded_segment.h"
#include "simulation/scenario/scenario_writing.h"
#include "widget/host_observer.h"

namespace linewatch {
class Platform;
}

namespace linewatch::simulation {

/// The favourites that a fetch reads. Any thread.
class FavoritesOfFetch {
 public:
  void set(Outcome<Favorites> favorites) LINEWATCH_EXCLUDES(mutex_);
  /// Absent until they are known, and after they were taken.
  std::optional<Outcome<Favorites>> take() LINEWATCH_EXCLUDES(mutex_);

 private:
  Mutex mutex_;
  std::optional<Outcome<Favorites>> favorites_ LINEWATCH_GUARDED_BY(mutex_);
};

/// Records what a real host, its user and the transit service do, as a scenario. It keeps the last hour in
/// memory, and less when that would need more than 4 MiB. Main thread.
class SessionRecorder final : public HostObserver,
                              public Object,
                              public std::enable_shared_from_this<SessionRecorder> {
 public:
  /// The most that is kept. The time may be exceeded by the interval between two fetches.
  struct Limits {
    Seconds time{3600};
    std::size_t bytes = 4 << 20;
  };

  static std::shared_ptr<SessionRecorder> make() { return make(Limits()); }
  static std::shared_ptr<SessionRecorder> make(const Limits& limits);

  /// The platform that is recorded, which must outlive the widget. To be called before the host loads it.
  void setPlatform(Platform& platform, RecordedRecords::WidthOf widthOf);

  /// The user's locale, e.g. "de-CH", which a scenario notes for its reader.
  void setLocale(std::string locale) { world_.locale = std::move(locale); }

  /// The recording as a scenario; absent when there is none.
  std::optional<std::string> scenario();

  /// Calls `handler` after each answer, once the widget shows it.
  void setAnswerHandler(std::function<void()> handler) { answerHandler_ = std::move(handler); }

  // Calls of the host.
  void hostDidLoad(const std::shared_ptr<RVTransitIncidentsViewController>& controller,
                   const Size& bounds) override;
  void hostWillShow() override;
  void hostWillHide() override;
  void hostWillAskForUpdate() override;
  void hostWillChangeMode(WidgetDisplayMode mode) override;
  void hostWillResize(const Size& size) override;
  void hostWillTap(std::size_t row) override;
  void hostDidOpen(bool success) override;
  void hostDidShowContent() override;

  // Events of the platform.
  /// The widget starts a fetch, which is to set the favourites that it reads.
  std::shared_ptr<FavoritesOfFetch> fetchDidBegin();
  void serviceWillAnswer(const std::shared_ptr<const TransitLineItems>& items,
                         const std::optional<Error>& error);
  /// The widget has made the answer its own.
  void serviceDidAnswer();
  /// The widget was told the JSON value of a key of the world.
  void widgetWasTold(const std::string& key, const std::string& value);
  void randomSourceDidDraw(std::uint32_t number);

 private:
  explicit SessionRecorder(const Limits& limits) : limits_(limits) {}

  Microseconds now() const;
  std::size_t bytes() const;
  RecordedSegment segmentNow();
  std::shared_ptr<const RecordedAnswer> recordedAnswer(const std::shared_ptr<const TransitLineItems>& items,
                                                       const std::optional<Error>& error);
  std::shared_ptr<const RecordedAnswer> recordedList();

  void add(const Step& step) { addText(written(step)); }
  void addText(const Dictionary& step);
  void addEvent(RecordedEvent event, std::size_t bytes);
  void addBefore(std::vector<RecordedEvent>::iterator place, RecordedSegment& segment,
                 const JsonMembers& changes);
  void addBeforeLast(const JsonMembers& changes);
  void noteFavorites();
  void noteSnapshot();
  WorldHost hostNow() const;
  void noteHost();
  void textSizeDidPost();
  void watchTurn();
  void trim();

  Limits limits_;
  Platform* platform_ = nullptr;
  RecordedRecords::WidthOf widthOf_;
  std::weak_ptr<RVTransitIncidentsViewController> controller_;
  std::optional<RecordedRecords> records_;
  /// The world around the segments.
  World world_;
  /// Empty while too much happens to be kept; recording goes on at the next fetch.
  std::deque<RecordedSegment> segments_;
  Microseconds lastTime_ = 0;
  /// Whether the main loop has run since the last event; an action that waits in the loop sets this.
  bool isInNewTurn_ = false;
  bool isTurnWatched_ = false;
  /// When the rows changed without a snapshot so far.
  std::optional<Microseconds> snapshotTime_;
  /// The host and its settings as the recorded steps leave them.
  WorldHost host_;
  ui::TextSizeCategory textSize_ = ui::kDefaultTextSizeCategory;
  std::map<std::string, std::string> told_;
  bool isShown_ = false;
  /// The random numbers that were drawn during the present answer, when the widget draws any.
  std::optional<Array> drawn_;
  std::shared_ptr<FavoritesOfFetch> fetch_;
  /// As a fetch last read them.
  std::shared_ptr<const RecordedFavorites> favorites_;
  /// The last answer, and its items as the service gave them.
  std::shared_ptr<const RecordedAnswer> answer_;
  std::weak_ptr<const TransitLineItems> items_;
  /// Items that are larger than all that may be kept, so that they are not written down again.
  std::weak_ptr<const TransitLineItems> tooLarge_;
  std::size_t updates_ = 0;
  std::function<void()> answerHandler_;
};

}  // namespace linewatch::simulation
