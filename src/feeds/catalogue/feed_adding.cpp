#include "feeds/catalogue/feed_adding.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <utility>
#include <vector>

#include "feeds/http/http_fetcher.h"
#include "shared/failure.h"
#include "shared/mutex.h"

namespace linewatch {

namespace {

bool hasCopies(const FeedProposal& proposal) {
  return std::ranges::any_of(proposal.timetableCopies, [](const auto& copy) { return !copy.empty(); });
}

}  // namespace

/// The state that the adding's threads share.
class FeedAdding::Work {
 public:
  Work(FeedProposal proposal, Environment environment, Observer observer)
      : proposal_(std::move(proposal)),
        environment_(std::move(environment)),
        observer_(std::move(observer)),
        cache_(environment_.cache->heldBackCopy()),
        documents_(
            cache_, environment_.now, [this] { return observedFetcher(); }, environment_.runKeyCommand) {
    documents_.requireCurrentTimetables();
  }

  void run() { finish(add()); }
  AddingProgress progress() LINEWATCH_EXCLUDES(mutex_);
  void cancel() LINEWATCH_EXCLUDES(mutex_);
  bool waitFor(Seconds longest) LINEWATCH_EXCLUDES(mutex_);

 private:
  class ObservedFetcher;
  struct Received {
    std::uint64_t bytes = 0;
    std::optional<std::uint64_t> total;
  };

  Outcome<FeedFindings> add();
  std::optional<Error> nameError() const;
  /// Reads the timetable of the feed, or else the catalogue's copies, which then replace it in the feed.
  Outcome<SharedLineIndex> readLines(FeedFindings& findings);
  std::optional<Error> save(const StoredFeed& feed);
  Outcome<std::shared_ptr<HttpFetcher>> observedFetcher();

  void beginStep(AddingProgress::Step step) LINEWATCH_EXCLUDES(mutex_);
  /// From now on `cancel` does nothing. False after a cancellation.
  bool beginSaving() LINEWATCH_EXCLUDES(mutex_);
  /// The number of a new fetch, for `take`.
  std::size_t beginFetch() LINEWATCH_EXCLUDES(mutex_);
  void take(std::size_t fetch, const Received& received) LINEWATCH_EXCLUDES(mutex_);
  void endFetch() LINEWATCH_EXCLUDES(mutex_);
  void setLineCount(std::size_t count) LINEWATCH_EXCLUDES(mutex_);
  void finish(Outcome<FeedFindings> result) LINEWATCH_EXCLUDES(mutex_);
  void tell() LINEWATCH_REQUIRES(mutex_);

  const FeedProposal proposal_;
  Environment environment_;
  const Observer observer_;
  const std::shared_ptr<FeedCache> cache_;
  FeedDocuments documents_;

  Mutex mutex_;
  std::condition_variable_any ended_;
  AddingProgress progress_ LINEWATCH_GUARDED_BY(mutex_);
  /// One for each fetch of this step.
  std::vector<Received> received_ LINEWATCH_GUARDED_BY(mutex_);
  std::size_t runningFetches_ LINEWATCH_GUARDED_BY(mutex_) = 0;
  /// True when `observer_` was called after the last call of `progress`.
  bool isTold_ LINEWATCH_GUARDED_BY(mutex_) = false;
  /// Nobody may observe any more, also if the feed is saved all the same.
  bool isCancelled_ LINEWATCH_GUARDED_BY(mutex_) = false;
};

/// Reports how far each fetch is. Fetches may take as long as bytes come, because the rider sees them coming
/// and can cancel.
class FeedAdding::Work::ObservedFetcher final : public HttpFetcher {
 public:
  ObservedFetcher(std::shared_ptr<HttpFetcher> fetcher, Work& work)
      : fetcher_(std::move(fetcher)), work_(work) {}

  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    const std::size_t number = work_.beginFetch();
    HttpRequest observed = request;
    observed.timeout = kLongestFetch;
    observed.idleTimeout = request.timeout;
    observed.progress = [this, number](std::uint64_t bytes, std::optional<std::uint64_t> total) {
      work_.take(number, {bytes, total});
    };
    auto response = fetcher_->fetch(observed);
    work_.endFetch();
    return response;
  }

 private:
  std::shared_ptr<HttpFetcher> fetcher_;
  Work& work_;
};

Outcome<std::shared_ptr<HttpFetcher>> FeedAdding::Work::observedFetcher() {
  auto fetcher = environment_.fetcherSource();
  if (!fetcher) return fetcher;
  return std::shared_ptr<HttpFetcher>(std::make_shared<ObservedFetcher>(*std::move(fetcher), *this));
}

Outcome<FeedFindings> FeedAdding::Work::add() {
  FeedFindings findings{.feed = proposal_.feed};
  if (!proposal_.isSaved) {
    if (const auto error = nameError()) return *error;
    // An earlier feed of this name may have left documents.
    cache_->remove(findings.feed.name);
  }
  // Alerts first, because they are small, and the server refuses a wrong key at once.
  const FeedAlerts alerts = documents_.alertsOf(findings.feed, {});
  if (alerts.failure) return *alerts.failure;
  beginStep(AddingProgress::Step::fetchingTimetable);
  const auto lines = readLines(findings);
  if (!lines) return lines.error();
  setLineCount((*lines)->routes().size());
  FeedFindings found = findingsIn(findings.feed, *lines, alerts, environment_.now());
  found.agencyFailure = findings.agencyFailure;
  if (const auto error = save(found.feed)) return *error;
  return found;
}

