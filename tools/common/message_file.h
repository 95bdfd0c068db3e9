// A message as the tools have it: all bytes of its file in memory, and the tree that the library
// makes of them, with offsets from the start of the file.

#ifndef TOOLS_COMMON_MESSAGE_FILE_H
#define TOOLS_COMMON_MESSAGE_FILE_H

#include <mail_structure.h>

#include "common/file_bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What was wrong with an input, and where in the file.
struct input_fault {
    std::string m_what;
    std::uint64_t m_offset = 0;
};

/// A file that holds one message. Where it begins with an mbox separator line ("From " and the rest
/// of that line), the message begins on the line after it. Offsets count from the start of the file
/// all the same.
class message_file {
public:
    /// Opens and reads, or maps, the named file; "-" is standard input, from its present position
    /// on. Whatever goes wrong is kept for parse() to tell.
    explicit message_file(const std::string& file_name);

    /// The whole input, from its first byte on, the separator line included. Valid as long as this
    /// object.
    std::string_view bytes() const { return m_file.bytes(); }
    /// Where the message begins: 0, or just past the separator line.
    std::uint32_t message_start() const { return m_message_start; }
    /// The bytes of a range of the tree; what reaches past the end of the input is left out.
    std::string_view cut(std::uint32_t offset, std::uint32_t length) const;

    /// Fills the message. Every range that is not empty, and the place of every header field, then
    /// counts from the start of the file. Gives what was wrong, and the tree is then not to be
    /// used, or nothing.
    std::optional<input_fault> parse(MailStructure& message);

private:
    file_bytes m_file;
    std::uint32_t m_message_start = 0;
};

/// Adds the distance to every range of the tree that is not empty, and to the place of every header
/// field. For trees of any depth. No offset may pass 4 GiB by it.
void move_ranges(MailStructure::MimeObj& root, std::uint32_t distance);

#endif
