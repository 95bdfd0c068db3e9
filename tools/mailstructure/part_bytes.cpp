// Decodes the bytes of a piece, and converts them; see the header.

#include "mailstructure/part_bytes.h"

#include "common/ascii_case.h"
#include "common/charset_conversion.h"
#include "common/field_lookup.h"
#include "common/terminal.h"
#include "common/unquoted_lines.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t longest_name_shown = 100; // bytes; the sender chose the name

std::string shown(const std::string& name) {
    return printable_beginning(name, locale_character_set(), longest_name_shown);
}

bool is_text(const MailStructure::MimeObj& entity) {
    return entity.m_type.empty() || equal_ignoring_case(entity.m_type, "text");
}

/// Hands over the bytes of the piece without their transfer encoding.
bool give_decoded(const part_options& options, const message_file& file, const chosen_piece& piece,
                  transfer_encoding encoding, const byte_sink& sink) {
    const std::string_view quoted = file.cut(piece.m_bytes.m_offset, piece.m_bytes.m_length);
    const unquoted_lines lines(options.m_unquote ? quoted : std::string_view());
    const std::string_view bytes = options.m_unquote ? lines.text() : quoted;
    const strictness how = options.m_decode.value_or(strictness::strict);
    const std::optional<decoding_damage> damage = decode(encoding, bytes, sink, how);
    if (!damage) return true;
    const std::uint64_t offset = piece.m_bytes.m_offset + lines.offset_in_quoted(damage->m_offset);
    if (how == strictness::strict) {
        complain_about_input(options.m_file, "cannot decode: " + damage->m_what, offset);
        return false;
    }
    const std::string bytes_at_fault =
        std::to_string(damage->m_bytes) + (damage->m_bytes == 1 ? " byte" : " bytes");
    complain_about_input(
        options.m_file,
        "decoded with damage: " + bytes_at_fault + " at fault; first: " + damage->m_what, offset);
    return true;
}

/// Hands over the decoded text of the piece in UTF-8. Text that names no charset is taken for
/// UTF-8, of which ASCII, the default of MIME, is a part.
class utf8_giver {
public:
    utf8_giver(const part_options& options, const message_file& file, const chosen_piece& piece,
               const byte_sink& sink)
        : m_options(options), m_file(file), m_piece(piece), m_sink(sink),
          m_charset(
              charset_of(*piece.m_entity, {file.bytes(), options.m_rules, file.message_start()})),
          m_conversion(m_charset.empty() ? "utf-8" : m_charset, options.m_decode.value()) {}

    bool give(transfer_encoding encoding) {
        if (!m_conversion.is_known()) {
            complain_about("unknown charset " + shown(m_charset), "");
            if (is_strict()) return false;
        }
        bool is_whole = give_decoded(m_options, m_file, m_piece, encoding,
                                     [this](std::string_view bytes) { return convert(bytes); });
        if (!m_wanted) return is_whole;
        std::string rest;
        is_whole = m_conversion.finish(rest) && is_whole;
        if (!rest.empty()) m_sink(rest);
        if (const std::optional<conversion_damage>& damage = m_conversion.damage())
            complain_about_damage(*damage);
        return is_whole;
    }

private:
    bool is_strict() const { return m_options.m_decode == strictness::strict; }

    bool convert(std::string_view bytes) {
        std::string converted;
        const bool goes_on = m_conversion.add(bytes, converted);
        m_wanted = converted.empty() || m_sink(converted);
        return m_wanted && goes_on;
    }

    void complain_about_damage(const conversion_damage& damage) const {
        const std::string first =
            "byte " + std::to_string(damage.m_offset) + " of the decoded part is not "
            + (m_charset.empty() || !m_conversion.is_known() ? "utf-8" : shown(m_charset));
        const std::string places = is_strict() ? ""
                                               : std::to_string(damage.m_count)
                                                     + (damage.m_count == 1 ? " place" : " places")
                                                     + "; first: ";
        complain_about(places + first, "; it begins");
    }

    void complain_about(const std::string& what, const std::string& before_place) const {
        complain_about_input(m_options.m_file,
                             (is_strict() ? "cannot convert: " : "converted with damage: ") + what
                                 + before_place,
                             m_piece.m_bytes.m_offset);
    }

    const part_options& m_options;
    const message_file& m_file;
    const chosen_piece& m_piece;
    const byte_sink& m_sink;
    std::string m_charset;
    utf8_conversion m_conversion;
    bool m_wanted = true; // the sink takes more
};

} // namespace

std::optional<transfer_encoding> encoding_to_undo(const part_options& options,
                                                  const chosen_piece& piece) {
    if (!options.m_decode) return transfer_encoding::none;
    const std::string name = encoding_in_effect(*piece.m_entity, options.m_rules);
    std::optional<transfer_encoding> encoding = transfer_encoding_named(name, *options.m_decode);
    if (encoding) return encoding;
    const bool strict = options.m_decode == strictness::strict;
    const std::string what = strict ? "cannot decode: " : "not decoded: ";
    complain_about_input(options.m_file, what + "unknown transfer encoding " + shown(name),
                         piece.m_bytes.m_offset);
    if (!strict) encoding = transfer_encoding::none;
    return encoding;
}

bool give_piece(const part_options& options, const message_file& file, const chosen_piece& piece,
                transfer_encoding encoding, const byte_sink& sink) {
    if (options.m_to_utf8 && is_text(*piece.m_entity))
        return utf8_giver(options, file, piece, sink).give(encoding);
    return give_decoded(options, file, piece, encoding, sink)
           && std::all_of(
               piece.m_more.begin(), piece.m_more.end(),
               [&](const mail_sections::byte_range& range) {
                   const std::string_view quoted = file.cut(range.m_offset, range.m_length);
                   return sink(options.m_unquote ? unquoted_lines(quoted).text() : quoted);
               });
}
