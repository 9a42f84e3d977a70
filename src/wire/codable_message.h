#pragma once

#include <memory>

#include "shared/object.h"
#include "shared/value.h"
#include "wire/message_reader.h"
#include "wire/message_writer.h"

namespace linewatch {

/// A record that can be turned into bytes (the Protocol Buffers wire encoding) and back.
///
/// A plain value without locking: each is used by one thread at a time. Copies share their nested messages,
/// so who changes a nested message changes it for all that share it; a deep copy shares nothing.
class CodableMessage : public Object {
 public:
  /// The generic description and the dictionary form, in words.
  std::string description() const override;
  /// One entry a present field, keyed by the field's name.
  virtual Dictionary dictionaryRepresentation() const = 0;
  /// Reads fields until the data ends. False when the data is not whole; the message is then partly filled
  /// and to be discarded. A field that occurs again replaces the earlier one; unknown fields are dropped.
  virtual bool readFrom(MessageReader& reader) = 0;
  /// Writes the present fields in the order of their numbers.
  virtual void writeTo(MessageWriter& writer) const = 0;
  /// Lays the present fields over those of `other`, which shares texts and nested messages from then on. Does
  /// nothing when `other` is of another class.
  virtual void copyTo(CodableMessage& other) const = 0;
  virtual std::shared_ptr<CodableMessage> deepCopy() const = 0;
  /// Of exactly the same class, with the same fields present, and those equal.
  bool isEqual(const Object& other) const override = 0;
  std::size_t hash() const override = 0;
  /// Takes over what is present in `other`: scalars and texts replace, lists are appended, a nested message
  /// is merged when both have one. Does nothing when `other` is of another class.
  virtual void mergeFrom(const CodableMessage& other) = 0;

  /// The message as bytes.
  Bytes data() const;
};

/// The message that the bytes hold; null when they do not read as one.
template <class Message>
std::shared_ptr<Message> messageWithData(const Bytes& data) {
  MessageReader reader(data);
  auto message = std::make_shared<Message>();
  return message->readFrom(reader) ? message : nullptr;
}

/// A message whose operations all follow from the table of its fields (`message_fields.h`, which the
/// message's source file includes to instantiate them).
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
