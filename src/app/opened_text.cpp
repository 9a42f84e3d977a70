#include "app/opened_text.h"

#include <nlohmann/json.hpp>

#include "companion/opened_content.h"
#include "shared/file_contents.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

struct DictionaryForm {
  Value operator()(const std::shared_ptr<const RovaActivity>& activity) const {
    return activity->dictionaryRepresentation();
  }
  Value operator()(const StoredIncidents& incidents) const {
    Array forms;
    for (const auto& incident : incidents) forms.emplace_back(incident->dictionaryRepresentation());
    return forms;
  }
};

}  // namespace

Outcome<std::string> openedText(const std::string& file, KeyedArchiver& archiver) {
  const Outcome<std::string> contents = contentsOf(file);
  if (!contents) return contents.error();
  const auto opened = decodeOpenedContent(file, Bytes(contents->begin(), contents->end()), archiver);
  if (!opened) return opened.error();
  return nlohmann::ordered_json::parse(jsonText(std::visit(DictionaryForm{}, *opened))).dump(2) + "\n";
}

}  // namespace linewatch::app
