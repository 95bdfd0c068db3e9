// The functions for C: they call the parser, and turn each exception into a code.

#include <mail_structure.h>

#include "flat_tree.h"
#include "section_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mail_structure_c.h>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>

struct mail_structure_parser {
    MailStructure m_message;
    mail_structure_detail::flat_tree m_tree;
    mail_structure_detail::section_table m_sections;
    MailStructure::rules m_rules = MailStructure::rules::standard; // of the last message
    std::optional<MailStructure::feeder> m_feeder; // of a message that is not finished yet
};

namespace {

/// What the codes mean, by their numbers.
constexpr std::array code_texts = {
    "all is well",
    "memory has run out",
    "a CR, LF or NUL stands inside a line",
    "a header line that ends with CR LF is a name without a colon",
    "the tree has more records or more text than 32-bit numbers can count",
    "a parameter has no meaning, or the function may not be called now",
    "the parser has failed",
    "the message has no such section",
};

/// Calls the function, which returns nothing, and names the exception that it leaves by.
template <class Function>
mail_structure_code code_of(Function function) noexcept {
    try {
        function();
        return MAIL_STRUCTURE_OK;
    } catch (const std::bad_alloc&) {
        return MAIL_STRUCTURE_NO_MEMORY;
    } catch (const mail_structure_detail::tree_too_large&) {
        return MAIL_STRUCTURE_TOO_LARGE;
    } catch (const std::length_error&) {
        return MAIL_STRUCTURE_NO_COLON;
    } catch (const std::runtime_error&) {
        return MAIL_STRUCTURE_STRAY_BYTE;
    } catch (...) {
        return MAIL_STRUCTURE_FAILED;
    }
}

std::optional<MailStructure::rules> rules_of(int rules) noexcept {
    switch (rules) {
    case MAIL_STRUCTURE_CLASSIC: return MailStructure::rules::classic;
    case MAIL_STRUCTURE_STANDARD: return MailStructure::rules::standard;
    }
    return std::nullopt;
}

bool are_bytes(const void* bytes, std::size_t count) noexcept {
    return bytes != nullptr || count == 0;
}

std::string_view view_of(const void* bytes, std::size_t count) noexcept {
    return {static_cast<const char*>(bytes), count};
}

/// Drops the tree of the last message, and a message that has begun, for a new one.
void begin_message(mail_structure_parser& parser, MailStructure::rules by) noexcept {
    parser.m_feeder.reset();
    parser.m_tree.clear();
    parser.m_sections.clear();
    parser.m_rules = by;
}

/// Whether a call that asks for the tree has what it needs. The record begins with its size.
bool may_describe(const mail_structure_parser* parser, const std::size_t* struct_bytes) noexcept {
    return parser != nullptr && struct_bytes != nullptr && !parser->m_feeder
           && *struct_bytes >= sizeof *struct_bytes;
}

/// Hands out a record. A caller that was built with an older version knows its first members only.
template <class Record>
void hand_out(Record& to, Record& whole) noexcept {
    whole.struct_bytes = to.struct_bytes;
    std::memcpy(&to, &whole, std::min(to.struct_bytes, sizeof whole));
}

mail_structure_code lay_out_sections(mail_structure_parser& parser) noexcept {
    if (parser.m_sections.is_laid_out()) return MAIL_STRUCTURE_OK;
    return code_of([&] { parser.m_sections.lay_out(parser.m_message.m_root); });
}

} // namespace

mail_structure_parser* mail_structure_new() { return new (std::nothrow) mail_structure_parser; }

void mail_structure_free(mail_structure_parser* parser) { delete parser; }

mail_structure_code mail_structure_parse(mail_structure_parser* parser, const void* bytes,
                                         size_t count, int rules) {
    const auto by = rules_of(rules);
    if (parser == nullptr || !are_bytes(bytes, count) || !by) return MAIL_STRUCTURE_WRONG_CALL;
    begin_message(*parser, *by);
    return code_of([&] { parser->m_message.Fill(view_of(bytes, count), *by); });
}

