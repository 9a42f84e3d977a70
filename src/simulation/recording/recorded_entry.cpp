#include "simulation/recording/recorded_entry.h"

#include <utility>

#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

/// The entry itself and its places in the table.
constexpr std::size_t kBytesPerEntry = 400;
/// Bytes of a name that is used as a key.
constexpr std::size_t kLongestName = 40;

std::size_t bytesOf(const RecordedEntry& entry) {
  return kBytesPerEntry + entry.text.size() + 2 * entry.key.size();
}

}  // namespace

SharedEntry RecordedTable::entry(const Dictionary& form, const std::string& name,
                                 std::vector<SharedEntry> needed) {
  std::string text = jsonText(form);
  if (const auto known = contents_->byText.find(text); known != contents_->byText.end())
    return known->second.lock();
  auto added = std::make_unique<RecordedEntry>(
      RecordedEntry{name_, freeKey(name), std::move(text), std::move(needed)});
  contents_->bytes += bytesOf(*added);
  const RecordedEntry* const place = added.release();
  SharedEntry shared(place, [contents = contents_](const RecordedEntry* entry) {
    contents->byText.erase(entry->text);
    contents->keys.erase(entry->key);
    contents->bytes -= bytesOf(*entry);
    delete entry;
  });
  contents_->byText.emplace(place->text, shared);
  return shared;
}

std::string RecordedTable::freeKey(const std::string& name) {
  const bool isNamed = !name.empty() && name.size() <= kLongestName;
  if (isNamed && contents_->keys.insert(name).second) return name;
  const std::string start = isNamed ? name + " " : kind_;
  std::size_t& number = contents_->numbers[start];
  std::string key;
  do {
    key = start + std::to_string(++number);
  } while (!contents_->keys.insert(key).second);
  return key;
}

}  // namespace linewatch::simulation
