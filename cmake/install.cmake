# What `cmake --install` installs: the headers, both libraries, the files by which a host's build
# finds them, the tool with its completion, manual pages and documentation. No installed file names
# the folder that it was installed into, so the whole prefix can be moved.
#
# Each component is a package of a distribution: `runtime` (the shared library), `development` (what
# a host is built with), `tool` and `python`. What belongs to the last one, python/CMakeLists.txt
# says.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mailstructure)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

get_target_property(library_kind mailstructure TYPE)
set(installed_libraries mailstructure)
if(library_kind STREQUAL "SHARED_LIBRARY")
  list(APPEND installed_libraries mailstructure_static)
endif()

# This rule is the first, so that nothing is copied where a part of the build is missing.
set(built_for_runtime "")
set(built_for_development "")
set(built_for_tool "")
set(built_for_python "")
if(library_kind STREQUAL "SHARED_LIBRARY")
  set(built_for_runtime "$<TARGET_FILE:mailstructure>")
  set(built_for_development "$<TARGET_FILE:mailstructure_static>")
else()
  set(built_for_development "$<TARGET_FILE:mailstructure>")
endif()
if(MAILSTRUCTURE_TOOLS)
  set(built_for_tool "$<TARGET_FILE:mailstructure_tool>")
endif()
if(TARGET mailstructure_python AND MAILSTRUCTURE_PYTHON_DIR)
  set(built_for_python "$<TARGET_FILE:mailstructure_python>")
endif()
install(CODE "set(built_for_runtime \"${built_for_runtime}\")
set(built_for_development \"${built_for_development}\")
set(built_for_tool \"${built_for_tool}\")
set(built_for_python \"${built_for_python}\")
set(build_folder \"${CMAKE_BINARY_DIR}\")" ALL_COMPONENTS)
install(SCRIPT cmake/built.cmake ALL_COMPONENTS)

install(
  TARGETS ${installed_libraries}
  EXPORT mailstructureTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development)
install(
  EXPORT mailstructureTargets
  NAMESPACE mailstructure::
  DESTINATION ${package_dir}
  COMPONENT development)

configure_package_config_file(
  cmake/mailstructureConfig.cmake.in ${PROJECT_BINARY_DIR}/mailstructureConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/mailstructureConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/mailstructureConfig.cmake
        ${PROJECT_BINARY_DIR}/mailstructureConfigVersion.cmake
  DESTINATION ${package_dir}
  COMPONENT development)

# The .pc file names its folders relative to its own.
cmake_path(SET pkgconfig_place NORMALIZE "/prefix/${pkgconfig_dir}")
cmake_path(RELATIVE_PATH pkgconfig_place BASE_DIRECTORY /prefix OUTPUT_VARIABLE pkgconfig_depth)
string(REGEX REPLACE "[^/]+" ".." pkgconfig_to_prefix "${pkgconfig_depth}")

# A host of the static library that is not linked by a C++ compiler has to name the C++ runtime.
# Where there is no shared library, this holds for every host.
set(runtime_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER runtime_libraries INCLUDE REGEX "^(stdc\\+\\+|c\\+\\+|c\\+\\+abi|m)$")
list(REMOVE_DUPLICATES runtime_libraries)
list(TRANSFORM runtime_libraries PREPEND "-l")
list(JOIN runtime_libraries " " runtime_libraries)
set(pkgconfig_libs "-lmailstructure")
set(pkgconfig_private_libs "${runtime_libraries}")
if(NOT library_kind STREQUAL "SHARED_LIBRARY")
  string(APPEND pkgconfig_libs " ${runtime_libraries}")
  set(pkgconfig_private_libs "")
endif()
configure_file(cmake/mailstructure.pc.in ${PROJECT_BINARY_DIR}/mailstructure.pc @ONLY)
install(
  FILES ${PROJECT_BINARY_DIR}/mailstructure.pc
  DESTINATION ${pkgconfig_dir}
  COMPONENT development)

# A page is installed under the name of what it describes. The sources have a dot for the colons,
# which some file systems do not allow in names.
foreach(page MailStructure MailStructure::Fill MailStructure::MimeObj MailStructure::feeder
             MailStructure::header mail_findings mail_sections mail_structure_c)
  string(REPLACE "::" "." file ${page})
  install(
    FILES man/${file}.3
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man3
    RENAME ${page}.3
    COMPONENT development)
endforeach()

set(document_dir ${CMAKE_INSTALL_DOCDIR})
if(NOT PROJECT_IS_TOP_LEVEL)
  # CMAKE_INSTALL_DOCDIR is the folder of the host's documents.
  set(document_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/mailstructure)
endif()
install(
  FILES CHANGELOG.md LICENSE
  DESTINATION ${document_dir}
  COMPONENT runtime)
install(
  FILES HACKING.md README.md SECURITY.md
  DESTINATION ${document_dir}
  COMPONENT development)
# The descriptions of the output belong to the tool, but README.md and others have links to them.
install(
  FILES doc/architecture.md doc/behaviour.md doc/check.md doc/check.schema.json doc/extract.md
        doc/extract.schema.json doc/json.md doc/json.schema.json doc/map.md doc/map.svg
        doc/python.md doc/queries.md doc/queries.sql doc/queries_duckdb.sql doc/report.md
        doc/scan.md doc/scan.schema.json doc/scan.sql doc/standard.md
  DESTINATION ${document_dir}/doc
  COMPONENT development)
install(
  FILES bench/growth.svg bench/profile.md bench/python.md bench/results.md bench/results.svg
        bench/scan.md
  DESTINATION ${document_dir}/bench
  COMPONENT development)
install(
  FILES examples/list_parts.cpp examples/list_parts_c.c examples/list_attachments.cpp
        examples/serve_section.cpp examples/index_folder.cpp examples/milter.cpp
        examples/count_types.py
  DESTINATION ${document_dir}/examples
  COMPONENT development)

if(MAILSTRUCTURE_TOOLS)
  # Debian's zsh looks for functions of packages in a folder of its own.
  set(MAILSTRUCTURE_ZSH_DIR
      ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
      CACHE STRING "Where the completion for zsh is installed")
  install(TARGETS mailstructure_tool COMPONENT tool)
  install(
    PROGRAMS share/mailstructure/slurm/merge_shards share/mailstructure/slurm/scan_shard
             share/mailstructure/slurm/submit
    DESTINATION ${CMAKE_INSTALL_DATADIR}/mailstructure/slurm
    COMPONENT tool)
  install(
    FILES man/mailstructure.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT tool)
  install(
    FILES tools/completion/mailstructure
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    COMPONENT tool)
  install(
    FILES tools/completion/_mailstructure
    DESTINATION ${MAILSTRUCTURE_ZSH_DIR}
    COMPONENT tool)
  install(
    FILES tools/completion/mailstructure.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT tool)
  install(
    FILES doc/behaviour.md doc/check.md doc/check.schema.json doc/extract.md doc/extract.schema.json
          doc/json.md doc/json.schema.json doc/map.md doc/map.svg doc/queries.md doc/queries.sql
          doc/queries_duckdb.sql doc/report.md doc/scan.md doc/scan.schema.json doc/scan.sql
          doc/standard.md
    DESTINATION ${document_dir}/doc
    COMPONENT tool)
endif()
