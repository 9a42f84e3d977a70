# The libraries for engineers: each component is a shared and a static library of the folders that it names, made from
# the objects that the program has too, so that nothing is compiled twice. docs/embedding.md says how they are used.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
find_package(SQLite3 REQUIRED)
find_package(tsl-robin-map REQUIRED)

# Releases of one minor version can replace each other. The namespace of the targets has the major version.
set(LINEWATCH_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(LINEWATCH_NAMESPACE LineWatch${PROJECT_VERSION_MAJOR})
set(LINEWATCH_COMPONENT_TABLE "")
add_custom_target(library DEPENDS feeds_libcurl feeds_libzip desktop_network)

# linewatch_component(name
#   SUMMARY text
#   FOLDERS folder...      the folders of src/, as in src/CMakeLists.txt
#   [NEEDS component...]
#   [PUBLIC library...]    targets that the component's headers need
#   [PRIVATE library...]   libraries that its code alone needs
#   [PACKAGES package...]  the CMake packages of these libraries, with the arguments of find_package
#   [PKGCONFIG package...] their pkg-config packages: those of PUBLIC
#   [PKGCONFIG_PRIVATE package...] and those of PRIVATE
#   [LIBS_PRIVATE flag...]) and flags for libraries that have no pkg-config file
function(linewatch_component name)
  cmake_parse_arguments(arg "" "SUMMARY" "FOLDERS;NEEDS;PUBLIC;PRIVATE;PACKAGES;PKGCONFIG;PKGCONFIG_PRIVATE;LIBS_PRIVATE"
    ${ARGN})
  set(objects "")
  foreach(folder ${arg_FOLDERS})
    string(REPLACE "/" "_" target ${folder})
    get_target_property(type ${target} TYPE)
    if(NOT type STREQUAL INTERFACE_LIBRARY)
      list(APPEND objects $<TARGET_OBJECTS:${target}>)
    endif()
    linewatch_install_headers(${folder})
  endforeach()
  foreach(kind shared static)
    string(TOUPPER ${kind} type)
    set(target library_${name}_${kind})
    set(needs ${arg_NEEDS})
    list(TRANSFORM needs REPLACE "(.+)" "library_\\1_${kind}")
    add_library(${target} ${type} ${objects})
    target_link_libraries(${target} PUBLIC ${needs} ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:include/linewatch>)
    target_compile_features(${target} INTERFACE cxx_std_20)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX OUTPUT_NAME linewatch-${name}
      EXPORT_NAME ${name}_${kind} VERSION ${PROJECT_VERSION} SOVERSION ${LINEWATCH_SOVERSION}
      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
      INSTALL_RPATH $ORIGIN)
    add_dependencies(library ${target})
  endforeach()
  # A component that lacks one of its libraries must not link.
  target_link_options(library_${name}_shared PRIVATE -Wl,-z,defs -Wl,--as-needed)
  install(TARGETS library_${name}_shared library_${name}_static EXPORT LineWatch
    LIBRARY DESTINATION lib COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE DESTINATION lib COMPONENT development)
  linewatch_install_pkgconfig(${name})
  linewatch_describe_component(${name})
endfunction()

