# Read by cpack when the packages are made. A package is an ar archive of three members, and cpack gives these the
# permissions that the umask leaves to new files; here they get those that dpkg-deb gives them, 0644.

if(CPACK_GENERATOR STREQUAL "DEB")
  # An ar archive: 8 bytes, then for each member a header of 60 with the mode in bytes 40..47 and the size in 48..57.
  string(CONCAT set_modes
                [[for my $name (@ARGV) { open my $file, "+<", $name or die "$name: $!"; binmode $file; ]]
                [[for (my $at = 8; seek($file, $at, 0) && read($file, my $header, 60) == 60;) { ]]
                [[seek $file, $at + 40, 0; print {$file} "100644  "; ]]
                [[$at += 60 + substr($header, 48, 10); $at += $at % 2; } close $file or die "$name: $!"; }]])
  execute_process(COMMAND perl -e "${set_modes}" ${CPACK_PACKAGE_FILES} COMMAND_ERROR_IS_FATAL ANY)
endif()
