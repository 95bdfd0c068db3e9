# cpack reads this when the packages are built. A package is an ar archive of three members, whose
# permissions cpack takes from the umask. Here they become 0644, as dpkg-deb has them.

if(CPACK_GENERATOR STREQUAL "DEB")
  # An ar archive has 8 bytes and then, for each member, a header of 60 bytes. The mode is in bytes
  # 40 to 47 of the header, and the size in bytes 48 to 57.
  string(CONCAT set_modes
                [[for my $name (@ARGV) { open my $file, "+<", $name or die "$name: $!"; ]]
                [[binmode $file; ]]
                [[for (my $at = 8; seek($file, $at, 0) && read($file, my $header, 60) == 60;) { ]]
                [[seek $file, $at + 40, 0; print {$file} "100644  "; ]]
                [[$at += 60 + substr($header, 48, 10); $at += $at % 2; } ]]
                [[close $file or die "$name: $!"; }]])
  execute_process(COMMAND perl -e "${set_modes}" ${CPACK_PACKAGE_FILES}
                  COMMAND_ERROR_IS_FATAL ANY)
endif()
