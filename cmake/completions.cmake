# Completions for shells. Each script asks the installed tool for its commands and options, so that none lists them; what
# reads its help is one program for awk, which is put into each.

if(NOT TARGET cvregexp)
    return()
endif()

file(READ ${PROJECT_SOURCE_DIR}/tools/completions/help_words.awk corvane_help_words)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/completions/help_words.awk)
string(FIND "${corvane_help_words}" "'" quote)
if(NOT quote EQUAL -1)
    message(FATAL_ERROR "tools/completions/help_words.awk is put between single quotes and must have none")
endif()

# corvane_completion(SOURCE FOLDER NAME): below the prefix, where the shell looks for completions of `cvregexp`.
function(corvane_completion source folder name)
    configure_file(${PROJECT_SOURCE_DIR}/tools/completions/${source}.in ${PROJECT_BINARY_DIR}/completions/${source} @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/completions/${source} DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder} RENAME ${name})
endfunction()

corvane_completion(cvregexp.bash bash-completion/completions cvregexp)
corvane_completion(cvregexp.zsh zsh/site-functions _cvregexp)
corvane_completion(cvregexp.fish fish/vendor_completions.d cvregexp.fish)
