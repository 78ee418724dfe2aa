# Installs the headers that an application can include: the ones that are offered and all that these include in turn.
# The others need what only a build of the engine has. Run by the installation, which sets source_dir and
# header_folder.

cmake_policy(VERSION 3.25)

set(offered regexp/regexp.h regexp/base/compile_limits.h regexp/base/search_limits.h
    regexp/options/compile_options.h regexp/state/search_info.h
    regexp/nodes/graph_export.h regexp/inspect/hints.h regexp/inspect/outline.h
    regexp/inspect/pattern_parts.h
    regexp/parser/parser_context.h regexp/eval/expressions/evaluators.h regexp/analysis/reach.h
    regexp/text/text_search.h regexp/text/converter.h)
file(GLOB more RELATIVE ${source_dir} ${source_dir}/regexp/nodes/*.h ${source_dir}/host/*.h
    ${source_dir}/host/adapters/*.h)
list(APPEND offered ${more})

set(installed)
while(offered)
    list(POP_FRONT offered header)
    if(header IN_LIST installed)
        continue()
    endif()
    list(APPEND installed ${header})
    file(STRINGS ${source_dir}/${header} included REGEX "^#include \"")
    list(TRANSFORM included REPLACE "^#include \"([^\"]+)\".*" "\\1")
    list(APPEND offered ${included})
    cmake_path(GET header PARENT_PATH folder)
    file(INSTALL ${source_dir}/${header} DESTINATION ${CMAKE_INSTALL_PREFIX}/${header_folder}/${folder})
endwhile()