std::optional<Error> FeedAdding::Work::nameError() const {
  const std::string& name = proposal_.feed.name;
  if (auto error = feedNameError(name)) return error;
  const auto known = environment_.feeds.list();
  if (!known) return known.error();
  const bool isKnown = std::ranges::find(*known, name, &StoredFeed::name) != known->end();
  return isKnown ? std::optional(feedNameInUse(name)) : std::nullopt;
}

Outcome<SharedLineIndex> FeedAdding::Work::readLines(FeedFindings& findings) {
  auto lines = documents_.lineIndexOf(proposal_.feed);
  if (lines || !hasCopies(proposal_) || failureCodeOf(lines.error()) == FailureCode::cancelled) return lines;
  beginStep(AddingProgress::Step::fetchingTimetable);
  findings.feed = withCopies(proposal_);
  findings.agencyFailure = lines.error();
  const auto copies = documents_.lineIndexOf(findings.feed);
  return copies ? copies : lines;
}

std::optional<Error> FeedAdding::Work::save(const StoredFeed& feed) {
  if (!beginSaving()) return failure(FailureCode::cancelled, "feed " + feed.name, "", "cancelled");
  if (!proposal_.isSaved) {
    const auto added = environment_.feeds.add(feed);
    if (!added) return added.error();
    if (!*added) return feedNameInUse(feed.name);
  }
  cache_->writeHeldBack();
  return std::nullopt;
}

void FeedAdding::Work::tell() {
  if (observer_ && !isCancelled_ && !std::exchange(isTold_, true)) observer_();
}

void FeedAdding::Work::beginStep(AddingProgress::Step step) {
  const MutexLock lock(mutex_);
  if (progress_.result) return;
  progress_ = {.step = step, .totalBytes = {}, .lineCount = progress_.lineCount, .result = {}};
  received_.clear();
  tell();
}

bool FeedAdding::Work::beginSaving() {
  const MutexLock lock(mutex_);
  if (progress_.result) return false;
  progress_.step = AddingProgress::Step::saving;
  tell();
  return true;
}

std::size_t FeedAdding::Work::beginFetch() {
  const MutexLock lock(mutex_);
  ++runningFetches_;
  received_.emplace_back();
  return received_.size() - 1;
}

void FeedAdding::Work::take(std::size_t fetch, const Received& received) {
  const MutexLock lock(mutex_);
  if (progress_.result || fetch >= received_.size()) return;
  received_[fetch] = received;
  progress_.bytes = 0;
  progress_.totalBytes = 0;
  for (const auto& [bytes, total] : received_) {
    progress_.bytes += bytes;
    progress_.totalBytes =
        total && progress_.totalBytes ? std::optional(*progress_.totalBytes + *total) : std::nullopt;
  }
  tell();
}

void FeedAdding::Work::endFetch() {
  const MutexLock lock(mutex_);
  const bool isLast = --runningFetches_ == 0;
  if (progress_.result || !isLast || progress_.step != AddingProgress::Step::fetchingTimetable) return;
  progress_.step = AddingProgress::Step::readingTimetable;
  tell();
}

void FeedAdding::Work::setLineCount(std::size_t count) {
  const MutexLock lock(mutex_);
  if (progress_.result) return;
  progress_.lineCount = count;
  tell();
}

void FeedAdding::Work::finish(Outcome<FeedFindings> result) {
  const MutexLock lock(mutex_);
  if (progress_.result) return;
  progress_.result = std::move(result);
  ended_.notify_all();
  tell();
}

AddingProgress FeedAdding::Work::progress() {
  const MutexLock lock(mutex_);
  isTold_ = false;
  return progress_;
}

void FeedAdding::Work::cancel() {
  {
    const MutexLock lock(mutex_);
    isCancelled_ = true;
    if (progress_.result || progress_.step == AddingProgress::Step::saving) return;
    progress_.result = failure(FailureCode::cancelled, "feed " + proposal_.feed.name, "", "cancelled");
    ended_.notify_all();
  }
  documents_.stopFetching();
}

bool FeedAdding::Work::waitFor(Seconds longest) {
  MutexLock lock(mutex_);
  const auto end = std::chrono::steady_clock::now() +
                   std::chrono::duration_cast<std::chrono::steady_clock::duration>(longest);
  while (!progress_.result) {
    if (ended_.wait_until(lock, end) == std::cv_status::timeout) break;
  }
  return progress_.result.has_value();
}

FeedAdding::FeedAdding(FeedProposal proposal, Environment environment, Observer observer)
    : work_(std::make_unique<Work>(std::move(proposal), std::move(environment), std::move(observer))),
      thread_([this] { work_->run(); }) {}

FeedAdding::~FeedAdding() {
  cancel();
  thread_.join();
}

AddingProgress FeedAdding::progress() const { return work_->progress(); }
void FeedAdding::cancel() { work_->cancel(); }
bool FeedAdding::waitFor(Seconds longest) const { return work_->waitFor(longest); }

}  // namespace linewatch
