#include "storage/stored_database.h"

#include <utility>

#include "shared/failure.h"

namespace linewatch {

StoredDatabase::StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log,
                               Options options)
    : file_(std::move(file)),
      schema_(schema),
      log_(log),
      options_(options),
      reader_(file_, schema, options.forReading()),
      writer_(file_, schema, options.forWriting()) {
  if (!options_.defersSaves) return;
  // Reading is not to wait for other programs even before the first write.
  queue_.post([this] {
    const MutexLock lock(writerMutex_);
    writer_.prepareToWrite();
    return true;
  });
}

StoredDatabase::~StoredDatabase() {
  const std::size_t lost = queue_.close();
  if (lost > 0) {
    const std::string count = lost == 1 ? "one change is" : std::to_string(lost) + " changes are";
    report(busy("another program is using it; " + count + " lost"));
  }
  // The writer is closed last and leaves the file without a log.
  const MutexLock lock(readerMutex_);
  reader_.close();
}

std::optional<Error> StoredDatabase::read(const Operation& operation) {
  const MutexLock lock(readerMutex_);
  return reader_.read(operation);
}

std::optional<Error> StoredDatabase::write(const Operation& operation) {
  if (!queue_.waitUntilDone()) return busy("another program is using it");
  const MutexLock lock(writerMutex_);
  return writer_.write(operation);
}

bool StoredDatabase::save(Operation operation, std::function<void(bool isSaved)> settled) {
  if (options_.defersSaves) {
    queue_.post([this, operation = std::move(operation), settled = std::move(settled)] {
      return tryDeferred(operation, settled);
    });
    return true;
  }
  const auto error = saveNow(operation);
  report(error);
  if (settled) settled(!error);
  return !error;
}

bool StoredDatabase::tryDeferred(const Operation& operation,
                                 const std::function<void(bool isSaved)>& settled) {
  const auto error = saveNow(operation);
  if (error && isBusy(*error)) {
    report(busy("another program is using it; changes are saved when it is free"));
    return false;
  }
  report(error);
  if (settled) settled(!error);
  return true;
}

std::optional<Error> StoredDatabase::saveNow(const Operation& operation) {
  const MutexLock lock(writerMutex_);
  auto error = writer_.write(operation);
  if (!error || !isDamage(*error)) return error;
  report(error);
  return writer_.write(operation);
}

void StoredDatabase::report(const std::optional<Error>& error) {
  if (!error) return;
  const bool costsNothing = isDamage(*error) && schema_.remedy.empty();
  report(sentenceOf(*error), costsNothing ? LogLevel::debug : LogLevel::error);
}

void StoredDatabase::report(const std::string& sentence, LogLevel level) {
  const MutexLock lock(reportedMutex_);
  if (reported_.insert(sentence).second) log_.write({level, kLogCategory, "%@", {sentence}});
}

Error StoredDatabase::busy(std::string_view why) const {
  return failure(FailureCode::busy, schema_.name, file_.path().string(), why);
}

}  // namespace linewatch
