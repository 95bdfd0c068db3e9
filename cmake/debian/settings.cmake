# cpack reads this before anything else. If SOURCE_DATE_EPOCH is not set, it becomes the time of the
# newest entry in the changelog; cpack and all that it calls take their time stamps from it.

set(changelog ${CPACK_MAILSTRUCTURE_DEBIAN_FILES}/changelog)

if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own

  file(STRINGS ${changelog} newest LIMIT_COUNT 1)
  set(version ${CPACK_DEBIAN_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
  if(NOT newest MATCHES "^mailstructure \\((.*)\\) " OR NOT CMAKE_MATCH_1 STREQUAL version)
    message(FATAL_ERROR "${changelog} begins with another version than that of the packages, "
                        "${version}")
  endif()
  if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(
      COMMAND dpkg-parsechangelog -l${changelog} -STimestamp
      OUTPUT_VARIABLE timestamp
      OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(ENV{SOURCE_DATE_EPOCH} ${timestamp})
  endif()
endif()
