# The manual page and what shells complete command lines with: the program prints them from the
# declarations of its commands, so that they are those of the program that is installed.
set(QUOIN_SELF_MADE ${PROJECT_BINARY_DIR})

# quoin_self_made(<file> <folder> <words...>): what `quoin WORDS` prints, installed as folder/file.
function(quoin_self_made FILE FOLDER)
  set(OUTPUT ${QUOIN_SELF_MADE}/${FOLDER}/${FILE})
  cmake_path(GET OUTPUT PARENT_PATH PARENT)
  add_custom_command(OUTPUT ${OUTPUT}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PARENT}
    COMMAND $<TARGET_FILE:quoin_app> ${ARGN} > ${OUTPUT}
    DEPENDS quoin_app quoin_commands quoin_module quoinhost VERBATIM)
  set_property(TARGET quoin_app APPEND PROPERTY QUOIN_SELF_MADE ${OUTPUT})
  install(FILES ${OUTPUT} DESTINATION ${FOLDER} COMPONENT quoin)
endfunction()

quoin_self_made(quoin.1 ${CMAKE_INSTALL_MANDIR}/man1 help --man)
quoin_self_made(quoin ${CMAKE_INSTALL_DATADIR}/bash-completion/completions completion bash)
quoin_self_made(_quoin ${CMAKE_INSTALL_DATADIR}/zsh/site-functions completion zsh)
quoin_self_made(quoin.fish ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d completion fish)

get_target_property(QUOIN_SELF_MADE_FILES quoin_app QUOIN_SELF_MADE)
add_custom_target(quoin_self_made ALL DEPENDS ${QUOIN_SELF_MADE_FILES})
