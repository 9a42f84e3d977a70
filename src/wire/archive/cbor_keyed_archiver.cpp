#include "wire/archive/cbor_keyed_archiver.h"

#include <algorithm>
#include <array>
#include <span>

#include "wire/archive/cbor_archive_reader.h"
#include "wire/archive/cbor_archive_writer.h"

namespace linewatch {

namespace {

constexpr std::array<std::uint8_t, 3> kMark = {0xD9, 0xD9, 0xF7};

}  // namespace

CborKeyedArchiver::CborKeyedArchiver() : CborKeyedArchiver(cbor::kMaximumItemCount) {}

std::optional<Bytes> CborKeyedArchiver::archivedData(const ArchivedObject& root, bool requiringSecureCoding) {
  const auto json = cbor::archived(root, requiringSecureCoding);
  if (!json || !cbor::canBeRead(*json, maximumItemCount_)) return std::nullopt;
  Bytes bytes(kMark.begin(), kMark.end());
  cbor::Json::to_cbor(*json, bytes);
  return bytes;
}

std::unique_ptr<KeyedUnarchiver> CborKeyedArchiver::openForReading(const Bytes& bytes) {
  if (bytes.size() < kMark.size() || !std::equal(kMark.begin(), kMark.end(), bytes.begin())) return nullptr;
  return std::make_unique<cbor::ArchiveReader>(std::span(bytes).subspan(kMark.size()), maximumItemCount_);
}

}  // namespace linewatch
