#pragma once

#include <cstddef>
#include <memory>

#include "wire/codable_message.h"
#include "wire/message_field_comparing.h"
#include "wire/message_field_copying.h"
#include "wire/message_field_dictionary.h"
#include "wire/message_field_holders.h"
#include "wire/message_field_reading.h"
#include "wire/message_field_writing.h"

/// The operations of every message and nested record, each one function over the table of fields
/// (`message_field.h`). Source files that define a message include this; users include the message's header.
namespace linewatch {

template <class Message>
Dictionary FieldedMessage<Message>::dictionaryRepresentation() const {
  return fields::dictionary(self());
}

template <class Message>
bool FieldedMessage<Message>::readFrom(MessageReader& reader) {
  return fields::read(reader, self());
}

template <class Message>
void FieldedMessage<Message>::writeTo(MessageWriter& writer) const {
  fields::write(writer, self());
}

template <class Message>
void FieldedMessage<Message>::copyTo(CodableMessage& other) const {
  auto* same = dynamic_cast<Message*>(&other);
  if (same != nullptr && same != this) fields::copyShallow(self(), *same);
}

template <class Message>
std::shared_ptr<CodableMessage> FieldedMessage<Message>::deepCopy() const {
  auto copy = std::make_shared<Message>();
  fields::copyDeep(self(), *copy);
  return copy;
}

template <class Message>
bool FieldedMessage<Message>::isEqual(const Object& other) const {
  return typeid(*this) == typeid(other) && fields::equal(self(), static_cast<const Message&>(other));
}

template <class Message>
std::size_t FieldedMessage<Message>::hash() const {
  return fields::hash(self());
}

template <class Message>
void FieldedMessage<Message>::mergeFrom(const CodableMessage& other) {
  if (const auto* same = dynamic_cast<const Message*>(&other)) fields::merge(*same, self());
}

}  // namespace linewatch