function(linewatch_install_headers folder)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.h ${PROJECT_SOURCE_DIR}/src/${folder}/*.inc)
  install(FILES ${headers} DESTINATION include/linewatch/${folder} COMPONENT development)
endfunction()

# Uses the arguments of linewatch_component.
macro(linewatch_install_pkgconfig name)
  set(requires ${arg_NEEDS})
  list(TRANSFORM requires REPLACE "(.+)" "linewatch-\\1 = ${PROJECT_VERSION}")
  list(APPEND requires ${arg_PKGCONFIG})
  list(JOIN requires ", " requires)
  list(JOIN arg_PKGCONFIG_PRIVATE ", " requires_private)
  list(JOIN arg_LIBS_PRIVATE " " libs_private)
  set(pc ${PROJECT_BINARY_DIR}/lib/pkgconfig/linewatch-${name}.pc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/package/linewatch.pc.in ${pc} @ONLY)
  install(FILES ${pc} DESTINATION lib/pkgconfig COMPONENT development)
endmacro()

# Adds the component to the table in LineWatchConfig.cmake.
macro(linewatch_describe_component name)
  list(JOIN arg_PACKAGES "\" \"" packages)
  string(APPEND LINEWATCH_COMPONENT_TABLE
    "set(_linewatch_${name}_needs ${arg_NEEDS})\nset(_linewatch_${name}_packages \"${packages}\")\n")
  set(LINEWATCH_COMPONENT_TABLE "${LINEWATCH_COMPONENT_TABLE}" PARENT_SCOPE)
  set(LINEWATCH_COMPONENT_NAMES ${LINEWATCH_COMPONENT_NAMES} ${name} PARENT_SCOPE)
endmacro()

linewatch_component(system
  SUMMARY "the widget and its toolkit, without a platform"
  FOLDERS shared wire wire/archive platform ui/layout ui activity analytics incidents list presentation widget
  PUBLIC nlohmann_json::nlohmann_json tsl::robin_map
  PRIVATE BZip2::BZip2 ${CMAKE_DL_LIBS}
  PACKAGES "nlohmann_json" "tsl-robin-map" "BZip2"
  PKGCONFIG nlohmann_json
  LIBS_PRIVATE -lbz2)
# Once is enough, because every component needs this one.
foreach(kind shared static)
  target_compile_definitions(library_system_${kind} INTERFACE $<INSTALL_INTERFACE:LINEWATCH_INSTALLATION="$<INSTALL_PREFIX>">)
endforeach()

linewatch_component(simulation
  SUMMARY "a platform in memory and virtual time, and scenarios"
  FOLDERS simulation/world simulation/roles simulation simulation/scenario simulation/recording
  NEEDS system)

linewatch_component(storage
  SUMMARY "the saved state, with SQLite"
  FOLDERS storage
  NEEDS system
  PRIVATE SQLite::SQLite3
  PACKAGES "SQLite3"
  PKGCONFIG_PRIVATE sqlite3)

linewatch_component(feeds
  SUMMARY "lines and incidents from open transit data"
  FOLDERS feeds/text feeds/gtfs feeds/alerts feeds/http feeds/zip feeds feeds/catalogue
  NEEDS storage system
  PRIVATE ZLIB::ZLIB ICU::i18n ICU::uc
  PACKAGES "ZLIB" "ICU COMPONENTS uc i18n"
  PKGCONFIG_PRIVATE zlib icu-i18n icu-uc)

linewatch_component(desktop
  SUMMARY "the platform of the desktop, with Qt"
  FOLDERS localization settings companion machine desktop/loop desktop desktop/drawing desktop/window desktop/setup
  NEEDS feeds storage system
  PUBLIC Qt6::Core Qt6::Gui Qt6::Widgets
  PRIVATE Qt6::DBus Qt6::Svg ICU::i18n ICU::uc BZip2::BZip2 xcb
  PACKAGES "Qt6 COMPONENTS Core DBus Gui Svg Widgets" "ICU COMPONENTS uc i18n" "BZip2"
  PKGCONFIG Qt6Core Qt6Gui Qt6Widgets
  PKGCONFIG_PRIVATE Qt6DBus Qt6Svg icu-i18n icu-uc xcb
  LIBS_PRIVATE -lbz2)

set(package ${PROJECT_BINARY_DIR}/lib/cmake/LineWatch)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/package/LineWatchConfig.cmake.in
  ${package}/LineWatchConfig.cmake INSTALL_DESTINATION lib/cmake/LineWatch NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${package}/LineWatchConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${package}/LineWatchConfig.cmake ${package}/LineWatchConfigVersion.cmake
  DESTINATION lib/cmake/LineWatch COMPONENT development)
install(EXPORT LineWatch FILE LineWatchTargets.cmake NAMESPACE ${LINEWATCH_NAMESPACE}::
  DESTINATION lib/cmake/LineWatch COMPONENT development)
