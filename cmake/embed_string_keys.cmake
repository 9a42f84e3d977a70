# cmake -DSTRINGS=folder -DOUTPUT=file.cpp -P embed_string_keys.cmake
#
# Writes the keys of folder/en.kestrow.json and folder/en.widget.json, with their table, as the array that
# simulation/roles/string_keys.h declares.

set(entries "")
foreach(table kestrow widget)
  file(READ ${STRINGS}/en.${table}.json json)
  string(JSON count LENGTH "${json}")
  math(EXPR last "${count} - 1")
  foreach(i RANGE ${last})
    string(JSON key MEMBER "${json}" ${i})
    string(APPEND entries "    {StringTable::${table}, R\"~(${key})~\"},\n")
  endforeach()
endforeach()

file(WRITE ${OUTPUT} "// Made from resources/strings by embed_string_keys.cmake.
#include \"simulation/roles/string_keys.h\"

namespace linewatch::simulation {

namespace {

constexpr StringKey kKeys[] = {
${entries}};

}  // namespace

std::span<const StringKey> stringKeys() { return kKeys; }

}  // namespace linewatch::simulation
")