mail_structure_code mail_structure_begin(mail_structure_parser* parser, int rules) {
    const auto by = rules_of(rules);
    if (parser == nullptr || !by) return MAIL_STRUCTURE_WRONG_CALL;
    begin_message(*parser, *by);
    return code_of([&] { parser->m_feeder.emplace(parser->m_message, *by); });
}

mail_structure_code mail_structure_feed(mail_structure_parser* parser, const void* bytes,
                                        size_t count) {
    if (parser == nullptr || !are_bytes(bytes, count) || !parser->m_feeder)
        return MAIL_STRUCTURE_WRONG_CALL;
    const mail_structure_code code =
        code_of([&] { parser->m_feeder->feed(view_of(bytes, count)); });
    if (code != MAIL_STRUCTURE_OK) parser->m_feeder.reset();
    return code;
}

mail_structure_code mail_structure_finish(mail_structure_parser* parser) {
    if (parser == nullptr || !parser->m_feeder) return MAIL_STRUCTURE_WRONG_CALL;
    const mail_structure_code code = code_of([&] { parser->m_feeder->finish(); });
    parser->m_feeder.reset();
    return code;
}

mail_structure_code mail_structure_get_tree(mail_structure_parser* parser,
                                            mail_structure_tree* tree) {
    if (!may_describe(parser, tree == nullptr ? nullptr : &tree->struct_bytes))
        return MAIL_STRUCTURE_WRONG_CALL;
    if (!parser->m_tree.is_laid_out()) {
        const mail_structure_code code =
            code_of([&] { parser->m_tree.lay_out(parser->m_message.m_root); });
        if (code != MAIL_STRUCTURE_OK) return code;
    }
    mail_structure_tree whole{};
    parser->m_tree.describe(whole);
    hand_out(*tree, whole);
    return MAIL_STRUCTURE_OK;
}

mail_structure_code mail_structure_get_names(mail_structure_parser* parser,
                                             mail_structure_names* names) {
    if (!may_describe(parser, names == nullptr ? nullptr : &names->struct_bytes))
        return MAIL_STRUCTURE_WRONG_CALL;
    const mail_structure_code code = lay_out_sections(*parser);
    if (code != MAIL_STRUCTURE_OK) return code;
    mail_structure_names whole{};
    parser->m_sections.describe(whole);
    hand_out(*names, whole);
    return MAIL_STRUCTURE_OK;
}

mail_structure_code mail_structure_find_section(mail_structure_parser* parser, const char* text,
                                                size_t text_bytes, const void* bytes, size_t count,
                                                mail_structure_section* section) {
    if (!may_describe(parser, section == nullptr ? nullptr : &section->struct_bytes)
        || !are_bytes(text, text_bytes) || !are_bytes(bytes, count))
        return MAIL_STRUCTURE_WRONG_CALL;
    mail_structure_code code = lay_out_sections(*parser);
    if (code != MAIL_STRUCTURE_OK) return code;
    mail_structure_section whole{};
    bool is_found = false;
    code = code_of([&] {
        is_found = parser->m_sections.find(parser->m_message.m_root, view_of(text, text_bytes),
                                           {view_of(bytes, count), parser->m_rules}, whole);
    });
    if (code != MAIL_STRUCTURE_OK) return code;
    hand_out(*section, whole);
    return is_found ? MAIL_STRUCTURE_OK : MAIL_STRUCTURE_NO_SECTION;
}

const void* mail_structure_object(const mail_structure_parser* parser) {
    return parser == nullptr ? nullptr : &parser->m_message;
}

const char* mail_structure_code_text(int code) {
    const auto place = static_cast<std::size_t>(code);
    return place < code_texts.size() ? code_texts[place] : "unknown code";
}

uint32_t mail_structure_interface_version() { return _lib_version; }

void mail_structure_set_memory_limit(uint32_t bytes) { MailStructure::m_memlimit = bytes; }
