# What cmake --install puts where, and how cpack makes packages of it. The program finds its parts from its own place, so
# that an installation can be moved (shared/installation.h). The desktop entry and the files for D-Bus and systemd find
# it in PATH.

include(GNUInstallDirs)

# The program looks for its parts in ../lib/linewatch, on every distribution.
install(TARGETS linewatch RUNTIME DESTINATION bin COMPONENT program)
install(TARGETS linewatch-screen RUNTIME DESTINATION lib/linewatch COMPONENT program)
install(TARGETS app_sdbus desktop_network feeds_libcurl feeds_libzip LIBRARY DESTINATION lib/linewatch COMPONENT program)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/samples/city DESTINATION share/linewatch COMPONENT program)

set(LINEWATCH_ID org.linewatch.LineWatch)
set(desktop ${PROJECT_SOURCE_DIR}/resources/desktop)
install(FILES ${desktop}/${LINEWATCH_ID}.desktop DESTINATION share/applications COMPONENT program)
install(FILES ${desktop}/${LINEWATCH_ID}.svg DESTINATION share/icons/hicolor/scalable/apps COMPONENT program)
install(FILES ${desktop}/${LINEWATCH_ID}-symbolic.svg DESTINATION share/icons/hicolor/symbolic/apps COMPONENT program)
set(presence ${PROJECT_SOURCE_DIR}/resources/presence)
install(FILES ${presence}/${LINEWATCH_ID}.service DESTINATION share/dbus-1/services COMPONENT program)
install(FILES ${presence}/${LINEWATCH_ID}.xml DESTINATION share/dbus-1/interfaces COMPONENT program)
install(FILES ${presence}/linewatch.service DESTINATION lib/systemd/user COMPONENT program)
set(LINEWATCH_RELEASE_DATE 2026-11-26)
configure_file(${desktop}/${LINEWATCH_ID}.metainfo.xml.in ${PROJECT_BINARY_DIR}/${LINEWATCH_ID}.metainfo.xml @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${LINEWATCH_ID}.metainfo.xml DESTINATION share/metainfo COMPONENT program)

set(completions ${PROJECT_SOURCE_DIR}/resources/completions)
install(FILES ${completions}/linewatch.bash DESTINATION share/bash-completion/completions RENAME linewatch
  COMPONENT program)
install(FILES ${completions}/_linewatch DESTINATION share/zsh/vendor-completions COMPONENT program)
install(FILES ${completions}/linewatch.fish DESTINATION share/fish/vendor_completions.d COMPONENT program)

# The changes, and beside them the short list that Debian wants of each package.
set(LINEWATCH_RELEASE_TIME "Thu, 26 Nov 2026 12:00:00 +0000")
set(documents ${PROJECT_BINARY_DIR}/share/doc/linewatch)
configure_file(${desktop}/changelog.Debian.in ${PROJECT_BINARY_DIR}/changelog.Debian @ONLY)
add_custom_command(OUTPUT ${documents}/changelog.gz ${documents}/changelog.Debian.gz
  DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_BINARY_DIR}/changelog.Debian
  COMMAND ${CMAKE_COMMAND} -E make_directory ${documents}
  COMMAND sh -c "gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${documents}/changelog.gz" VERBATIM
  COMMAND sh -c "gzip -9nc ${PROJECT_BINARY_DIR}/changelog.Debian > ${documents}/changelog.Debian.gz" VERBATIM)
add_custom_target(changelog ALL DEPENDS ${documents}/changelog.gz)
install(FILES ${documents}/changelog.gz ${documents}/changelog.Debian.gz ${desktop}/copyright
  DESTINATION share/doc/linewatch COMPONENT program)
install(FILES ${desktop}/lintian-overrides DESTINATION share/lintian/overrides RENAME linewatch COMPONENT program)

# The manual pages need scdoc, which users who build from source may not have.
find_program(SCDOC scdoc)
find_package(Python3 COMPONENTS Interpreter)
if(SCDOC AND Python3_FOUND)
  set(maker ${PROJECT_SOURCE_DIR}/scripts/make_man_page)
  foreach(name linewatch.1 linewatch-settings.5)
    string(REGEX REPLACE ".*\\." man section ${name})
    set(template ${PROJECT_SOURCE_DIR}/docs/man/${name}.scd.in)
    set(folder ${PROJECT_BINARY_DIR}/share/man/${section})
    set(page ${folder}/${name}.gz)
    add_custom_command(OUTPUT ${page} DEPENDS ${maker} ${template} linewatch
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
      COMMAND sh -c "${Python3_EXECUTABLE} ${maker} $<TARGET_FILE:linewatch> ${template} | ${SCDOC} | gzip -9n > ${page}" VERBATIM)
    install(FILES ${page} DESTINATION share/man/${section} COMPONENT program OPTIONAL)
    list(APPEND pages ${page})
  endforeach()
  add_custom_target(man DEPENDS ${pages})
endif()

set(CPACK_PACKAGE_NAME linewatch)
set(CPACK_PACKAGE_VENDOR "The LineWatch authors")
set(CPACK_PACKAGE_CONTACT "The LineWatch authors <authors@linewatch.invalid>")
# The first line is the summary.
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "tells whether your transit lines run normally
A small panel shows the incidents of the bus, train and metro lines
that you save as favourites. It reads the open feeds (GTFS and
GTFS-Realtime) of transit agencies. The same list is printed on a
terminal, drawn into a picture, and written as JSON.")
set(CPACK_PACKAGE_HOMEPAGE_URL https://linewatch.invalid/)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/package/archive.cmake)
set(CPACK_COMPONENTS_ALL program)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME linewatch)
set(CPACK_ARCHIVE_PROGRAM_FILE_NAME ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no library link names: the plug-ins for SVG and Wayland, fonts, and certificates for HTTPS.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "libqt6svg6, qt6-qpa-plugins, fonts-inter, ca-certificates")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, fonts-dejavu-core, fonts-noto-ui-core, fonts-wqy-microhei, fonts-ipaexfont-gothic, fonts-noto-color-emoji")
if(LINEWATCH_LIBRARY)
  include(${PROJECT_SOURCE_DIR}/cmake/library_packages.cmake)
endif()
include(CPack)
