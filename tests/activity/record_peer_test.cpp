// Compares the record with the same record of an independent implementation of the encoding.

#include <algorithm>
#include <random>
#include <string>

#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>
#include <google/protobuf/util/message_differencer.h>
#include <gtest/gtest.h>

#include "activity/random_record.h"
#include "activity/rova_activity.h"
#include "record.pb.h"

namespace linewatch {
namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Reflection;
using google::protobuf::util::MessageDifferencer;

std::string plainName(std::string_view name) {
  std::string plain;
  for (const char c : name)
    if (c != '_') plain += static_cast<char>(c | 0x20);
  return plain;
}

/// Sets the fields of a peer message to those of a record, finding them by their names.
class Mirror {
 public:
  explicit Mirror(google::protobuf::Message& peer) : peer_(peer), reflection_(*peer.GetReflection()) {}

  template <class Record>
  void show(const Record& record) {
    const auto& source = RecordFields::of(record);
    fields::forEachField<Record>([&](const auto& field) { showField(field.name, field.in(source)); });
  }

 private:
  const FieldDescriptor* named(std::string_view name) {
    const auto* type = peer_.GetDescriptor();
    for (int i = 0; i < type->field_count(); ++i)
      if (plainName(type->field(i)->name()) == plainName(name)) return type->field(i);
    ADD_FAILURE() << type->name() << " has no " << name;
    return nullptr;
  }

  template <class Held>
  void showField(std::string_view name, const Held& held) {
    const FieldDescriptor* field = named(name);
    if (field == nullptr) return;
    if constexpr (fields::List<Held>::value) {
      if (const auto* elements = fields::List<Held>::peek(held))
        for (const auto& element : *elements)
          Mirror(*reflection_.AddMessage(&peer_, field)).show(*fields::peek(element));
    } else if (const auto* value = fields::peek(held)) {
      showValue(field, *value);
    }
  }

  template <class Value>
  void showValue(const FieldDescriptor* field, const Value& value) {
    if constexpr (MessageEnumeration<Value>) {
      reflection_.SetEnumValue(&peer_, field, static_cast<int>(value));
    } else if constexpr (std::same_as<Value, bool>) {
      reflection_.SetBool(&peer_, field, value);
    } else if constexpr (std::same_as<Value, std::int32_t>) {
      reflection_.SetInt32(&peer_, field, value);
    } else if constexpr (std::same_as<Value, std::uint32_t>) {
      reflection_.SetUInt32(&peer_, field, value);
    } else if constexpr (std::same_as<Value, std::int64_t>) {
      reflection_.SetInt64(&peer_, field, value);
    } else if constexpr (std::same_as<Value, std::uint64_t>) {
      reflection_.SetUInt64(&peer_, field, value);
    } else if constexpr (std::same_as<Value, double>) {
      reflection_.SetDouble(&peer_, field, value);
    } else if constexpr (std::same_as<Value, Date>) {
      reflection_.SetDouble(&peer_, field, value.time_since_epoch().count());
    } else if constexpr (std::same_as<Value, std::string>) {
      reflection_.SetString(&peer_, field, value);
    } else if constexpr (std::same_as<Value, fields::PackedNumbers>) {
      for (const std::uint64_t element : value) reflection_.AddUInt64(&peer_, field, element);
    } else {
      Mirror(*reflection_.MutableMessage(&peer_, field)).show(value);
    }
  }

  google::protobuf::Message& peer_;
  const Reflection& reflection_;
};

Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }
std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

constexpr std::uint64_t kSeed = 20261124;

TEST(RecordPeer, EachReadsTheSameBytesThatBothWrite) {
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  RandomRecord random(kSeed);
  for (int round = 0; round < 500 && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    RovaActivity record;
    random.fill(record);
    peer::Activity peer;
    Mirror(peer).show(record);
    const Bytes written = record.data();
    EXPECT_TRUE(written == bytesOf(peer.SerializeAsString()));

    const auto read = messageWithData<RovaActivity>(bytesOf(peer.SerializeAsString()));
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(read->isEqual(record));
    EXPECT_EQ(read->hash(), record.hash());
    EXPECT_TRUE(read->deepCopy()->isEqual(record));
    EXPECT_TRUE(read->dictionaryRepresentation() == record.dictionaryRepresentation());

    peer::Activity peerRead;
    ASSERT_TRUE(peerRead.ParseFromString(textOf(written)));
    EXPECT_TRUE(MessageDifferencer::Equals(peerRead, peer));
  }
}

TEST(RecordPeer, MergesAlike) {
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  RandomRecord random(kSeed);
  for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
    RovaActivity into, from;
    random.fill(into);
    random.fill(from);
    peer::Activity peerInto, peerFrom;
    Mirror(peerInto).show(into);
    Mirror(peerFrom).show(from);
    into.mergeFrom(from);
    peerInto.MergeFrom(peerFrom);
    EXPECT_TRUE(into.data() == bytesOf(peerInto.SerializeAsString())) << "round " << round;
  }
}

TEST(RecordPeer, DamagedBytesDoNotCrashTheReader) {
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  RandomRecord random(kSeed);
  for (int round = 0; round < 2000 && !testing::Test::HasFailure(); ++round) {
    RovaActivity record;
    random.fill(record);
    Bytes bytes = record.data();
    for (std::uint64_t left = 1 + random.oneOf(4); left > 0 && !bytes.empty(); --left) {
      const std::size_t place = random.oneOf(bytes.size());
      if (random.oneOf(3) == 0) {
        bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(place));
      } else {
        bytes[place] = static_cast<std::uint8_t>(random.oneOf(256));
      }
    }
    const auto read = messageWithData<RovaActivity>(bytes);
    if (!read) continue;
    // A record that was read can be written and read again unchanged.
    const Bytes again = read->data();
    const auto reread = messageWithData<RovaActivity>(again);
    ASSERT_NE(reread, nullptr) << "round " << round;
    EXPECT_TRUE(reread->data() == again) << "round " << round;
  }
}

}  // namespace
}  // namespace linewatch
