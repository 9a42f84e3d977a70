#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "shared/value.h"

namespace linewatch::simulation {

/// A system, line or incident in a recording: its key, and its JSON text in a scenario. It never changes: a
/// line that is described in another way is another entry.
struct RecordedEntry {
  std::string key;
  std::string text;
  /// The system of a line; null otherwise.
  std::shared_ptr<const RecordedEntry> system;
};

using SharedEntry = std::shared_ptr<const RecordedEntry>;

/// One of a scenario's tables of systems, lines and incidents, while it is recorded. Equal entries are kept
/// once, for as long as something holds them. Main thread.
class RecordedTable {
 public:
  /// `kind` begins the keys of entries that have no short name.
  explicit RecordedTable(std::string kind) : kind_(std::move(kind)) {}

  /// The entry with this form. The key of a new entry is `name` when that is short and free, else it ends
  /// with a number.
  SharedEntry entry(const Dictionary& form, const std::string& name, SharedEntry system = nullptr);
  /// The memory of all entries that something holds, about.
  std::size_t bytes() const { return contents_->bytes; }

 private:
  /// Shared with the entries, which leave the table when nothing holds them any more.
  struct Contents {
    std::map<std::string_view, std::weak_ptr<const RecordedEntry>> byText;
    std::set<std::string, std::less<>> keys;
    /// The last number given to a name.
    std::map<std::string, std::size_t, std::less<>> numbers;
    std::size_t bytes = 0;
  };

  std::string freeKey(const std::string& name);

  std::string kind_;
  std::shared_ptr<Contents> contents_ = std::make_shared<Contents>();
};

}  // namespace linewatch::simulation
