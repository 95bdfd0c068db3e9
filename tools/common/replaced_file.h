// A file that exists, and whose contents are to be replaced by those of a new file.

#ifndef TOOLS_COMMON_REPLACED_FILE_H
#define TOOLS_COMMON_REPLACED_FILE_H

/// What these functions do with two open files. All that belongs to a file but its contents is to
/// stay: its owner and group, permissions, further names (hard links) and attributes.

/// Gives the new file, which is the caller's, the owner, group and permissions of the old one.
/// @return whether it can then take the old one's name without anything being lost: the old file
///         has no other name, and the owner, group and extended attributes of both are the same
bool make_alike(int new_file, int old_file);

/// Overwrites the old file with the contents of the new one, after making sure that there is room
/// for them. Signals wait until this is done.
/// @param old_file  open for writing
/// @return 0, or the system's number for the failure; for lack of room, the old file is as it was
int overwrite(int old_file, int new_file);

#endif
