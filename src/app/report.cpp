#include "app/report.h"

namespace linewatch::app {

namespace {

Report failed(const Error& error, int status) {
  return {.output = {}, .complaint = sentenceOf(error), .status = status, .failure = failureCodeOf(error)};
}

}  // namespace

Report notLoaded(const Error& error) { return failed(error, 1); }

Report refused(const Error& error) { return failed(error, 2); }

Report refusedWith(std::string complaint) {
  return {.output = {}, .complaint = std::move(complaint), .status = 2};
}

}  // namespace linewatch::app
