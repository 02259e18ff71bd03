# The manual page, with the version and the folders filled in and compressed as Debian wants it; the completions, each
# in the place where its shell looks; the schemas of the JSON documents. All of it is made at configuration, so that a
# build of the command alone can be installed.
find_program(GZIP gzip REQUIRED)
configure_file(docs/usbinfo.1 "${PROJECT_BINARY_DIR}/usbinfo.1" @ONLY)

# compress(FROM TO): the same text gives the same bytes.
function(compress from to)
  execute_process(COMMAND "${GZIP}" -9nc "${from}" OUTPUT_FILE "${to}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()
compress("${PROJECT_BINARY_DIR}/usbinfo.1" "${PROJECT_BINARY_DIR}/usbinfo.1.gz")

set(USBINFO_ZSH_FUNCTIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions"
    CACHE STRING "Where zsh's completion goes, relative to the prefix")
install(FILES "${PROJECT_BINARY_DIR}/usbinfo.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT usbinfo)
install(FILES completions/usbinfo.bash DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        RENAME usbinfo COMPONENT usbinfo)
install(FILES completions/_usbinfo DESTINATION "${USBINFO_ZSH_FUNCTIONS}" COMPONENT usbinfo)
install(FILES docs/usbinfo.schema.json docs/usbinfo-diff.schema.json docs/usbinfo-classes.schema.json
        DESTINATION "${CMAKE_INSTALL_DATADIR}/usbinfo" COMPONENT usbinfo)
