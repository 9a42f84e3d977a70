#include "wire/codable_message.h"

namespace linewatch {

std::string CodableMessage::description() const {
  return Object::description() + " " + linewatch::description(dictionaryRepresentation());
}

Bytes CodableMessage::data() const {
  MessageWriter writer;
  writeTo(writer);
  return writer.bytes();
}

}  // namespace linewatch
