#pragma once

#include <string>
#include <vector>

namespace linewatch {

/// A row of a catalogue's spreadsheet. The defaults are those of a feed that needs no key.
struct RowSketch {
  std::string id;
  /// "sa" for alerts; empty: a timetable.
  std::string entities = "";
  std::string timetables = "";
  std::string country = "";
  std::string region = "";
  std::string city = "";
  std::string provider = "";
  std::string url = "https://agency.example/";
  std::string status = "";
  std::string replacements = "";
  /// "south,north,west,east".
  std::string box = ",,,";
  /// The kind, the page and the name of the key.
  std::string key = ",,";
  std::string copy = "";
  std::string name = "";
};

inline std::string spreadsheetOf(const std::vector<RowSketch>& rows) {
  std::string csv =
      "id,data_type,entity_type,static_reference,location.country_code,location.subdivision_name,"
      "location.municipality,provider,urls.direct_download,status,redirect.id,"
      "location.bounding_box.minimum_latitude,location.bounding_box.maximum_latitude,"
      "location.bounding_box.minimum_longitude,location.bounding_box.maximum_longitude,"
      "urls.authentication_type,urls.authentication_info,urls.api_key_parameter_name,urls.latest,name\n";
  for (const RowSketch& row : rows) {
    csv += row.id + (row.entities.empty() ? ",gtfs," : ",gtfs_rt,") + row.entities + "," + row.timetables;
    for (const std::string* const text :
         {&row.country, &row.region, &row.city, &row.provider, &row.url, &row.status, &row.replacements})
      csv += ",\"" + *text + "\"";
    csv += "," + row.box + "," + row.key + "," + row.copy + ",\"" + row.name + "\"\n";
  }
  return csv;
}

}  // namespace linewatch
