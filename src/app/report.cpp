#include "app/report.h"

#include "shared/failure.h"

namespace linewatch::app {

Report notLoaded(const Error& error) { return {.output = {}, .complaint = sentenceOf(error), .status = 1}; }

Report refused(const Error& error) { return {.output = {}, .complaint = sentenceOf(error), .status = 2}; }

}  // namespace linewatch::app
