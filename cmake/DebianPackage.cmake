# The Debian packages, built by scripts/package: usbinfo contains the command and all that it needs to run, usbinfo-store
# the store, which works without the other packages, usbinfo-dev the files for developers of hosts. This file adds the
# packages' documents to the installed files.
if(NOT USBINFO_COMMAND)
  message(FATAL_ERROR "USBINFO_PACKAGE needs USBINFO_COMMAND: the packages contain the command")
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL usbinfo usbinfo-dev)
if(TARGET usbinfo-store)
  list(APPEND CPACK_COMPONENTS_ALL usbinfo-store)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_VENDOR "The usbinfo developers")
set(CPACK_PACKAGE_CONTACT "${CPACK_PACKAGE_VENDOR} <usbinfo@example.org>"
    CACHE STRING "The packages' maintainer, as NAME <ADDRESS>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show, export and compare USB inventories")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_USBINFO_PACKAGE_NAME usbinfo)
set(CPACK_DEBIAN_USBINFO_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_USBINFO_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# dpkg's trigger updates the loader's cache, so no maintainer script does. Those that there are take care of
# running services.
set(CPACK_DEBIAN_USBINFO_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/cmake/debian/triggers" "${PROJECT_SOURCE_DIR}/cmake/debian/postinst"
    "${PROJECT_SOURCE_DIR}/cmake/debian/prerm" "${PROJECT_SOURCE_DIR}/cmake/debian/postrm")
set(CPACK_DEBIAN_USBINFO_PACKAGE_RECOMMENDS usbutils)
set(CPACK_DEBIAN_USBINFO_PACKAGE_SUGGESTS "prometheus-node-exporter, usb.ids")
set(CPACK_COMPONENT_USBINFO_DESCRIPTION
    "usbinfo reads the kernel's list of USB devices and shows the controllers,
the hubs, all ports, also the empty ones, the devices, and which device
is plugged into which port. It prints a tree for people, and documents
for programs, and compares inventories.

The package contains the plug-in module that reads the list, which a
system inventory host can load as well, and the small host in which the
command runs it, as a library for other programs.")

set(CPACK_DEBIAN_USBINFO-STORE_PACKAGE_NAME usbinfo-store)
set(CPACK_DEBIAN_USBINFO-STORE_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_USBINFO-STORE_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_USBINFO-STORE_PACKAGE_RECOMMENDS usbinfo)
set(CPACK_DEBIAN_USBINFO-STORE_PACKAGE_SUGGESTS "clustershell, libudev1, postgresql, rsyslog-relp, sqlite3, usb.ids")
set(CPACK_COMPONENT_USBINFO-STORE_DESCRIPTION
    "usbinfo-store keeps the inventories that usbinfo prints, of any number of
machines, in an SQLite file or a PostgreSQL database. It answers which
machine has a device, which machines have not reported, what changed, and
what a machine looked like at any time.")

set(CPACK_DEBIAN_USBINFO-DEV_PACKAGE_NAME usbinfo-dev)
set(CPACK_DEBIAN_USBINFO-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_USBINFO-DEV_PACKAGE_DEPENDS libboost-dev)
set(CPACK_COMPONENT_USBINFO-DEV_DEPENDS usbinfo)
set(CPACK_COMPONENT_USBINFO-DEV_DESCRIPTION
    "The plug-in module of usbinfo gives a system inventory host the USB
inventory as CIM instances. This package contains the files for
developers of hosts: the headers that a host implements, the headers and
the library of the small host that usbinfo uses, files for CMake and
pkg-config, and an example.")

# The documents that every package has to have under share/doc, in a folder with the package's name.
set(PACKAGE_FILES "${PROJECT_BINARY_DIR}/debian")
string(TIMESTAMP PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian/changelog "${PACKAGE_FILES}/changelog" @ONLY)
# compress(FROM TO): the same text gives the same bytes, which takes gzip's -n.
function(compress from to)
  execute_process(COMMAND "${GZIP}" -9nc "${from}" OUTPUT_FILE "${to}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()
compress("${PACKAGE_FILES}/changelog" "${PACKAGE_FILES}/changelog.Debian.gz")
compress("${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PACKAGE_FILES}/changelog.gz")
# The command contains code of libraries, so the packages have to contain their terms.
file(READ cmake/debian/copyright COPYRIGHT)
foreach(library libcli11-dev libsodium-dev nlohmann-json3-dev tao-pegtl-dev)
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
install(FILES README.md docs/monitoring.md docs/policies.md docs/watching.md DESTINATION share/doc/usbinfo COMPONENT usbinfo)
install(FILES docs/writing-a-host.md DESTINATION share/doc/usbinfo-dev COMPONENT usbinfo-dev)
install(DIRECTORY examples DESTINATION share/doc/usbinfo-dev COMPONENT usbinfo-dev
        PATTERN machines.jsonl EXCLUDE PATTERN fleet EXCLUDE PATTERN monitoring EXCLUDE)
# What docs/fleet.md has administrators put in place: each package brings the files of the machines that it is for. Their
# services are examples: none is installed.
set(PROGRAM_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(DIRECTORY examples/fleet DESTINATION share/doc/usbinfo/examples COMPONENT usbinfo
        PATTERN usbinfo.fact PERMISSIONS ${PROGRAM_PERMISSIONS}
        PATTERN roles.sql EXCLUDE PATTERN rsyslog-collector.conf EXCLUDE)
install(DIRECTORY examples/monitoring DESTINATION share/doc/usbinfo/examples COMPONENT usbinfo)
if(TARGET usbinfo-store)
  install(FILES docs/store.md docs/fleet.md DESTINATION share/doc/usbinfo-store COMPONENT usbinfo-store)
  install(DIRECTORY examples/fleet DESTINATION share/doc/usbinfo-store/examples COMPONENT usbinfo-store
          PATTERN usbinfo.fact PERMISSIONS ${PROGRAM_PERMISSIONS})
  install(FILES examples/machines.jsonl DESTINATION share/doc/usbinfo-store/examples COMPONENT usbinfo-store)
endif()
install(FILES cmake/debian/lintian-overrides DESTINATION share/lintian/overrides RENAME usbinfo COMPONENT usbinfo)
include(CPack)
