# The cheat sheets that come ready-made: the tool that was just built prints one for each document.
set(KEYVORA_MAPPINGS "" CACHE FILEPATH "keyvora-mappings for this machine, which prints the cheat sheets of a cross-build")

# keyvora_cheatsheets(VARIABLE FOLDER documents... [AFTER targets...]): prints the documents' sheets into a folder, once the
# targets are built, and sets the variable to their paths. In a cross-build without a tool that runs here there are none.
function(keyvora_cheatsheets variable folder)
  cmake_parse_arguments(ARG "" "" "AFTER" ${ARGN})
  set(${variable} "" PARENT_SCOPE)
  set(tool keyvora-mappings)
  if(KEYVORA_MAPPINGS)
    set(tool ${KEYVORA_MAPPINGS})
  elseif(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
    message(STATUS "No cheat sheets: keyvora-mappings is built for another system. Name one for this machine: KEYVORA_MAPPINGS")
    return()
  endif()
  set(sheets "")
  foreach(document IN LISTS ARG_UNPARSED_ARGUMENTS)
    cmake_path(GET document STEM name)
    if(name STREQUAL "mappings")
      set(sheet ${folder}/cheatsheet.html)
    else()
      set(sheet ${folder}/cheatsheet-${name}.html)
    endif()
    add_custom_command(
      OUTPUT ${sheet}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
      COMMAND ${tool} cheatsheet --html ${document} > ${sheet}
      DEPENDS ${tool} ${document} ${ARG_AFTER}
      COMMENT "Printing the cheat sheet of ${name}.json"
      VERBATIM)
    list(APPEND sheets ${sheet})
  endforeach()
  add_custom_target(keyvora_cheatsheets ALL DEPENDS ${sheets})
  set(${variable} ${sheets} PARENT_SCOPE)
endfunction()
