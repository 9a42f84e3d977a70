#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/value.h"

namespace linewatch::simulation {

/// An entry of a scenario's table in a recording, such as a line: its key, and its JSON text. It never
/// changes: a line that is described in another way is another entry.
struct RecordedEntry {
  /// The key of the table in the world.
  std::string_view table;
  std::string key;
  std::string text;
  /// Parts that the scenario must have too: the system of a line, and the widths of its artworks.
  std::vector<std::shared_ptr<const RecordedEntry>> needed;
};

using SharedEntry = std::shared_ptr<const RecordedEntry>;

/// A table of a scenario while it is recorded. Equal entries are kept once, for as long as something holds
/// them. Main thread.
class RecordedTable {
 public:
  /// `name` is the table's key in the world, and `kind` begins the keys of entries that have no short name.
  RecordedTable(std::string_view name, std::string kind) : name_(name), kind_(std::move(kind)) {}

  /// The entry with this form. The key of a new entry is `name` when that is short and free, else it ends
  /// with a number.
  SharedEntry entry(const Dictionary& form, const std::string& name, std::vector<SharedEntry> needed = {});
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

  std::string_view name_;
  std::string kind_;
  std::shared_ptr<Contents> contents_ = std::make_shared<Contents>();
};

}  // namespace linewatch::simulation
