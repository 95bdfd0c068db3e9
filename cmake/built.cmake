# `cmake --install` runs this before it copies anything. It stops with one sentence if a library,
# the tool or the package for Python has not been built: a build of single targets may leave them
# out. cmake/install.cmake sets built_for_NAME to the built files that belong to the component.

set(not_built "")
foreach(component runtime development tool python)
  if(NOT CMAKE_INSTALL_COMPONENT OR CMAKE_INSTALL_COMPONENT STREQUAL component)
    foreach(file IN LISTS built_for_${component})
      if(NOT EXISTS "${file}")
        string(APPEND not_built "\n  ${file}")
      endif()
    endforeach()
  endif()
endforeach()
if(not_built)
  message(FATAL_ERROR "mailstructure is not installed, because these have not been built:"
                      "${not_built}\nThis command builds them: cmake --build ${build_folder}")
endif()
