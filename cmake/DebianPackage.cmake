# The Debian packages, built by scripts/package: usbinfo holds what the command needs to run, usbinfo-dev what a host's
# developer needs. This file says what goes into them besides what is installed anyway.
if(NOT USBINFO_COMMAND)
  message(FATAL_ERROR "USBINFO_PACKAGE takes USBINFO_COMMAND: the packages hold the command")
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL usbinfo usbinfo-dev)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_VENDOR "The usbinfo developers")
set(CPACK_PACKAGE_CONTACT "${CPACK_PACKAGE_VENDOR} <usbinfo@example.org>"
    CACHE STRING "The packages' maintainer, as NAME <ADDRESS>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show, export and compare USB inventories")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_USBINFO_PACKAGE_NAME usbinfo)
set(CPACK_DEBIAN_USBINFO_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_USBINFO_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The loader's cache is brought up to date by dpkg's trigger, not by scripts.
set(CPACK_DEBIAN_USBINFO_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/debian/DropLdconfig.cmake")
set(CPACK_DEBIAN_USBINFO_PACKAGE_RECOMMENDS usbutils)
set(CPACK_DEBIAN_USBINFO_PACKAGE_SUGGESTS usb.ids)
set(CPACK_COMPONENT_USBINFO_DESCRIPTION
    "usbinfo reads the kernel's list of USB devices and shows what is in it:
the controllers, the hubs, every port, the empty ones too, the devices,
and what is plugged in where. It prints a tree for people, and documents
for programs.

It comes with the plug-in module that does the reading, which a system
inventory host can load as well, and with the library of the small host
that the command runs it in.")

set(CPACK_DEBIAN_USBINFO-DEV_PACKAGE_NAME usbinfo-dev)
set(CPACK_DEBIAN_USBINFO-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_USBINFO-DEV_PACKAGE_DEPENDS libboost-dev)
set(CPACK_COMPONENT_USBINFO-DEV_DEPENDS usbinfo)
set(CPACK_COMPONENT_USBINFO-DEV_DESCRIPTION
    "The plug-in module of usbinfo answers a host's questions about USB. This
package holds what a host's developer needs: the headers that a host is
written against, the headers and the library of the included small host,
files for CMake and pkg-config, and an example.")

# The documents that every package must have under share/doc, in a folder with the package's name.
set(PACKAGE_FILES "${PROJECT_BINARY_DIR}/debian")
string(TIMESTAMP PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian/changelog "${PACKAGE_FILES}/changelog" @ONLY)
compress("${PACKAGE_FILES}/changelog" "${PACKAGE_FILES}/changelog.Debian.gz")
compress("${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PACKAGE_FILES}/changelog.gz")
# The command contains code of header-only libraries, whose licence terms have to be included.
file(READ cmake/debian/copyright COPYRIGHT)
foreach(library libcli11-dev nlohmann-json3-dev)
  set(terms "/usr/share/doc/${library}/copyright")
  if(EXISTS "${terms}")
    file(READ "${terms}" text)
    string(APPEND COPYRIGHT "\n-- ${library} --\n\n${text}")
  endif()
endforeach()
file(WRITE "${PACKAGE_FILES}/copyright" "${COPYRIGHT}")
foreach(package ${CPACK_COMPONENTS_ALL})
  install(FILES "${PACKAGE_FILES}/copyright" "${PACKAGE_FILES}/changelog.gz" "${PACKAGE_FILES}/changelog.Debian.gz"
          DESTINATION "share/doc/${package}" COMPONENT ${package})
endforeach()
install(FILES README.md DESTINATION share/doc/usbinfo COMPONENT usbinfo)
install(FILES docs/writing-a-host.md DESTINATION share/doc/usbinfo-dev COMPONENT usbinfo-dev)
install(DIRECTORY examples DESTINATION share/doc/usbinfo-dev COMPONENT usbinfo-dev)
install(FILES cmake/debian/lintian-overrides DESTINATION share/lintian/overrides RENAME usbinfo COMPONENT usbinfo)
include(CPack)
