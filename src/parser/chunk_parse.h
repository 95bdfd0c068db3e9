// The inside of MailStructure::feeder: a message that is being parsed while it arrives in chunks.

#ifndef MAIL_STRUCTURE_PARSER_CHUNK_PARSE_H
#define MAIL_STRUCTURE_PARSER_CHUNK_PARSE_H

#include <mail_structure.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace mail_structure_detail {

class chunk_parse {
public:
    chunk_parse() = default;
    chunk_parse(const chunk_parse&) = delete;
    chunk_parse& operator=(const chunk_parse&) = delete;
    /// Writes into the tree what is still owed to it: the tree then holds the lines that were
    /// taken.
    virtual ~chunk_parse() = default;

    /// Takes the whole lines that the chunk completes. After an exception the object is only to be
    /// destroyed. @throws what Fill throws
    virtual void feed(std::string_view chunk) = 0;
    /// Ends the input. The object is then only to be destroyed. @throws what Fill throws
    virtual void finish() = 0;
    /// Takes what is left, as finish does, but leaves m_done as it is, and swallows an exception.
    /// The object is then only to be destroyed.
    virtual void break_off() noexcept = 0;
};

/// Takes over the old tree of the message. @throws std::bad_alloc, and then the root is cleared
/// @param first_offset  offset of the first byte of the message: 0, except in tests of the wrap
std::unique_ptr<chunk_parse> begin_chunk_parse(MailStructure& message, std::uint32_t first_offset,
                                               MailStructure::rules by);

} // namespace mail_structure_detail

#endif
