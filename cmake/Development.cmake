# What a host's developer gets: the headers, a CMake package with the targets usbinfo::host (the headers),
# usbinfo::standin (the library) and usbinfo::plugin (the module), and a pkg-config file. All of it finds its
# neighbours from its own place, so that an installation may be moved.
include(CMakePackageConfigHelpers)

set(CONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/usbinfo")
set(PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(GENERATED_DIR "${CMAKE_CURRENT_BINARY_DIR}/development")

set_target_properties(usbinfo-host PROPERTIES EXPORT_NAME host)
install(TARGETS usbinfo-host EXPORT usbinfo)
install(EXPORT usbinfo NAMESPACE usbinfo:: FILE usbinfoTargets.cmake DESTINATION "${CONFIG_DIR}"
        COMPONENT usbinfo-dev)

set(MODULE_FILE "${CMAKE_INSTALL_LIBDIR}/usbinfo/usbinfo-plugin.so")
configure_package_config_file(
  cmake/usbinfoConfig.cmake.in "${GENERATED_DIR}/usbinfoConfig.cmake" INSTALL_DESTINATION "${CONFIG_DIR}"
  PATH_VARS MODULE_FILE NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file("${GENERATED_DIR}/usbinfoConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${GENERATED_DIR}/usbinfoConfig.cmake" "${GENERATED_DIR}/usbinfoConfigVersion.cmake"
        DESTINATION "${CONFIG_DIR}" COMPONENT usbinfo-dev)

file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG "${CMAKE_INSTALL_PREFIX}/${PKGCONFIG_DIR}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" PREFIX_FROM_PKGCONFIG "${PREFIX_FROM_PKGCONFIG}")
configure_file(cmake/usbinfo.pc.in "${GENERATED_DIR}/usbinfo.pc" @ONLY)
install(FILES "${GENERATED_DIR}/usbinfo.pc" DESTINATION "${PKGCONFIG_DIR}" COMPONENT usbinfo-dev)

install(DIRECTORY host schema standin DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/usbinfo" COMPONENT usbinfo-dev
        FILES_MATCHING PATTERN "*.h")
