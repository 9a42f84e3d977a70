#pragma once

#include <memory>

#include "shared/object.h"
#include "shared/value.h"
#include "wire/message_reader.h"
#include "wire/message_writer.h"

namespace linewatch {

/// A record that can be turned into bytes (the Protocol Buffers wire encoding) and back.
///
/// Not thread-safe: one thread at a time uses a message. A copy shares nested messages with the original, so
/// a change to one shows in both; a deep copy shares nothing.
class CodableMessage : public Object {
 public:
  /// The object's generic description and its dictionary form as text.
  std::string description() const override;
  /// One entry for each present field, with the field's name as key.
  virtual Dictionary dictionaryRepresentation() const = 0;
  /// Reads fields until the data ends. False when the data is malformed or cut off: the message is then
  /// partly filled and must be discarded. A later occurrence of a field replaces an earlier one; unknown
  /// fields are dropped.
  virtual bool readFrom(MessageReader& reader) = 0;
  /// Writes the present fields in the order of their numbers.
  virtual void writeTo(MessageWriter& writer) const = 0;
  /// Assigns the present fields to `other`, which then shares the texts and nested messages. Does nothing
  /// when `other` is of another class.
  virtual void copyTo(CodableMessage& other) const = 0;
  /// A copy that shares nothing with this message.
  virtual std::shared_ptr<CodableMessage> deepCopy() const = 0;
  /// Whether `other` is of exactly the same class, has the same fields present, and equal values in them.
  bool isEqual(const Object& other) const override = 0;
  std::size_t hash() const override = 0;
  /// Merges the present fields of `other` into this message: scalars and texts are replaced, lists appended,
  /// and nested messages merged when both sides have one. Does nothing when `other` is of another class.
  virtual void mergeFrom(const CodableMessage& other) = 0;

  /// The message as bytes.
  Bytes data() const;
};

/// The message encoded in the bytes; null when they are malformed.
template <class Message>
std::shared_ptr<Message> messageWithData(const Bytes& data) {
  MessageReader reader(data);
  auto message = std::make_shared<Message>();
  return message->readFrom(reader) ? message : nullptr;
}

/// A message whose operations are generated from the table of its fields. The message's source file includes
/// `message_fields.h` to instantiate them.
template <class Message>
class FieldedMessage : public CodableMessage {
 public:
  Dictionary dictionaryRepresentation() const override;
  bool readFrom(MessageReader& reader) override;
  void writeTo(MessageWriter& writer) const override;
  void copyTo(CodableMessage& other) const override;
  std::shared_ptr<CodableMessage> deepCopy() const override;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  void mergeFrom(const CodableMessage& other) override;

 protected:
  using Self = Message;

 private:
  const Message& self() const { return static_cast<const Message&>(*this); }
  Message& self() { return static_cast<Message&>(*this); }
};

}  // namespace linewatch
