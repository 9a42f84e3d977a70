# Two more packages, for engineers: the shared libraries, which programs of others need, and the rest.

set(LINEWATCH_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(runtime liblinewatch${LINEWATCH_SOVERSION})
list(APPEND CPACK_COMPONENTS_ALL library development)
set(version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# The modules belong to the program's package.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "linewatch (= ${version})")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "libraries of LineWatch, for programs that embed it
The widget, the platform of the desktop, open transit feeds and the saved
state, each as a shared library.")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${desktop}/library/triggers)
foreach(name library development)
  configure_file(${desktop}/${name}/lintian-overrides ${PROJECT_BINARY_DIR}/${name}-overrides @ONLY)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/library-overrides DESTINATION share/lintian/overrides RENAME ${runtime}
  COMPONENT library)
install(FILES ${PROJECT_BINARY_DIR}/development-overrides DESTINATION share/lintian/overrides RENAME liblinewatch-dev
  COMPONENT development)
set(CPACK_ARCHIVE_LIBRARY_FILE_NAME lib${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME})

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblinewatch-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
# The libraries that the headers and the static libraries need.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${version}), nlohmann-json3-dev, robin-map-dev, libbz2-dev, \
libsqlite3-dev, zlib1g-dev, libicu-dev, qt6-base-dev, qt6-svg-dev, libxcb1-dev, libgl-dev, libopengl-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "headers and static libraries of LineWatch
Everything that is needed to build a program that embeds LineWatch's
widget or reads open transit feeds, with a CMake package and pkg-config
files.")
set(CPACK_ARCHIVE_DEVELOPMENT_FILE_NAME lib${CPACK_PACKAGE_NAME}-dev-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME})

foreach(component LIBRARY DEVELOPMENT)
  set(CPACK_DEBIAN_${component}_PACKAGE_RECOMMENDS "")
  string(TOLOWER ${component} name)
  set(package ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  install(FILES ${documents}/changelog.Debian.gz ${desktop}/copyright DESTINATION share/doc/${package} COMPONENT ${name})
endforeach()
