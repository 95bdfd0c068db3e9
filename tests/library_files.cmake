# Tests of the files that the library consists of: the header in every language standard, the build by one
# command, the exported symbols, and an installed copy as hosts use it.

separate_arguments(compiler_flags NATIVE_COMMAND "${CMAKE_CXX_FLAGS}")

foreach(standard 17 20 2b)
  add_test(NAME header_is_clean_cxx${standard}
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/interface/header_check.sh ${CMAKE_CXX_COMPILER} ${standard}
                   ${PROJECT_SOURCE_DIR}/include/mail_structure.h)
endforeach()

add_test(NAME library_builds_by_one_command COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/interface/one_command_build.sh
                                                    ${CMAKE_CXX_COMPILER} ${PROJECT_SOURCE_DIR})

# What follows is about the shared library, which BUILD_SHARED_LIBS can leave out.
get_target_property(library_kind mailstructure TYPE)
if(NOT library_kind STREQUAL "SHARED_LIBRARY")
  return()
endif()

add_test(
  NAME exported_symbols_are_the_listed_ones
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/interface/exported_symbols.sh ${CMAKE_NM} $<TARGET_FILE:mailstructure>
          ${CMAKE_CURRENT_SOURCE_DIR}/data/exported_symbols.txt)

# The consumers are built in the way the library was: sanitizers, for instance, want both sides to agree.
set(ways find_package pkg_config)
if(MAILSTRUCTURE_TOOLS)
  list(APPEND ways tool)
endif()
foreach(way ${ways})
  add_test(
    NAME installed_copy_serves_${way}
    COMMAND
      ${CMAKE_CURRENT_SOURCE_DIR}/consumer/check.sh ${way} ${PROJECT_BINARY_DIR}
      ${CMAKE_CURRENT_BINARY_DIR}/consumer_${way} ${CMAKE_INSTALL_LIBDIR} ${CMAKE_CXX_COMPILER} "${CMAKE_CXX_FLAGS}")
endforeach()
