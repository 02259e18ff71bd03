# The manual page, with the version, the folders and the options filled in, compressed as Debian wants it; the
# completions, each in the place where its shell looks; the schemas of the JSON documents. The options and the
# completions come from the command as it is built. A cross build runs it in the emulator, or takes them from a command
# of the same version for this machine.
find_program(GZIP gzip REQUIRED)
set(USBINFO_NATIVE_COMMAND "" CACHE FILEPATH "The usbinfo command that a cross build takes its documents from")
set(USBINFO_ZSH_FUNCTIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions"
    CACHE STRING "Where zsh's completion goes, relative to the prefix")
if(USBINFO_NATIVE_COMMAND)
  set(DOCUMENTED_COMMAND "${USBINFO_NATIVE_COMMAND}")
elseif(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  message(FATAL_ERROR "A cross build needs a usbinfo command that runs here: set USBINFO_NATIVE_COMMAND to its path")
else()
  set(DOCUMENTED_COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} "$<TARGET_FILE:usbinfo>")
endif()

configure_file(docs/usbinfo.1.in "${PROJECT_BINARY_DIR}/documents/usbinfo.1.in" @ONLY)

# generated_document(FILE WHAT): adds the rule for a file of the folder documents/ that the command generates. A build
# for packages has no search path for the library beside the command.
function(generated_document file what)
  add_custom_command(
    OUTPUT "documents/${file}"
    COMMAND "${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${PROJECT_BINARY_DIR}" ${DOCUMENTED_COMMAND} --generate ${what} >
            "documents/${file}"
    DEPENDS usbinfo
    WORKING_DIRECTORY "${PROJECT_BINARY_DIR}"
    COMMENT "Generating documents/${file}"
    VERBATIM)
endfunction()
generated_document(options.mdoc man)
generated_document(usbinfo.bash bash)
generated_document(_usbinfo zsh)
generated_document(usbinfo.fish fish)

# The same text gives the same bytes, which takes gzip's -n.
add_custom_command(
  OUTPUT documents/usbinfo.1 documents/usbinfo.1.gz
  COMMAND sed -e "/^%OPTIONS%/r options.mdoc" -e "/^%OPTIONS%/d" usbinfo.1.in > usbinfo.1
  COMMAND "${GZIP}" -9nc usbinfo.1 > usbinfo.1.gz
  DEPENDS "${PROJECT_BINARY_DIR}/documents/usbinfo.1.in" documents/options.mdoc
  WORKING_DIRECTORY "${PROJECT_BINARY_DIR}/documents"
  COMMENT "Generating documents/usbinfo.1"
  VERBATIM)
add_custom_target(usbinfo-documents ALL DEPENDS documents/usbinfo.1.gz documents/usbinfo.bash documents/_usbinfo
                                                documents/usbinfo.fish)

set(DOCUMENTS "${PROJECT_BINARY_DIR}/documents")
install(FILES "${DOCUMENTS}/usbinfo.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT usbinfo)
install(FILES "${DOCUMENTS}/usbinfo.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        RENAME usbinfo COMPONENT usbinfo)
install(FILES "${DOCUMENTS}/_usbinfo" DESTINATION "${USBINFO_ZSH_FUNCTIONS}" COMPONENT usbinfo)
install(FILES "${DOCUMENTS}/usbinfo.fish" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d"
        COMPONENT usbinfo)
install(FILES docs/usbinfo.schema.json docs/usbinfo-diff.schema.json docs/usbinfo-classes.schema.json
        DESTINATION "${CMAKE_INSTALL_DATADIR}/usbinfo" COMPONENT usbinfo)
