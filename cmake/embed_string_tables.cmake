# cmake -DSTRINGS=folder -DNAMES="de.feed.json ..." -DOUTPUT=file.cpp -P embed_string_tables.cmake
#
# Writes the named files, <language>.<table>.json with an object of texts by key each, as the array that
# localization/string_tables.h declares: one string per language, with three lines per text (table, key, text), sorted by
# table and key. Strings need no relocation at the program's start, as pointers to each text would.

separate_arguments(names UNIX_COMMAND "${NAMES}")
set(languages "")
foreach(name IN LISTS names)
  set(file ${STRINGS}/${name})
  if(NOT name MATCHES "^([a-zA-Z-]+)\\.([a-z]+)\\.json$")
    message(FATAL_ERROR "${file}: the name is not <language>.<table>.json")
  endif()
  set(language ${CMAKE_MATCH_1})
  set(table ${CMAKE_MATCH_2})
  list(APPEND languages ${language})
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
      if("${key}${text}" MATCHES "\n")
        message(FATAL_ERROR "${file}: ${key} has more than one line")
      endif()
      string(APPEND texts_${language} "${table}\n${key}\n${text}\n")
    endforeach()
  endif()
endforeach()

list(REMOVE_DUPLICATES languages)
set(entries "")
foreach(language IN LISTS languages)
  string(APPEND entries "    {\"${language}\", R\"~(${texts_${language}})~\"sv},\n")
endforeach()

file(WRITE ${OUTPUT} "// Made from resources/strings by embed_string_tables.cmake.
#include \"localization/string_tables.h\"

namespace linewatch {

namespace {

using namespace std::string_view_literals;

constexpr EmbeddedLanguage kLanguages[] = {
${entries}};

}  // namespace

std::span<const EmbeddedLanguage> embeddedLanguages() { return kLanguages; }

}  // namespace linewatch
")
