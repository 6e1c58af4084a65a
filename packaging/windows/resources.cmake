# Gives the program `target` what Windows shows of it: icon, version, manifest. Elsewhere there is nothing to give.
function(chanplan_windows_resources target description)
  if(NOT WIN32)
    return()
  endif()
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${resources} @ONLY)
  set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS
    "${PROJECT_SOURCE_DIR}/packaging/windows/program.manifest;${PROJECT_SOURCE_DIR}/share/icons/chanplan-editor.ico")
  target_sources(${target} PRIVATE ${resources})
endfunction()
