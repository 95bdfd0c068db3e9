# The Debian packages that `cpack` builds: libmailstructure1, libmailstructure-dev, mailstructure
# and python3-mailstructure, one for each component of cmake/install.cmake. The folders must be
# those of a Debian system, which the preset `package` sets:
#
#     cmake --preset package && cmake --build --preset package && cpack --preset package
#
# cmake/debian/stage.cmake brings each package's files into the form that Debian expects.
# cmake/debian/settings.cmake takes the time stamp of everything from the changelog, so that the
# same sources always give the same packages.

set(debian_files ${PROJECT_SOURCE_DIR}/cmake/debian)
set(MAILSTRUCTURE_MAINTAINER
    "The mailstructure developers <mailstructure@mailstructure.example>"
    CACHE STRING "Who maintains the Debian packages: NAME <ADDRESS>")
set(library_package libmailstructure${PROJECT_VERSION_MAJOR})

set(CPACK_GENERATOR DEB)
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_IGNORE_FILES "/build/" "/\\.git/")
set(CPACK_PACKAGE_NAME mailstructure)
set(CPACK_PACKAGE_VENDOR "The mailstructure developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_COMPONENTS_ALL runtime development tool python)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE ${debian_files}/settings.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${debian_files}/stage.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${debian_files}/finish.cmake)

# The scripts in cmake/debian read these.
set(CPACK_MAILSTRUCTURE_DEBIAN_FILES ${debian_files})
set(CPACK_MAILSTRUCTURE_LIBDIR ${CMAKE_INSTALL_LIBDIR})
set(CPACK_MAILSTRUCTURE_STRIP ${CMAKE_STRIP})
if(MAILSTRUCTURE_TOOLS)
  get_directory_property(CPACK_MAILSTRUCTURE_LIBARCHIVE DIRECTORY ${PROJECT_SOURCE_DIR}/tools
                                                        DEFINITION libarchive_name)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE mailstructure)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${MAILSTRUCTURE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

string(CONCAT about "The library reads a message once and leaves a tree of its parts: where each\n"
              "header block, body, nested message and epilogue lies, byte for byte, and which\n"
              "header fields it has. The message itself is not kept. Any nesting depth is\n"
              "handled in linear time and on a small stack.\n")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "library that finds the structure of Internet mail\n${about}.\n\
This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmailstructure-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
string(CONCAT CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
              "library that finds the structure of Internet mail - development files\n${about}.\n"
              "This package holds the header, the static library, the files for CMake and\n"
              "pkg-config, manual pages and examples.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME mailstructure)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION mail)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS "parallel, slurm-client")
string(CONCAT CPACK_COMPONENT_TOOL_DESCRIPTION
              "show the structure of Internet mail\n${about}.\n"
              "This package holds a command-line tool around the library.")
set(CPACK_COMPONENT_TOOL_DEPENDS runtime)

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-mailstructure)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
string(CONCAT CPACK_COMPONENT_PYTHON_DESCRIPTION
              "find the structure of Internet mail - Python package\n${about}.\n"
              "This package holds a package for Python 3.")
set(CPACK_COMPONENT_PYTHON_DEPENDS runtime)

if(NOT MAILSTRUCTURE_TOOLS)
  list(REMOVE_ITEM CPACK_COMPONENTS_ALL tool)
endif()
if(NOT TARGET mailstructure_python OR NOT MAILSTRUCTURE_PYTHON_DIR)
  list(REMOVE_ITEM CPACK_COMPONENTS_ALL python)
endif()

include(CPack)
