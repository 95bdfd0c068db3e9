# What `cmake --install` lays down: the header, both libraries, the files by which a host's build finds
# them, the tool and its manual page. Nothing installed names the folder it was installed into, so the
# whole prefix can be moved.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mailstructure)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(
  TARGETS mailstructure mailstructure_static
  EXPORT mailstructureTargets
  FILE_SET HEADERS)
install(
  EXPORT mailstructureTargets
  NAMESPACE mailstructure::
  DESTINATION ${package_dir})

configure_package_config_file(cmake/mailstructureConfig.cmake.in ${PROJECT_BINARY_DIR}/mailstructureConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mailstructureConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mailstructureConfig.cmake ${PROJECT_BINARY_DIR}/mailstructureConfigVersion.cmake
        DESTINATION ${package_dir})

# The .pc file gives its folders relative to its own place.
cmake_path(SET pkgconfig_place NORMALIZE "/prefix/${pkgconfig_dir}")
cmake_path(RELATIVE_PATH pkgconfig_place BASE_DIRECTORY /prefix OUTPUT_VARIABLE pkgconfig_depth)
string(REGEX REPLACE "[^/]+" ".." pkgconfig_to_prefix "${pkgconfig_depth}")
configure_file(cmake/mailstructure.pc.in ${PROJECT_BINARY_DIR}/mailstructure.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mailstructure.pc DESTINATION ${pkgconfig_dir})

# A page is named after what it describes; a colon in a file name is more than some file systems take.
foreach(page MailStructure MailStructure::Fill MailStructure::MimeObj MailStructure::header)
  string(REPLACE "::" "." file ${page})
  install(
    FILES man/${file}.3
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man3
    RENAME ${page}.3)
endforeach()

if(MAILSTRUCTURE_TOOLS)
  install(TARGETS mailstructure_tool)
  install(FILES man/mailstructure.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
