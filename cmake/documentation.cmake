# Pages of the manual, made by pandoc where it is installed: from docs/ one for the tool, one for each of its commands, and
# those on the languages of patterns and replacements; from its header the one on the C interface.

find_program(CORVANE_PANDOC pandoc)
if(NOT CORVANE_PANDOC)
    message(STATUS "pandoc was not found: there will be no pages of the manual")
    return()
endif()

set(corvane_man_dir ${CMAKE_CURRENT_BINARY_DIR}/man)
set(corvane_man_filter ${CMAKE_CURRENT_SOURCE_DIR}/cmake/documentation/man_page.lua)
set(corvane_man_reader gfm)
set(corvane_man_pages)

# corvane_man_page(NAME SECTION SOURCE SUMMARY [pandoc options...]): SOURCE as NAME.SECTION. The filter knows the options
# that begin with -M.
function(corvane_man_page name section source summary)
    set(page ${corvane_man_dir}/${name}.${section})
    string(TOUPPER ${name} title)
    add_custom_command(OUTPUT ${page}
        COMMAND ${CORVANE_PANDOC} --standalone --from ${corvane_man_reader} --to man --lua-filter ${corvane_man_filter}
            -V "title=${title}" -V section=${section} -V "footer=corvane_regexp ${PROJECT_VERSION}"
            -V "header=Corvane Regexp" -V adjusting=l -M "name=${name}" -M "summary=${summary}" ${ARGN}
            --output ${page} ${PROJECT_SOURCE_DIR}/${source}
        DEPENDS ${PROJECT_SOURCE_DIR}/${source} ${corvane_man_filter} ${corvane_help_files}
        VERBATIM)
    set(corvane_man_pages ${corvane_man_pages} ${page} PARENT_SCOPE)
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endfunction()

file(MAKE_DIRECTORY ${corvane_man_dir})
corvane_man_page(corvane-dialect 7 docs/dialect.md "the pattern language of the Corvane regular expressions")
corvane_man_page(corvane-replacement 7 docs/replacement.md "the language of replacements for matches")
if(TARGET corvane_c)
    set(corvane_man_reader ${CMAKE_CURRENT_SOURCE_DIR}/cmake/documentation/c_header.lua)
    corvane_man_page(corvane_c 3 bindings/c/corvane/corvane.h "regular expressions for C")
    set(corvane_man_reader gfm)
endif()

# What a command prints about its options is printed by the tool itself, which therefore has to run here. The commands and
# their summaries are those of its table.
if(TARGET cvregexp AND (NOT CMAKE_CROSSCOMPILING OR CMAKE_CROSSCOMPILING_EMULATOR))
    corvane_man_page(cvregexp 1 docs/cvregexp.md "find and replace regular expressions in files" -M tool=yes)
    file(STRINGS ${PROJECT_SOURCE_DIR}/tools/command_table.cpp rows REGEX "^ +{\"[a-z-]+\", \"")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/command_table.cpp)
    foreach(row IN LISTS rows)
        string(REGEX MATCH "{\"([a-z-]+)\", \"(.+)\", [a-zA-Z]+}" row "${row}")
        set(command ${CMAKE_MATCH_1})
        set(summary "${CMAKE_MATCH_2}")
        set(corvane_help_files ${corvane_man_dir}/${command}.help)
        add_custom_command(OUTPUT ${corvane_help_files}
            COMMAND cvregexp ${command} --help > ${corvane_help_files} DEPENDS cvregexp VERBATIM)
        corvane_man_page(cvregexp-${command} 1 docs/cvregexp.md "${summary}" -M command=${command}
            -M help=${corvane_help_files})
    endforeach()
endif()

add_custom_target(corvane_man ALL DEPENDS ${corvane_man_pages} COMMENT "Pages of the manual")
