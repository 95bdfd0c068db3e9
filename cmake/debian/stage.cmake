# cpack reads this when the files of each package are in a folder of their own, before it packs
# them. Does what a Debian package needs beyond a plain installation:
#
#   - files and folders with the permissions that they have in every package, whatever the umask
#   - binaries without run-time search path and without symbols that only a debugger reads
#   - manual pages and changelogs compressed, without name and time stamp; the documents are not,
#     so that their links to each other lead somewhere
#   - changelog and copyright of each package in /usr/share/doc/PACKAGE
#   - the control files symbols, shlibs and triggers of the library, from its list of symbols
#   - what each package depends on, from the libraries that its programs are linked with
#
# A list of symbols that does not match the library is an error.

cmake_minimum_required(VERSION 3.25)

if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(version ${CPACK_DEBIAN_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(library_package ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME})
set(work ${CPACK_TEMPORARY_DIRECTORY}.control)
file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work}/debian)

# What Python loads, below the folder of a package.
set(python_modules usr/lib/python3/dist-packages/mailstructure/*.so)

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

execute_process(
  COMMAND dpkg-architecture -qDEB_HOST_MULTIARCH
  OUTPUT_VARIABLE triplet
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT CPACK_MAILSTRUCTURE_LIBDIR STREQUAL "lib/${triplet}")
  message(FATAL_ERROR "Debian has its libraries in lib/${triplet}, and this build in "
                      "${CPACK_MAILSTRUCTURE_LIBDIR}. Configure with the preset `package`.")
endif()

# stage_binaries(ROOT): strips programs and libraries, and removes their search paths.
function(stage_binaries root)
  file(GLOB binaries ${root}/usr/bin/* ${root}/usr/lib/${triplet}/*.so.*.*.*
       ${root}/${python_modules})
  foreach(binary IN LISTS binaries)
    file(RPATH_REMOVE FILE ${binary})
    run(${CPACK_MAILSTRUCTURE_STRIP} --remove-section=.comment --remove-section=.note
        --strip-unneeded ${binary})
  endforeach()
  file(GLOB archives ${root}/usr/lib/${triplet}/*.a)
  foreach(archive IN LISTS archives)
    run(${CPACK_MAILSTRUCTURE_STRIP} --strip-debug --remove-section=.comment --remove-section=.note
        --enable-deterministic-archives ${archive})
  endforeach()
endfunction()

# stage_documents(ROOT PACKAGE): gives the package its own folder of documents, and compresses
# manual pages and changelogs.
function(stage_documents root package)
  set(documents ${root}/usr/share/doc/${package})
  if(NOT package STREQUAL "mailstructure" AND EXISTS ${root}/usr/share/doc/mailstructure)
    file(RENAME ${root}/usr/share/doc/mailstructure ${documents})
  endif()
  file(MAKE_DIRECTORY ${documents})
  file(REMOVE ${documents}/LICENSE) # the file copyright has the same text
  configure_file(${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/copyright ${documents}/copyright COPYONLY)
  configure_file(${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/changelog ${documents}/changelog.Debian
                 COPYONLY)
  if(EXISTS ${documents}/CHANGELOG.md)
    file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
  endif()
  if(EXISTS ${documents}/README.md)
    file(READ ${documents}/README.md readme)
    string(REPLACE "](CHANGELOG.md)" "](../${library_package}/changelog.gz)" readme "${readme}")
    string(REPLACE "](LICENSE)" "](copyright)" readme "${readme}")
    file(WRITE ${documents}/README.md "${readme}")
  endif()
  file(GLOB_RECURSE texts ${documents}/changelog* ${root}/usr/share/man/*)
  foreach(text IN LISTS texts)
    run(gzip -9 --no-name ${text})
  endforeach()
endfunction()

function(stage_permissions root)
  set(for_reading OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  set(for_use ${for_reading} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
  file(GLOB_RECURSE entries LIST_DIRECTORIES true ${root}/usr/*)
  foreach(entry ${entries} ${root}/usr)
    if(IS_DIRECTORY ${entry} OR entry MATCHES "/usr/(bin|share/mailstructure/slurm)/[^/]*$")
      file(CHMOD ${entry} PERMISSIONS ${for_use})
    elseif(NOT IS_SYMLINK ${entry})
      file(CHMOD ${entry} PERMISSIONS ${for_reading})
    endif()
  endforeach()
endfunction()

# make_library_control(ROOT): writes the control files of the library. Names in our list of symbols
# are those of the source; in the control file they are those of the linker.
function(make_library_control root)
  file(GLOB library ${root}/usr/lib/${triplet}/*.so.*.*.*)
  set(control ${work}/${library_package}/DEBIAN)
  file(MAKE_DIRECTORY ${control})
  execute_process(
    COMMAND
      dpkg-gensymbols -c4 -p${library_package} -v${version} -e${library} -O${control}/symbols
      -I${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/${library_package}.symbols
    WORKING_DIRECTORY ${work}
    OUTPUT_VARIABLE differences
    ERROR_VARIABLE differences
    RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "The library does not have the symbols listed in "
                        "${library_package}.symbols\n${differences}")
  endif()
  string(REGEX MATCH "[0-9]+$" soversion ${library_package})
  file(WRITE ${control}/shlibs
       "libmailstructure ${soversion} ${library_package} (>= ${CPACK_DEBIAN_PACKAGE_VERSION})\n")
  configure_file(${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/triggers ${control}/triggers COPYONLY)
  # dpkg-shlibdeps looks for our library in a package's tree of files, control files included.
  file(COPY ${root}/usr DESTINATION ${work}/${library_package})
endfunction()

# find_dependencies(ROOT VARIABLE): sets the variable to the packages that this one depends on.
function(find_dependencies root variable)
  file(GLOB binaries ${root}/usr/bin/* ${root}/usr/lib/${triplet}/*.so.*.*.*
       ${root}/${python_modules})
  list(TRANSFORM binaries PREPEND "-e")
  execute_process(
    COMMAND dpkg-shlibdeps -O -S${work}/${library_package} ${binaries}
    WORKING_DIRECTORY ${work}
    OUTPUT_VARIABLE found
    COMMAND_ERROR_IS_FATAL ANY)
  string(STRIP "${found}" found)
  string(REGEX REPLACE "^shlibs:Depends=" "" found "${found}")
  set(${variable} "${found}" PARENT_SCOPE)
endfunction()

file(WRITE ${work}/debian/control
     "Source: mailstructure\n\nPackage: ${library_package}\nArchitecture: any\n")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(root_of_${component} ${CPACK_TEMPORARY_DIRECTORY}/${component})
  string(TOUPPER ${component} upper)
  stage_binaries(${root_of_${component}})
  stage_documents(${root_of_${component}} ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  stage_permissions(${root_of_${component}})
endforeach()

make_library_control(${root_of_runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${work}/${library_package}/DEBIAN/symbols ${work}/${library_package}/DEBIAN/shlibs
    ${work}/${library_package}/DEBIAN/triggers)
find_dependencies(${root_of_runtime} CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${version})")
if(root_of_tool)
  find_dependencies(${root_of_tool} CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS)
  # The tool loads this library when it first unpacks something, which dpkg-shlibdeps does not see.
  execute_process(
    COMMAND dpkg-query -S */${CPACK_MAILSTRUCTURE_LIBARCHIVE}
    OUTPUT_VARIABLE owner COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE ":.*" "" owner "${owner}")
  string(APPEND CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS ", ${owner}")
endif()
if(root_of_python)
  # The module keeps to the stable ABI of this version, so that any later Python 3 will do.
  find_dependencies(${root_of_python} libraries)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${libraries}, python3 (>= 3.11~)")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
      ${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/python3-mailstructure/postinst
      ${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/python3-mailstructure/prerm)
endif()
