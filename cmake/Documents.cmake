# Of each command, the manual page, with the version, the folders and the options filled in, compressed as Debian wants it;
# the completions, each in the place where its shell looks. Then the schemas of the JSON documents. The options and the
# completions come from the command as it is built. A cross build runs it in the emulator, or takes them from a command
# of the same version for this machine.
find_program(GZIP gzip REQUIRED)
set(USBINFO_NATIVE_COMMAND "" CACHE FILEPATH "The usbinfo command that a cross build takes its documents from")
set(USBINFO_NATIVE_STORE_COMMAND "" CACHE FILEPATH "The same for usbinfo-store")
set(USBINFO_ZSH_FUNCTIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions"
    CACHE STRING "Where zsh's completion goes, relative to the prefix")
set(DOCUMENTS "${PROJECT_BINARY_DIR}/documents")

# generated_document(COMMAND FILE WHAT PROGRAM...): adds the rule for a file of the folder documents/ that the command
# generates; PROGRAM runs it. A build for packages has no search path for the library beside the command.
function(generated_document command file what)
  add_custom_command(
    OUTPUT "documents/${file}"
    COMMAND "${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${PROJECT_BINARY_DIR}" ${ARGN} --generate ${what} >
            "documents/${file}"
    DEPENDS ${command}
    WORKING_DIRECTORY "${PROJECT_BINARY_DIR}"
    COMMENT "Generating documents/${file}"
    VERBATIM)
endfunction()

# manual_page(COMMAND PAGE SELECTION): makes and installs documents/PAGE.1.gz from docs/PAGE.1.in, where the options that
# COMMAND generates replace %OPTIONS%; of these, what the sed script SELECTION prints.
function(manual_page command page selection)
  configure_file("docs/${page}.1.in" "${DOCUMENTS}/${page}.1.in" @ONLY)
  # The same text gives the same bytes, which takes gzip's -n.
  add_custom_command(
    OUTPUT documents/${page}.1 documents/${page}.1.gz
    COMMAND sed -n -e "${selection}" ${command}.options.mdoc > ${page}.selected.mdoc
    COMMAND sed -e "/^%OPTIONS%/r ${page}.selected.mdoc" -e "/^%OPTIONS%/d" ${page}.1.in > ${page}.1
    COMMAND "${GZIP}" -9nc ${page}.1 > ${page}.1.gz
    DEPENDS "${DOCUMENTS}/${page}.1.in" documents/${command}.options.mdoc
    WORKING_DIRECTORY "${DOCUMENTS}"
    COMMENT "Generating documents/${page}.1"
    VERBATIM)
  install(FILES "${DOCUMENTS}/${page}.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${command})
endfunction()

# document_command(COMMAND NATIVE SUBCOMMAND...): makes and installs the documents of the command, which is a target and
# the component that they belong to. Its manual page begins as docs/COMMAND.1.in, and that of each SUBCOMMAND named as
# docs/COMMAND-SUBCOMMAND.1.in. NATIVE is empty or a command to take the documents from.
function(document_command command native)
  if(native)
    set(program "${native}")
  elseif(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
    message(FATAL_ERROR "A cross build needs a ${command} command that runs here: set USBINFO_NATIVE_COMMAND, and "
                        "USBINFO_NATIVE_STORE_COMMAND where the store is built, to their paths")
  else()
    set(program ${CMAKE_CROSSCOMPILING_EMULATOR} "$<TARGET_FILE:${command}>")
  endif()
  generated_document(${command} ${command}.options.mdoc man ${program})
  generated_document(${command} ${command}.bash bash ${program})
  generated_document(${command} _${command} zsh ${program})
  generated_document(${command} ${command}.fish fish ${program})
  manual_page(${command} ${command} p)
  set(pages documents/${command}.1.gz)
  foreach(subcommand IN LISTS ARGN)
    manual_page(${command} ${command}-${subcommand} "/^[.]Ss Options of ${subcommand}\$/,/^[.]Ss/{/^[.]Ss/!p}")
    list(APPEND pages documents/${command}-${subcommand}.1.gz)
  endforeach()
  add_custom_target(${command}-documents ALL
                    DEPENDS ${pages} documents/${command}.bash documents/_${command} documents/${command}.fish)
  install(FILES "${DOCUMENTS}/${command}.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
          RENAME ${command} COMPONENT ${command})
  install(FILES "${DOCUMENTS}/_${command}" DESTINATION "${USBINFO_ZSH_FUNCTIONS}" COMPONENT ${command})
  install(FILES "${DOCUMENTS}/${command}.fish" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d"
          COMPONENT ${command})
endfunction()

document_command(usbinfo "${USBINFO_NATIVE_COMMAND}" check)
if(TARGET usbinfo-store)
  document_command(usbinfo-store "${USBINFO_NATIVE_STORE_COMMAND}")
  install(FILES docs/usbinfo-changes.schema.json docs/usbinfo-checks.schema.json docs/usbinfo-lists.schema.json
          DESTINATION "${CMAKE_INSTALL_DATADIR}/usbinfo" COMPONENT usbinfo-store)
endif()

install(FILES docs/usbinfo.schema.json docs/usbinfo-check.schema.json docs/usbinfo-diff.schema.json
              docs/usbinfo-classes.schema.json docs/usbinfo-watch.schema.json
        DESTINATION "${CMAKE_INSTALL_DATADIR}/usbinfo" COMPONENT usbinfo)
