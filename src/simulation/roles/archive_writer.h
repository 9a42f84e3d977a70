#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulation/roles/archive_format.h"
#include "wire/keyed_archiver.h"

namespace linewatch::simulation::archive {

/// Writes one archive.
class Writer final : private KeyedCoder {
 public:
  explicit Writer(bool requiringSecureCoding) : requiringSecureCoding_(requiringSecureCoding) {}

  /// The archive of `root`, or none when a part of it cannot be archived.
  std::optional<Bytes> archive(const ArchivedObject& root);

 private:
  struct ValueWriter;

  void encodeObject(std::string_view key, const ArchivedObject& object) override;
  void encodeBool(std::string_view key, bool value) override;
  void encodeBytes(std::string_view key, const Bytes& bytes) override;

  void write(const ArchivedObject& object);
  void writeContents(const Value& value);
  void writeContents(const Error& error);
  void writeContents(const std::shared_ptr<const Archivable>& object);
  void writeContents(const ArchivedList& list);

  void writeKind(Kind kind) { bytes_.push_back(static_cast<std::uint8_t>(kind)); }
  void writeCount(std::uint64_t count);
  void writeFixed(std::uint64_t value);
  void writeSized(const void* data, std::size_t size);
  void writeText(std::string_view text) { writeSized(text.data(), text.size()); }
  void writeName(std::string_view name);
  void writeNames();
  /// The name's place, counted from 1.
  std::size_t placeOf(std::string_view name);

  bool requiringSecureCoding_;
  bool failed_ = false;
  int depth_ = 0;
  Bytes bytes_;
  std::map<std::string, std::size_t> places_;
  std::vector<std::string_view> names_;
  /// For each place the one that followed it last time, 0 when none did: objects of one class give their keys
  /// in one order. At 0 the one that came first of all.
  std::vector<std::size_t> followers_ = {0};
  std::size_t lastPlace_ = 0;
};

}  // namespace linewatch::simulation::archive
