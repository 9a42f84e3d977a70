#include "app/adding_progress.h"

#include <utility>

#include "app/interruption.h"
#include "app/progress_line.h"

namespace linewatch::app {

namespace {

constexpr Seconds kPollInterval{0.05};

void showProgress(const RiderTexts& texts, const AddingProgress& progress, ProgressLine& line) {
  using Step = AddingProgress::Step;
  if (progress.lineCount) return line.show(texts("Lines", {*progress.lineCount}), 0, {});
  switch (progress.step) {
    case Step::fetchingAlerts:
      return line.show(texts("ProgressAlerts"), progress.bytes, progress.totalBytes);
    case Step::fetchingTimetable:
      return line.show(texts("ProgressTimetable"), progress.bytes, progress.totalBytes);
    case Step::readingTimetable:
    case Step::saving:
      return line.show(texts("ProgressReading"), 0, {});
  }
}

}  // namespace

Outcome<FeedFindings> addWithProgress(Session& session, FeedProposal proposal) {
  const Interruption interruption;
  FeedAdding adding(std::move(proposal), *session.platform().addingEnvironment());
  ProgressLine line;
  while (!adding.waitFor(kPollInterval)) {
    showProgress(session.texts(), adding.progress(), line);
    if (Interruption::isRequested()) adding.cancel();
  }
  return *adding.progress().result;
}

Report refusedOrInterrupted(const RiderTexts& texts, const Error& error) {
  if (failureCodeOf(error) != FailureCode::cancelled) return refused(error);
  return {.output = {}, .complaint = texts("AddingCancelled"), .status = kInterruptedStatus};
}

}  // namespace linewatch::app
