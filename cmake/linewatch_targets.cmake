# One target a folder of src/, so that the linker keeps the arrows between them: a folder that uses another without
# naming it here fails to link.

# Designated initializers may leave fields at their defaults, so the warning about missing fields is off.
add_library(linewatch_options INTERFACE)
target_compile_options(linewatch_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wno-missing-field-initializers -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  # GCC 12 wrongly warns of overlapping copies in an optimized `"literal" + std::string()`, and of uninitialized
  # members in empty optionals and variants.
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-maybe-uninitialized>)
target_include_directories(linewatch_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(LINEWATCH_SANITIZE)
  target_compile_options(linewatch_options INTERFACE -fsanitize=${LINEWATCH_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(linewatch_options INTERFACE -fsanitize=${LINEWATCH_SANITIZE})
endif()

# Adds the folder's target, a STATIC library or a MODULE, and sets `name` to the target's name. A folder without
# sources becomes an INTERFACE library. The functions below document the arguments.
function(linewatch_add_folder folder kind)
  cmake_parse_arguments(arg "" "" "DEPENDS;LINK" ${ARGN})
  string(REPLACE "/" "_" name ${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  set(scope PUBLIC)
  if(kind STREQUAL MODULE)
    set(scope PRIVATE)
  elseif(NOT sources)
    set(kind INTERFACE)
    set(scope INTERFACE)
  endif()
  add_library(${name} ${kind} ${sources})
  list(TRANSFORM arg_DEPENDS PREPEND linewatch::)
  target_link_libraries(${name} ${scope} linewatch_options ${arg_LINK} ${arg_DEPENDS})
  set(name ${name} PARENT_SCOPE)
endfunction()

# linewatch_library(folder [DEPENDS folder...] [LINK library...])
function(linewatch_library folder)
  linewatch_add_folder(${folder} STATIC ${ARGN})
  add_library(linewatch::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME linewatch_${name})
endfunction()

# linewatch_module(folder [DEPENDS folder...] [LINK library...]): a folder that the program loads when it first needs
# it; linewatch/<last part of the folder>.so.
function(linewatch_module folder)
  linewatch_add_folder(${folder} MODULE ${ARGN})
  get_filename_component(output ${folder} NAME)
  # A module has copies of the libraries that the program has too; neither takes the other's for its own.
  target_link_options(${name} PRIVATE -Wl,--exclude-libs,ALL)
  set_target_properties(${name} PROPERTIES OUTPUT_NAME ${output} PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/linewatch)
endfunction()

# linewatch_embed_string_tables(target folder): compiles the folder's string tables into the target.
function(linewatch_embed_string_tables target folder)
  file(GLOB tables CONFIGURE_DEPENDS ${folder}/*.json)
  # The names are in the command, so that it runs again when a file is removed.
  file(GLOB names RELATIVE ${folder} ${folder}/*.json)
  list(JOIN names " " names)
  set(script ${PROJECT_SOURCE_DIR}/cmake/embed_string_tables.cmake)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}_string_tables.cpp)
  add_custom_command(OUTPUT ${output} DEPENDS ${tables} ${script}
    COMMAND ${CMAKE_COMMAND} -DSTRINGS=${folder} "-DNAMES=${names}" -DOUTPUT=${output} -P ${script})
  target_sources(${target} PRIVATE ${output})
endfunction()

# linewatch_embed_string_keys(target folder): compiles the keys of the folder's string tables into the target.
function(linewatch_embed_string_keys target folder)
  set(tables ${folder}/en.kestrow.json ${folder}/en.widget.json)
  set(script ${PROJECT_SOURCE_DIR}/cmake/embed_string_keys.cmake)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}_string_keys.cpp)
  add_custom_command(OUTPUT ${output} DEPENDS ${tables} ${script}
    COMMAND ${CMAKE_COMMAND} -DSTRINGS=${folder} -DOUTPUT=${output} -P ${script})
  target_sources(${target} PRIVATE ${output})
endfunction()
