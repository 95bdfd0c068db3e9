// The public interface of mailstructure for what is wrong with a message.
// Strict C++17 and later; link with libmailstructure.

#ifndef MAIL_FINDINGS_H
#define MAIL_FINDINGS_H

/// @file
/// What is wrong with a message, and where: the places at which mail readers disagree, and those at
/// which a message departs from the RFCs.

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

/// Two programs that read one message differently are how attachments get past filters. The
/// findings of a message name the places where that is known to happen, and those where the message
/// departs from RFC 5322, 2045, 2046, 2047 and 2231.
///
/// @code
///     mail_findings::find(bytes, [](const mail_findings::finding& found) {
///         std::cout << found.m_offset << ' ' << mail_findings::text_of(found.m_name) << '\n';
///     });
/// @endcode
///
/// The structure to which findings refer is the one that MailStructure::rules::standard gives.
/// doc/check.md tells what each name means, and which readers do what there.
///
/// **Order.** Findings come as the message is read from front to back. What only the end of a
/// field, of an entity or of the message shows comes there, but names the place to look at.
///
/// **Count.** What is wrong with the bytes of a body is reported once for each entity, at its first
/// place, and text_after_close once for each multipart. Everything else is reported at each of its
/// places, but mixed_line_ends, deep_nesting and many_parts once. In a body, a bare_cr that is a
/// danger is reported at each line. The value of a date, address or identifier field is reported
/// once.
///
/// **Threads.** Any number of threads may look for findings at the same time.
namespace mail_findings {

/// How much a finding matters. The greater one matters more.
enum class level : std::uint8_t {
    note,  ///< Legal or harmless, and rare enough to be worth a look.
    fault, ///< Against an RFC.
    danger ///< Some readers see other parts, types or contents than others.
};

/// What was found. Names of later versions come at the end.
enum class name : std::uint8_t {
    bare_cr,                       ///< A CR that ends no line.
    nul,                           ///< A NUL byte.
    header_line_is_no_field,       ///< A line of a header block that is neither field nor folded.
    header_begins_with_blank,      ///< The first line of a header block begins with a blank.
    header_empty,                  ///< A message begins with an empty line.
    header_not_ended,              ///< No empty line ends a header block.
    blank_line_in_header,          ///< A line of blanks within a header block.
    blank_before_colon,            ///< A blank stands between a field name and its colon.
    content_type_twice,            ///< A second Content-Type field in a header block.
    content_type_invalid,          ///< A Content-Type field without a valid type.
    content_type_junk,             ///< Text between the subtype and the first semicolon.
    content_type_comment,          ///< A comment in the type of a Content-Type field.
    content_type_white_space,      ///< White space within the type of a Content-Type field.
    parameter_invalid,             ///< Text between semicolons that is no parameter.
    parameter_twice,               ///< A second parameter of the same name.
    parameter_encoding_invalid,    ///< An extended parameter value that RFC 2231 does not allow.
    quote_not_ended,               ///< A quoted parameter value without its closing quote.
    text_after_quote,              ///< Text between a quoted parameter value and the semicolon.
    boundary_twice,                ///< A second boundary parameter.
    boundary_in_sections,          ///< A boundary in the extended forms of RFC 2231.
    boundary_encoded_word,         ///< A boundary with an encoded word of RFC 2047.
    boundary_escaped,              ///< A backslash in a quoted boundary.
    fold_in_quotes,                ///< A line end within a quoted boundary.
    boundary_unquoted_specials,    ///< An unquoted boundary with characters that need quotes.
    boundary_ends_with_blank,      ///< A boundary that ends with white space.
    boundary_odd_bytes,            ///< A boundary with bytes that RFC 2046 does not allow.
    boundary_empty,                ///< An empty boundary.
    boundary_long,                 ///< A boundary of more than 70 bytes.
    boundary_of_an_open_multipart, ///< The boundary of an enclosing multipart is used again.
    boundary_begins_another,       ///< One of two boundaries in force begins with the other.
    multipart_without_boundary,    ///< A multipart without a boundary parameter.
    near_delimiter,                ///< A line that is nearly a delimiter line.
    delimiter_of_closed_multipart, ///< A delimiter line after the closing line of its multipart.
    delimiter_line_end,            ///< A delimiter line that ends otherwise than the line before.
    delimiter_padded,              ///< White space at the end of a delimiter line.
    message_encoded,               ///< A message within that is in base64 or quoted-printable.
    multipart_encoded,             ///< A multipart with such an encoding.
    message_not_entered,           ///< A part that only some readers take for a message.
    transfer_encoding_twice,       ///< A second Content-Transfer-Encoding field.
    transfer_encoding_unknown,     ///< An encoding that RFC 2045 does not define.
    part_without_lines,            ///< A part, or a message within, that has no line.
    multipart_not_closed,          ///< A multipart without its closing line.
    multipart_without_parts,       ///< A multipart without a separator.
    deep_nesting,                  ///< An entity at a depth of 64 or more.
    many_parts,                    ///< More than 1000 entities.
    text_after_close,              ///< Text in the epilogue of a multipart.
    mixed_line_ends,               ///< Some lines end with LF, others with CR LF.
    from_line,                     ///< A message that begins with the separator line of an mbox.
    line_too_long,                 ///< A line of more than 998 bytes.
    header_not_ascii,              ///< A header field with bytes above 127.
    encoded_word_invalid,          ///< A text that begins as an encoded word and is none.
    field_twice,                   ///< A field that a message may have once only, a second time.
    field_missing,                 ///< A message without a Date or From field.
    mime_version_missing,          ///< A message with MIME fields, but no MIME-Version field.
    undeclared_8_bit,              ///< Bytes above 127 where the encoding does not allow them.
    base64_invalid,                ///< A body in base64 that does not decode.
    quoted_printable_invalid,      ///< A body in quoted-printable that does not decode.
    parameter_unquoted_specials,   ///< An unquoted value, not a boundary, that needs quotes.
    date_invalid,                  ///< A Date field that is no date and time.
    address_invalid,               ///< A field of addresses with something else in it.
    message_id_invalid             ///< A field of message identifiers with something else in it.
};

/// How many names there are: they are the values from 0.
constexpr std::size_t name_count = static_cast<std::size_t>(name::message_id_invalid) + 1;

/// One finding.
struct finding {
    name m_name = name::bare_cr;   ///< What was found.
    level m_level = level::danger; ///< How much it matters here; the same name may matter less.
    std::uint64_t m_offset = 0;    ///< Of the first byte in question.
    std::uint64_t m_length = 0;    ///< Bytes in question; 0 where it is about what is missing.
    std::uint64_t m_line = 1;      ///< The number of the line with the first byte, from 1.
};

/// The name in words: "bare-cr". Lives as long as the program.
MAIL_STRUCTURE_API std::string_view text_of(name found) noexcept;
/// The level in words: "danger". Lives as long as the program.
MAIL_STRUCTURE_API std::string_view text_of(level found) noexcept;
/// What a name means, in one English sentence for people. Lives as long as the program.
MAIL_STRUCTURE_API std::string_view explanation_of(name found) noexcept;
/// The highest level of findings with that name.
MAIL_STRUCTURE_API level highest_level_of(name found) noexcept;

/// Takes one finding after another.
using receiver = void (*)(void* context, const finding& found);

/// Gives all findings of a message to a function.
///
/// Time is linear in the message. No tree is made: memory is taken for the open entities and for
/// one Content-Type field, and nothing for findings. Nothing recurses.
/// @param bytes    the whole message, which must not change meanwhile
/// @param take     is called for each finding
/// @param context  is handed to it
/// @throws std::bad_alloc, and what the function throws
MAIL_STRUCTURE_API void find(std::string_view bytes, receiver take, void* context);

/// Gives all findings of a message to a function object that takes a finding.
/// @throws std::bad_alloc, and what the function object throws
template <class Take>
void find(std::string_view bytes, Take&& take) {
    using taker = std::remove_reference_t<Take>;
    static_assert(!std::is_const_v<taker>, "a constant function object: hand in a copy");
    find(
        bytes, [](void* context, const finding& found) { (*static_cast<taker*>(context))(found); },
        static_cast<void*>(&take));
}

} // namespace mail_findings

#endif
