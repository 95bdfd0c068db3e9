// The names of findings and of their levels, and what they mean.

#include <mail_findings.h>

#include <array>

namespace mail_findings {

namespace {

/// What there is to say about a name.
struct description {
    name m_name;
    level m_highest_level;
    std::string_view m_text;
    std::string_view m_explanation;
};

// In the order of the enumeration.
constexpr std::array<description, name_count> descriptions{{
    {name::bare_cr, level::danger, "bare-cr",
     "A CR stands here without an LF behind it; some readers end the line there."},
    {name::nul, level::danger, "nul",
     "A NUL byte stands here; for some readers the text ends there."},
    {name::header_line_is_no_field, level::danger, "header-line-is-no-field",
     "This line of a header block is no header field; some readers end the block here."},
    {name::header_begins_with_blank, level::danger, "header-begins-with-blank",
     "A header block begins with a continuation line; some readers refuse the message."},
    {name::header_empty, level::fault, "header-empty",
     "The message begins with an empty line, so that all its fields are body text."},
    {name::header_not_ended, level::danger, "header-not-ended",
     "No empty line ends this header block; some readers see no part then."},
    {name::blank_line_in_header, level::danger, "blank-line-in-header",
     "This line of a header block has nothing but blanks; some readers end the block here."},
    {name::blank_before_colon, level::danger, "blank-before-colon",
     "A blank stands before the colon of this field; some readers end the block here."},
    {name::content_type_twice, level::danger, "content-type-twice",
     "This entity has a second Content-Type field; readers differ on which one counts."},
    {name::content_type_invalid, level::danger, "content-type-invalid",
     "This Content-Type field has no valid type; readers differ on what it stands for."},
    {name::content_type_junk, level::danger, "content-type-junk",
     "Text stands behind the media type; some readers take the type for invalid."},
    {name::content_type_comment, level::danger, "content-type-comment",
     "A comment stands in this Content-Type; some readers take it for part of a value."},
    {name::content_type_white_space, level::danger, "content-type-white-space",
     "White space stands within the media type; some readers take it for part of the type."},
    {name::parameter_invalid, level::danger, "parameter-invalid",
     "This is no parameter; some readers ignore all parameters behind it."},
    {name::parameter_twice, level::fault, "parameter-twice",
     "This parameter is there twice; readers differ on which one counts."},
    {name::parameter_encoding_invalid, level::fault, "parameter-encoding-invalid",
     "This extended parameter value is not written as RFC 2231 wants it."},
    {name::quote_not_ended, level::danger, "quote-not-ended",
     "The quote of this parameter value has no end; some readers ignore the parameter."},
    {name::text_after_quote, level::danger, "text-after-quote",
     "Text stands behind the quoted value; some readers ignore the parameter."},
    {name::boundary_twice, level::danger, "boundary-twice",
     "This multipart names a second boundary; readers differ on which one counts."},
    {name::boundary_in_sections, level::danger, "boundary-in-sections",
     "The boundary is in an extended form; some readers do not find it."},
    {name::boundary_encoded_word, level::danger, "boundary-encoded-word",
     "The boundary looks like an encoded word; some readers decode it."},
    {name::boundary_escaped, level::danger, "boundary-escaped",
     "A backslash stands in the quoted boundary; some readers keep it."},
    {name::fold_in_quotes, level::danger, "fold-in-quotes",
     "A line end stands in the quoted boundary; some readers keep it or the blank behind it."},
    {name::boundary_unquoted_specials, level::danger, "boundary-unquoted-specials",
     "The boundary has characters that need quotes; some readers cut it off there."},
    {name::boundary_ends_with_blank, level::danger, "boundary-ends-with-blank",
     "The boundary ends with white space; some readers keep that white space."},
    {name::boundary_odd_bytes, level::danger, "boundary-odd-bytes",
     "The boundary has bytes that no boundary may have; readers may not compare them alike."},
    {name::boundary_empty, level::danger, "boundary-empty",
     "The boundary is empty; for some readers this is a multipart without one."},
    {name::boundary_long, level::danger, "boundary-long",
     "The boundary is longer than 70 bytes; some readers compare only its beginning."},
    {name::boundary_of_an_open_multipart, level::danger, "boundary-of-an-open-multipart",
     "An enclosing multipart has the same boundary; readers differ on whose parts follow."},
    {name::boundary_begins_another, level::danger, "boundary-begins-another",
     "This boundary and that of an enclosing multipart begin alike; some readers confuse them."},
    {name::multipart_without_boundary, level::danger, "multipart-without-boundary",
     "This multipart names no boundary; some readers guess one."},
    {name::near_delimiter, level::danger, "near-delimiter",
     "This line is nearly a delimiter line; some readers begin or end a part here."},
    {name::delimiter_of_closed_multipart, level::danger, "delimiter-of-closed-multipart",
     "This multipart is closed already; some readers begin a further part here."},
    {name::delimiter_line_end, level::danger, "delimiter-line-end",
     "The line before ends otherwise than this delimiter line; readers differ on its last bytes."},
    {name::delimiter_padded, level::note, "delimiter-padded",
     "White space stands at the end of this delimiter line."},
    {name::message_encoded, level::danger, "message-encoded",
     "This message is encoded; some readers decode and enter it, others do not."},
    {name::multipart_encoded, level::danger, "multipart-encoded",
     "This multipart is marked as encoded; some readers decode it before they look for parts."},
    {name::message_not_entered, level::danger, "message-not-entered",
     "Only some readers take the body of this part for a message."},
    {name::transfer_encoding_twice, level::danger, "transfer-encoding-twice",
     "This entity has a second transfer encoding; readers differ on which one counts."},
    {name::transfer_encoding_unknown, level::danger, "transfer-encoding-unknown",
     "Nobody knows this transfer encoding; readers differ on the contents of the part."},
    {name::part_without_lines, level::danger, "part-without-lines",
     "This part has no line; some readers do not count it."},
    {name::multipart_not_closed, level::fault, "multipart-not-closed",
     "This multipart has no closing line; the message may have been cut off."},
    {name::multipart_without_parts, level::fault, "multipart-without-parts",
     "This multipart has no part; some readers take its text for the body."},
    {name::deep_nesting, level::danger, "deep-nesting",
     "The parts are nested so deep that some readers go no further."},
    {name::many_parts, level::danger, "many-parts",
     "There are so many parts that some readers count no further."},
    {name::text_after_close, level::note, "text-after-close",
     "This text stands behind the last part; most readers hide it."},
    {name::mixed_line_ends, level::note, "mixed-line-ends",
     "This line ends otherwise than the first line of the message."},
    {name::from_line, level::note, "from-line",
     "The message begins with the separator line of an mbox."},
    {name::line_too_long, level::fault, "line-too-long", "This line is longer than 998 bytes."},
    {name::header_not_ascii, level::fault, "header-not-ascii",
     "This line of a header block has bytes above 127."},
    {name::encoded_word_invalid, level::fault, "encoded-word-invalid",
     "This begins as an encoded word and is none; some readers show it as it stands."},
    {name::field_twice, level::fault, "field-twice",
     "A message may have this field only once; readers differ on which one they show."},
    {name::field_missing, level::fault, "field-missing",
     "This message has no Date field or no From field."},
    {name::mime_version_missing, level::note, "mime-version-missing",
     "This message has MIME fields, but no MIME-Version field."},
    {name::undeclared_8_bit, level::fault, "undeclared-8-bit",
     "A byte above 127 stands here, but the transfer encoding allows none."},
    {name::base64_invalid, level::fault, "base64-invalid",
     "This is no valid base64; readers differ on what it decodes to."},
    {name::quoted_printable_invalid, level::fault, "quoted-printable-invalid",
     "This is no valid quoted-printable; readers differ on what it decodes to."},
    {name::parameter_unquoted_specials, level::danger, "parameter-unquoted-specials",
     "This parameter value has characters that need quotes; some readers cut it off there."},
    {name::date_invalid, level::fault, "date-invalid",
     "This is no date as RFC 5322 writes it; readers show another time, or none."},
    {name::address_invalid, level::fault, "address-invalid",
     "This is no address as RFC 5322 writes it; readers may show another one, or none."},
    {name::message_id_invalid, level::fault, "message-id-invalid",
     "This is no message identifier as RFC 5322 writes it; replies may not find their message."},
}};

constexpr bool are_in_order() noexcept {
    for (std::size_t index = 0; index < descriptions.size(); ++index)
        if (static_cast<std::size_t>(descriptions[index].m_name) != index) return false;
    return true;
}
static_assert(are_in_order());

const description& description_of(name found) noexcept {
    return descriptions[static_cast<std::size_t>(found)];
}

} // namespace

std::string_view text_of(name found) noexcept { return description_of(found).m_text; }

std::string_view text_of(level found) noexcept {
    switch (found) {
    case level::note: return "note";
    case level::fault: return "fault";
    case level::danger: break;
    }
    return "danger";
}

std::string_view explanation_of(name found) noexcept { return description_of(found).m_explanation; }

level highest_level_of(name found) noexcept { return description_of(found).m_highest_level; }

} // namespace mail_findings
