# Looks for SOCI and its backends for SQLite and PostgreSQL: sets SOCI_FOUND, and makes the target usbinfo-soci. Debian's
# package has no files for CMake.
find_path(SOCI_INCLUDE_DIR soci/soci.h)
find_library(SOCI_CORE_LIBRARY soci_core)
find_library(SOCI_SQLITE3_LIBRARY soci_sqlite3)
find_library(SOCI_POSTGRESQL_LIBRARY soci_postgresql)
mark_as_advanced(SOCI_INCLUDE_DIR SOCI_CORE_LIBRARY SOCI_SQLITE3_LIBRARY SOCI_POSTGRESQL_LIBRARY)

set(SOCI_FOUND OFF)
if(SOCI_INCLUDE_DIR AND SOCI_CORE_LIBRARY AND SOCI_SQLITE3_LIBRARY AND SOCI_POSTGRESQL_LIBRARY)
  set(SOCI_FOUND ON)
  add_library(usbinfo-soci INTERFACE)
  target_include_directories(usbinfo-soci SYSTEM INTERFACE "${SOCI_INCLUDE_DIR}")
  target_link_libraries(usbinfo-soci INTERFACE "${SOCI_SQLITE3_LIBRARY}" "${SOCI_POSTGRESQL_LIBRARY}"
                                               "${SOCI_CORE_LIBRARY}")
endif()
