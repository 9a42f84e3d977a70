# cmake -DSTRINGS=folder -DOUTPUT=file.cpp -P embed_string_tables.cmake
#
# Writes every folder/<language>.<table>.json, an object of texts by key, as the array that
# localization/string_tables.h declares.

file(GLOB files ${STRINGS}/*.json)
set(entries "")
foreach(file IN LISTS files)
  get_filename_component(name ${file} NAME)
  if(NOT name MATCHES "^([a-zA-Z-]+)\\.([a-z]+)\\.json$")
    message(FATAL_ERROR "${file}: the name is not <language>.<table>.json")
  endif()
  set(language ${CMAKE_MATCH_1})
  set(table ${CMAKE_MATCH_2})
  file(READ ${file} json)
  string(JSON count ERROR_VARIABLE error LENGTH "${json}")
  if(error)
    message(FATAL_ERROR "${file}: ${error}")
  endif()
  if(count GREATER 0)
    math(EXPR last "${count} - 1")
    foreach(i RANGE ${last})
      string(JSON key MEMBER "${json}" ${i})
      string(JSON type TYPE "${json}" "${key}")
      if(NOT type STREQUAL "STRING")
        message(FATAL_ERROR "${file}: ${key} is not a text")
      endif()
      string(JSON text GET "${json}" "${key}")
      string(APPEND entries "    {\"${language}\", \"${table}\", R\"~(${key})~\", R\"~(${text})~\"},\n")
    endforeach()
  endif()
endforeach()

file(WRITE ${OUTPUT} "// Made from resources/strings by embed_string_tables.cmake.
#include \"localization/string_tables.h\"

namespace linewatch {

namespace {

constexpr TableText kTexts[] = {
${entries}};

}  // namespace

std::span<const TableText> embeddedTexts() { return kTexts; }

}  // namespace linewatch
")
