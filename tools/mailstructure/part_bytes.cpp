// Decodes the bytes of a piece; see the header.

#include "mailstructure/part_bytes.h"

#include "common/field_lookup.h"
#include "common/terminal.h"

#include <string>
#include <string_view>

namespace {

constexpr std::size_t longest_encoding_shown = 100; // bytes; the sender chose the name

} // namespace

std::optional<transfer_encoding> encoding_to_undo(const part_options& options,
                                                  const chosen_piece& piece) {
    if (!options.m_decode) return transfer_encoding::none;
    const std::string name = encoding_in_effect(*piece.m_entity, options.m_rules);
    std::optional<transfer_encoding> encoding = transfer_encoding_named(name);
    if (encoding) return encoding;
    const bool strict = options.m_decode == strictness::strict;
    const std::string what = strict ? "cannot decode: " : "not decoded: ";
    const std::string shown =
        printable_beginning(name, locale_character_set(), longest_encoding_shown);
    complain_about_input(options.m_file, what + "unknown transfer encoding " + shown,
                         piece.m_bytes.m_offset);
    if (!strict) encoding = transfer_encoding::none;
    return encoding;
}

bool give_piece(const part_options& options, const message_file& file, const chosen_piece& piece,
                transfer_encoding encoding, const byte_sink& sink) {
    const std::string_view bytes = file.cut(piece.m_bytes.m_offset, piece.m_bytes.m_length);
    const strictness how = options.m_decode.value_or(strictness::strict);
    const std::optional<decoding_damage> damage = decode(encoding, bytes, sink, how);
    if (!damage) return true;
    const std::uint64_t offset = piece.m_bytes.m_offset + damage->m_offset;
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
