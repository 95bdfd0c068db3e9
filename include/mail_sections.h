// The public interface of mailstructure for the sections of a message, as IMAP numbers them.
// Strict C++17 and later; link with libmailstructure.

#ifndef MAIL_SECTIONS_H
#define MAIL_SECTIONS_H

/// @file
/// The sections of a message, as IMAP numbers them: a walk that names all entities of a tree, the
/// entity that a section text names, the bytes of a section, and the section that holds a byte.

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Sections are the pieces of a message by which IMAP fetches it (RFC 3501 section 6.4.5, RFC 9051
/// section 6.4.5).
///
/// @code
///     const mail_sections::found part = mail_sections::find(message.m_root, "1.2");
///     if (!part) return complain(part.m_error);
///     mail_sections::ranges ranges(message.m_root, {bytes, MailStructure::rules::standard});
///     const mail_sections::byte_range range = ranges.of(part.m_place);
///     send(bytes.substr(range.m_offset, range.m_length));
/// @endcode
///
/// **Names.**
///
/// @verbatim
///     (the empty text)         the whole message
///     HEADER, TEXT             its header block, and all that follows
///     1.2                      the body of a part
///     1.2.MIME                 the header block of a part
///     1.2.HEADER, 1.2.TEXT     the header block of the message that a message/rfc822 part holds,
///                              and all that follows in that message
///     HEADER.FIELDS (To Cc)    the named fields of a header block; also 1.2.HEADER.FIELDS (To Cc)
///     HEADER.FIELDS.NOT (To)   all other fields of a header block
/// @endverbatim
///
/// **Numbers.** Each entity of a tree has one name in a walk:
///
/// @code{.unparsed}
///     message: multipart/mixed            TEXT
///         text/plain                      1
///         multipart/alternative           2
///             text/plain                  2.1
///             text/html                   2.2
///         message/rfc822                  3
///             its message: text/plain     3.1
///         message/rfc822                  4
///             its message: multipart      4.TEXT
///                 text/plain              4.1
/// @endcode
///
/// A message that is no multipart has one part, its body, which has number 1 after the message's
/// own number. A multipart is not a part of itself, so the body of a message that is a multipart is
/// named TEXT. The odd cases:
///
/// - An entity marked as a message is one even if it is a multipart too: its first child is the
///   message within.
/// - An entity with children is taken for a multipart even if no boundary marks it as one.
/// - In a multipart without parts nothing is numbered, nor in a message/rfc822 that holds no
///   message.
/// - If a message/rfc822 has more than one child, the first is the message within. The others are
///   parts, and their numbers follow those of the parts of the message within.
///
/// **Trees.** Any tree will do, of any depth and width, also one that no parser has made: nothing
/// recurses, and no byte outside the given ones is read. A tree must outlive the objects and
/// results that refer to it, and must not change meanwhile.
///
/// **Errors** are values. No function throws anything but std::bad_alloc, and after that nothing is
/// lost but the result.
///
/// **Threads.** Any number of threads may use one tree. One object is for one thread at a time.
namespace mail_sections {

/// Consecutive bytes of the input. A piece that has no lines has length 0.
struct byte_range {
    /// Of the first byte, counted from the first byte of source::m_bytes.
    std::uint32_t m_offset = 0;
    /// In bytes.
    std::uint32_t m_length = 0;
};

/// Where a tree comes from.
///
/// Offsets are 32-bit. In 4 GiB and more they wrap, as those of the tree do, and then a range may
/// name the wrong bytes; it still lies within m_bytes.
struct source {
    /// The bytes from which the offsets of the tree count, the whole message among them.
    std::string_view m_bytes;
    /// The rules by which the tree was made.
    MailStructure::rules m_rules = MailStructure::rules::classic;
    /// Where in m_bytes the message begins, if it is not their beginning: after the separator line
    /// of an mbox file, for instance. For a tree whose offsets were moved by so much.
    std::uint32_t m_message_start = 0;
};

/// The last word of a section text.
enum class word : std::uint8_t { none, header, header_fields, header_fields_not, mime, text };

/// A section text, taken apart. No numbers and no word are the whole message.
struct section {
    /// The part numbers, from 1. A number too great for any message is 0xFFFFFFFF.
    std::vector<std::uint32_t> m_numbers;
    /// What follows the numbers.
    word m_word = word::none;
    /// The names after HEADER.FIELDS and HEADER.FIELDS.NOT, without quotes, as they were written.
    std::vector<std::string> m_fields;
};

/// What is wrong with a section.
enum class fault : std::uint8_t {
    none,      ///< Nothing.
    bad_text,  ///< The text is no section.
    no_part,   ///< There is no part of that number.
    no_message ///< HEADER, TEXT or fields of a part that holds no message.
};

/// Why there is no section, and what there is instead.
struct error {
    /// What is wrong.
    fault m_fault = fault::none;
    /// Of a bad text: the offset at which m_expected has to stand. It may be the length of the
    /// text.
    std::size_t m_position = 0;
    /// Of a bad text: what is expected there, in words: "HEADER or TEXT". Lives as long as the
    /// program.
    std::string_view m_expected;
    /// Of a section that does not exist: the existing one that comes closest to it.
    section m_nearest;
    /// Where there is no part: how many parts there are in its place, numbered from 1. May be 0.
    std::uint32_t m_parts = 0;
};

/// A section text taken apart, or what is wrong with it.
struct parsed {
    section m_section; ///< The section; of no use after an error.
    error m_error;     ///< What is wrong.
    /// Whether the text is a section.
    explicit operator bool() const noexcept { return m_error.m_fault == fault::none; }
};

/// Takes a section text apart (RFC 3501 section 9, "section-spec"). The case of words does not
/// matter. Field names are atoms or quoted strings, with one blank between them.
///
/// Linear in the length of the text. Takes up to 16 bytes of memory for each byte of the text.
/// @throws std::bad_alloc
MAIL_STRUCTURE_API parsed parse(std::string_view text);

/// The text of a section: parse() gives the section again, unless a number in it is 0, or a field
/// name has a CR, an LF or a NUL. Linear in its length.
/// @throws std::bad_alloc
MAIL_STRUCTURE_API std::string text_of(const section& wanted);

/// Which piece of an entity.
enum class piece : std::uint8_t {
    whole,        ///< The whole message.
    header_block, ///< The header block, with the empty line that ends it.
    body          ///< All that follows the header block.
};

/// A piece of one entity.
struct place {
    /// The entity, in the tree that was given.
    const MailStructure::MimeObj* m_entity = nullptr;
    /// The piece. The fields of HEADER.FIELDS are in the header block.
    piece m_piece = piece::body;
    /// The entity is the message itself or a message within, and not a part of a multipart.
    bool m_is_message = false;
};

/// The place of a section, or why there is none.
struct found {
    place m_place; ///< The place; its entity is null after an error.
    error m_error; ///< What is wrong.
    /// Whether there is such a section.
    explicit operator bool() const noexcept { return m_place.m_entity != nullptr; }
};

/// Finds a section, at any depth. Linear in the count of its numbers.
/// @throws std::bad_alloc
MAIL_STRUCTURE_API found find(const MailStructure::MimeObj& root, const section& wanted);
/// Finds the section that a text names: parse() and find() in one.
/// @throws std::bad_alloc
MAIL_STRUCTURE_API found find(const MailStructure::MimeObj& root, std::string_view text);

/// An entity that a walk visits.
struct visited {
    /// The entity, in the tree that is walked.
    const MailStructure::MimeObj* m_entity = nullptr;
    /// 0 for the message itself.
    std::size_t m_depth = 0;
    /// The name of the entity: "1", "2.1", "TEXT". No two entities share one. Empty for more than
    /// 100 numbers, since the names of all entities would take the square of the depth;
    /// walk::name() gives such a name.
    std::string_view m_name;
    /// It is the message itself or a message within, and not a part of a multipart.
    bool m_is_message = false;
    /// Its name ends with a number, and not with TEXT.
    bool m_has_number = false;
};

/// Visits an entity and its descendants, each before its children, and children in their order.
///
/// @code
///     mail_sections::walk walk(message.m_root);
///     while (const mail_sections::visited* entity = walk.next())
///         std::cout << entity->m_name << '\n';
/// @endcode
///
/// A whole walk is linear in the number of entities, and takes memory for each level of the depth.
class MAIL_STRUCTURE_API walk {
public:
    /// Begins before the first entity.
    /// @param root  the message, which must outlive the walk and not change
    /// @throws std::bad_alloc
    explicit walk(const MailStructure::MimeObj& root);
    /// Takes over the other walk, which can then only be assigned to or destroyed.
    walk(walk&& other) noexcept;
    /// Takes over the other walk, as the constructor does.
    walk& operator=(walk&& other) noexcept;
    walk(const walk&) = delete;
    walk& operator=(const walk&) = delete;
    ~walk();

    /// The next entity, or null after the last. The result is valid until the next call.
    /// @throws std::bad_alloc  and then the walk may be destroyed, and no more
    const visited* next();
    /// The name of the entity that was visited last, however deep. Linear in its depth. To be
    /// called after next() has given an entity.
    /// @throws std::bad_alloc
    section name() const;

private:
    struct state;
    std::unique_ptr<state> m_state;
};

/// Which section holds a byte.
struct holder {
    section m_section; ///< The innermost section that holds the byte.
    place m_place;     ///< Its place; its entity is null where there is none.
    /// Whether a section holds the byte.
    explicit operator bool() const noexcept { return m_place.m_entity != nullptr; }
};

/// Which bytes the sections of one message are.
///
/// The tree has recorded ranges of whole lines. A section, as IMAP and RFC 2046 section 5.1.1
/// define it, differs from them in two ways:
///
/// - The line terminator before a delimiter line belongs to that line, and not to the part that
///   ends there.
/// - Every line belongs to a section. The classic rules drop the empty line after a separator, and
///   the one after the first line of a message within: that line is in no recorded range. Here it
///   ends the header block, as it does for any other reader of the message.
///
/// @verbatim
///     --XY                            of no section but those of the enclosing entities
///     Content-Type: message/rfc822    1.MIME
///                                     1.MIME
///     Subject: hello                  1    1.HEADER
///                                     1    1.HEADER
///     It is I.                        1    1.TEXT      (without the line terminator)
///     --XY--
/// @endverbatim
///
/// So 1.HEADER and 1.TEXT together are 1, and HEADER and TEXT together are the whole message.
///
/// A part that holds a message ends where the message does.
class MAIL_STRUCTURE_API ranges {
public:
    /// @param root  the message, which must outlive the object and not change
    /// @param from  its bytes, which must outlive the object and not change, and the rules
    /// @throws std::bad_alloc
    ranges(const MailStructure::MimeObj& root, const source& from);
    /// Takes over the other object, which can then only be assigned to or destroyed.
    ranges(ranges&& other) noexcept;
    /// Takes over the other object, as the constructor does.
    ranges& operator=(ranges&& other) noexcept;
    ranges(const ranges&) = delete;
    ranges& operator=(const ranges&) = delete;
    ~ranges();

    /// The bytes of a place in the tree. Linear in the number of messages within one another that
    /// the entity holds; constant on average where the places come in the order of a walk.
    /// Allocates nothing.
    byte_range of(const place& wanted) noexcept;
    /// The bytes of the named fields in a header block, or of all other lines of it, as the word of
    /// the section says (RFC 3501 section 6.4.5): whole fields with their folded lines, unchanged
    /// and in the order of the message, and then the empty line that ends the block, if there is
    /// one. Ranges that touch are one. Any other section gives the one range that of() gives.
    ///
    /// Names match as a whole, ASCII letters in either case. A field begins with its name, blanks
    /// or none, and a colon (RFC 5322 sections 2.2 and 4.5), by either set of rules. A line that is
    /// no field has no name: only HEADER.FIELDS.NOT gives it.
    ///
    /// Linear in the header block and in the length of the names, but for the sorting of the names.
    /// @param wanted  a place that find() gave for the section
    /// @param by      the section
    /// @throws std::bad_alloc
    std::vector<byte_range> of_fields(const place& wanted, const section& by);
    /// The innermost section that holds the byte: a header block, the body of a part, or the body
    /// of the multipart whose delimiter lines, preamble or epilogue it is in. None for an offset
    /// before the message or past its end. Linear in the number of entities.
    /// @param offset  counted from the first byte of the source
    /// @throws std::bad_alloc
    holder at(std::uint32_t offset);

private:
    struct state;
    std::unique_ptr<state> m_state;
};

/// The lines of a multipart before its first separator; of one without parts, those before its
/// closing line. Empty for any other entity. Of the bytes only the lines around the separators, and
/// the header block of a multipart without parts, are looked at: for all entities of a tree that
/// Fill has made, time is linear in the message. In any other tree each call may look at one line
/// of any length.
/// @throws std::bad_alloc
MAIL_STRUCTURE_API byte_range preamble_of(const MailStructure::MimeObj& entity, const source& from);

/// The lines after the closing line of a multipart. By the standard rules this is the recorded
/// epilogue range. That of the classic rules begins with the first epilogue line of any descendant,
/// and then spans the parts that follow that line; and it holds the closing line where that ends
/// both a part's epilogue and the multipart. Linear in the parameters of the multipart and in the
/// length of one line.
MAIL_STRUCTURE_API byte_range epilogue_of(const MailStructure::MimeObj& entity,
                                          const source& from) noexcept;

} // namespace mail_sections

#endif
