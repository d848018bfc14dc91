# What `cmake --install` and `cpack` give: the library, what it takes to build against it (component
# dev), and the tool with the dictionary set and its pages.
include(CMakePackageConfigHelpers)

set(headersFolder ${CMAKE_INSTALL_INCLUDEDIR}/radius-packet-parser)
set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/RadiusPacketParser)
install(TARGETS RadiusPacketParser EXPORT RadiusPacketParserTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT dev
  FILE_SET HEADERS DESTINATION ${headersFolder} COMPONENT dev
  FILE_SET platform DESTINATION ${headersFolder} COMPONENT dev)
install(EXPORT RadiusPacketParserTargets NAMESPACE RadiusPacketParser::
  DESTINATION ${packageFolder} COMPONENT dev)
configure_package_config_file(cmake/RadiusPacketParserConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/RadiusPacketParserConfig.cmake INSTALL_DESTINATION ${packageFolder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/RadiusPacketParserConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/RadiusPacketParserConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/RadiusPacketParserConfigVersion.cmake
  DESTINATION ${packageFolder} COMPONENT dev)
# Found from where the file stands, wherever all of it is put.
file(RELATIVE_PATH prefixFromPkgConfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/radius-packet-parser.pc.in radius-packet-parser.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/radius-packet-parser.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME radius-packet-parser)
# A Debian package names a maintainer: whoever makes it for others says who that is.
set(RADIUS_PACKAGE_CONTACT "The authors of libRadiusPacketParser <radius-packet-parser@localhost>"
    CACHE STRING "The maintainer that stands in the packages")
set(CPACK_PACKAGE_CONTACT "${RADIUS_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library dev tool)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR}/RadiusPacketParser)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME
  libradiuspacketparser${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/postinst ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/postrm)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "${PROJECT_DESCRIPTION}
 Decodes, validates, builds and edits RADIUS packets and loads dictionary files.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libradiuspacketparser-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION}), libfmt-dev (>= 9.1)")
set(CPACK_DEBIAN_DEV_DESCRIPTION "${PROJECT_DESCRIPTION} (development)
 Headers, CMake package and pkg-config file.")
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME radius-packet)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOL_DESCRIPTION "Says what RADIUS packets hold and why they are refused
 The command line of libRadiusPacketParser, with a dictionary set.")
include(CPack)
