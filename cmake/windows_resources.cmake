# kitwright_windows_resources(target DESCRIPTION text [WINDOW])
# Gives a Windows program its version block; a program with windows gets the icon and the manifest too. Elsewhere it
# does nothing.
if(WIN32)
  enable_language(RC)
  find_program(KITWRIGHT_RSVG rsvg-convert REQUIRED)
  find_program(KITWRIGHT_CONVERT convert REQUIRED)
  set(KITWRIGHT_ICON ${CMAKE_BINARY_DIR}/kitwright.ico)
  set(icon_parts)
  foreach(edge 16 24 32 48 64 256)
    list(APPEND icon_parts ${CMAKE_BINARY_DIR}/kitwright-${edge}.png)
    add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/kitwright-${edge}.png
                       COMMAND ${KITWRIGHT_RSVG} -w ${edge} -h ${edge} -o ${CMAKE_BINARY_DIR}/kitwright-${edge}.png
                               ${PROJECT_SOURCE_DIR}/resources/app.svg
                       DEPENDS ${PROJECT_SOURCE_DIR}/resources/app.svg VERBATIM)
  endforeach()
  add_custom_command(OUTPUT ${KITWRIGHT_ICON} COMMAND ${KITWRIGHT_CONVERT} ${icon_parts} ${KITWRIGHT_ICON}
                     DEPENDS ${icon_parts} VERBATIM)
  add_custom_target(kitwright_icon DEPENDS ${KITWRIGHT_ICON})
endif()

function(kitwright_windows_resources target)
  if(NOT WIN32)
    return()
  endif()
  cmake_parse_arguments(PROGRAM "WINDOW" "DESCRIPTION" "" ${ARGN})
  get_target_property(PROGRAM_NAME ${target} OUTPUT_NAME)
  if(NOT PROGRAM_NAME)
    set(PROGRAM_NAME ${target})
  endif()
  set(PROGRAM_ICON)
  set(PROGRAM_MANIFEST)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  if(PROGRAM_WINDOW)
    set(PROGRAM_ICON "1 ICON \"${KITWRIGHT_ICON}\"")
    set(PROGRAM_MANIFEST "1 RT_MANIFEST \"${PROJECT_SOURCE_DIR}/resources/windows/kitwright.manifest\"")
    add_dependencies(${target} kitwright_icon)
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS
                                "${KITWRIGHT_ICON};${PROJECT_SOURCE_DIR}/resources/windows/kitwright.manifest")
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/resources/windows/program.rc.in ${script} @ONLY)
  target_sources(${target} PRIVATE ${script})
endfunction()
