// A message in a file: all bytes of the file in memory, and the parse of the message, whose offsets
// then count from the start of the file.

#ifndef TOOLS_COMMON_MESSAGE_FILE_H
#define TOOLS_COMMON_MESSAGE_FILE_H

#include <mail_structure.h>

#include "common/file_bytes.h"
#include "common/tree_source.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What is wrong with an input, and where in the file; without a place if nothing could be read.
struct input_fault {
    std::string m_what;
    std::optional<std::uint64_t> m_offset;
};

/// A file that holds one message. If the file begins with the From line of an mbox (a line that
/// begins with "From " and is no field), the message begins after that line. Offsets count from the
/// start of the file all the same.
class message_file {
public:
    /// Opens and reads, or maps, the named file; "-" is standard input, from its present position
    /// on. A failure is not reported here but by parse().
    /// @param limit  an input of more bytes is a failure
    explicit message_file(const std::string& file_name,
                          std::uint64_t limit = file_bytes::most_bytes);
    /// The same for a descriptor, which is closed, from its present position on. The message begins
    /// there, whatever its first line.
    message_file(int descriptor, std::uint64_t limit) : m_file(descriptor, limit) {}

    /// The whole input, a From line included. Valid as long as this object.
    std::string_view bytes() const { return m_file.bytes(); }
    /// Where the message begins: 0, or just past the From line.
    std::uint32_t message_start() const { return m_message_start; }
    /// The bytes of a range of the tree, as far as they lie within the input.
    std::string_view cut(std::uint32_t offset, std::uint32_t length) const;

    /// Fills the message by the given rules. Every range that is not empty, and the place of every
    /// header field, then counts from the start of the file.
    /// @return what is wrong with the input, and the tree is then not to be used; else nothing
    std::optional<input_fault> parse(MailStructure& message, MailStructure::rules by) const;

private:
    file_bytes m_file;
    std::uint32_t m_message_start = 0;
};

/// Adds the distance to every range of the tree that is not empty, and to the place of every header
/// field. For trees of any depth. No offset may come to exceed 4 GiB.
void move_ranges(MailStructure::MimeObj& root, std::uint32_t distance);

#endif
