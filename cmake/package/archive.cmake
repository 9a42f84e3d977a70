# Included by cpack before it makes each kind of package: an archive is unpacked into one folder, which may lie anywhere.
if(CPACK_GENERATOR STREQUAL "TGZ")
  set(CPACK_PACKAGING_INSTALL_PREFIX "/linewatch-${CPACK_PACKAGE_VERSION}")
endif()
