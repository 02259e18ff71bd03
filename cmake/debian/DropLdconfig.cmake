# Run by CPack on the packages it has made: takes out the maintainer scripts that it writes for every shared library.
# All they do is to call ldconfig, which dpkg does by itself after any number of packages, as the file "triggers" asks.
find_program(DPKG_DEB dpkg-deb REQUIRED)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(folder "${package}.unpacked")
  file(REMOVE_RECURSE "${folder}")
  execute_process(COMMAND "${DPKG_DEB}" --raw-extract "${package}" "${folder}" COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE "${folder}/DEBIAN/postinst" "${folder}/DEBIAN/postrm")
  execute_process(COMMAND "${DPKG_DEB}" --root-owner-group -Zxz --build "${folder}" "${package}"
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${folder}")
endforeach()
