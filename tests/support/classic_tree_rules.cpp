// The rules about the trees of the classic rule set, and why they are no stricter:
//
//     whole entity    header block and body, so it ends with the last body line or, without one,
//                     with the header block. A child's header block is in no range of the parent
//                     but the contents: a child without body lines may lie outside the parent's
//                     whole-entity and body ranges.
//     body            every body line of a child is one of the parent too. The closing line of a
//                     multipart right after its preamble is in its body and not in its contents.
//     contents        an entity takes a line together with all its ancestors; the parent also
//                     takes all lines of the child's header block.
//     epilogue        those of descendants included, so for a parent it may begin before the body
//                     has ended.
//     siblings        one after another: the next opens when the one before has closed.

#include "support/tree_ranges.h"
#include "support/tree_rules.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace test_support {
namespace {

using entity = MailStructure::MimeObj;
using field = MailStructure::header;

bool is_name_byte(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-'; }

/// What becomes of an empty second line.
enum class second_line : std::uint8_t { kept, dropped_if_empty };

/// The lines of a text as the parser keeps them: without terminator, followed by CR LF. Returns
/// their number.
std::uint32_t keep_lines(std::string_view text, std::string& kept,
                         second_line second = second_line::kept) {
    std::uint32_t lines = 0;
    kept.clear();
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, length);
        if (line.ends_with('\r')) line.remove_suffix(1);
        text.remove_prefix(std::min(length + 1, text.size()));
        if (lines == 1 && line.empty()
            && std::exchange(second, second_line::kept) == second_line::dropped_if_empty)
            continue;
        kept.append(line).append("\r\n");
        ++lines;
    }
    return lines;
}

void require_ranges(const entity& of, const parse_facts& facts) {
    const range header = header_of(of);
    const range mime = mime_of(of);
    const range body = body_of(of);
    for (const range& one : {header, mime, body, epilogue_of(of), contents_of(of)}) {
        require(!facts.m_input || one.m_end <= facts.m_input->size(),
                "a range ends inside the input");
        require(one.is_set() || one.m_beg == 0, "an unset range is all zero");
    }
    require(body.is_set() == (of.m_lines != 0), "a body range and body lines come together");
    require(mime.m_end == (body.is_set() ? body.m_end : header.m_end),
            "an entity ends with its body");
    require(mime.is_set() == (header.is_set() || body.is_set()),
            "an entity has a header block or a body");
    if (header.is_set()) {
        require(mime.m_beg == header.m_beg, "an entity begins with its header block");
        for (const range& one : {body, epilogue_of(of), contents_of(of)})
            require(!one.is_set() || one.m_beg >= header.m_end,
                    "all else follows the header block");
    } else if (mime.m_beg != 0 || of.m_lines <= 1) {
        require(mime.m_beg == body.m_beg, "without a header block the body is all");
    } else {
        require(body.m_beg > 0, "a body at offset 0 loses its first line");
    }
    require(!of.m_multipart || header.is_set(), "only a field makes a multipart");
    require(!of.m_message || header.is_set(), "only a field makes an encapsulated message");
}

/// @param is_last  the last field of the tree, in the order of the input
void require_field(const field& of, const range& header, const parse_facts& facts, bool is_last) {
    require(!of.m_name.empty(), "a field has a name");
    require(std::all_of(of.m_name.begin(), of.m_name.end(), is_name_byte),
            "field names are letters and dashes");
    const bool is_content_type = strncasecmp(of.m_name, "content-type", 0xFFFFFFFF);
    require(is_content_type || of.m_params.empty(), "only Content-Type fields have parameters");
    for (const auto& [name, value] : of.m_params)
        require(!name.empty() && !value.empty(), "a parameter has a name and a value");
    if (of.m_beg == 0xFFFFFFFF) {
        require(facts.m_length_error && is_last, "only a field that ended the parse has no place");
        require(of.m_end == 0 && of.m_value.empty(),
                "a field that ended the parse has neither end nor value");
        return;
    }
    require(of.m_beg < of.m_end && of.m_beg >= header.m_beg && of.m_end <= header.m_end,
            "a field lies in its header block");
    require(!facts.m_input || facts.m_input->substr(of.m_beg).starts_with(of.m_name),
            "a field begins with its name");
    require(of.m_value.size() <= of.m_end - of.m_beg, "a value is no longer than its field");
}

void require_fields(const entity& of, const parse_facts& facts, bool is_root,
                    bool is_innermost_open) {
    const range header = header_of(of);
    std::uint64_t last_end = header.m_beg;
    for (std::size_t index = 0; index < of.m_headers.size(); ++index) {
        const field& one = of.m_headers[index];
        require_field(one, header, facts, is_innermost_open && index + 1 == of.m_headers.size());
        if (one.m_beg == 0xFFFFFFFF) continue;
        require(one.m_beg >= last_end, "fields follow one another");
        // The empty line after the first line of an encapsulated message is dropped, and fields may
        // follow it.
        const std::uint64_t dropped = !is_root && index == 1 ? 2 : 0;
        if (!facts.m_has_memlimit || facts.m_keep_text)
            require(one.m_beg - last_end <= dropped, "fields leave no gap");
        last_end = one.m_end;
    }
    if (facts.m_has_memlimit && !facts.m_keep_text) return;
    // The empty line that ends the block, and one that was dropped before it.
    const std::uint64_t blank = !is_root && of.m_headers.size() == 1 ? 4 : 2;
    require(header.m_end - std::min(last_end, header.m_end) <= blank,
            "a header block is its fields and a blank line");
}

void require_kept_text(const entity& of, bool keep_text) {
    if (!keep_text) {
        require(of.m_body_text.empty() && of.m_epilogue_text.empty(), "no text is kept unasked");
        return;
    }
    const auto terminators = std::count(of.m_body_text.begin(), of.m_body_text.end(), '\n');
    require(terminators == static_cast<std::ptrdiff_t>(of.m_lines),
            "kept text has one CR LF for each body line");
    require(of.m_body_last_empty == ends_with_empty_line(of.m_body_text),
            "the flag tells of the last body line");
    require(of.m_epilogue_last_empty == ends_with_empty_line(of.m_epilogue_text),
            "the flag tells of the last epilogue line");
}

/// Without children, body and epilogue are unbroken runs of the entity's own lines.
/// @param parent  null for the root
void require_leaf(const entity& of, const entity* parent, const parse_facts& facts) {
    const range body = body_of(of);
    const range epilogue = epilogue_of(of);
    require(!epilogue.is_set() || epilogue.m_beg >= body.m_end,
            "a leaf's epilogue follows its body");
    if (of.m_lines != 0)
        require(!of.m_type.empty() && !of.m_subtype.empty(), "a body line gives a default type");
    if (!facts.m_input) return;
    std::string scratch;
    // When a body begins at offset 0, its first line is missing in the body range, but not in the
    // whole-entity range.
    const range lines = header_of(of).is_set() ? body : mime_of(of);
    std::uint32_t count = keep_lines(cut(*facts.m_input, lines), scratch);
    // An encapsulated message that begins with a body line loses the next line if that is empty. In
    // the tree, such a message cannot be distinguished from a part that a separator opened, which
    // keeps the line.
    if (count != of.m_lines && parent != nullptr && parent->m_message && !header_of(of).is_set())
        count = keep_lines(cut(*facts.m_input, lines), scratch, second_line::dropped_if_empty);
    require(count == of.m_lines, "a leaf's lines are those of its body");
    require(of.m_body_last_empty == ends_with_empty_line(scratch),
            "a leaf's flag tells of its last body line");
    if (facts.m_keep_text) require(scratch == of.m_body_text, "a leaf's text is that of its body");
    keep_lines(cut(*facts.m_input, epilogue), scratch);
    require(of.m_epilogue_last_empty == ends_with_empty_line(scratch),
            "a leaf's flag tells of its epilogue");
    if (facts.m_keep_text)
        require(scratch == of.m_epilogue_text, "a leaf's text is that of its epilogue");
}

void require_child(const entity& parent, const entity& child) {
    require(header_of(parent).is_set(), "only a header block leads to children");
    const range extent = extent_of(child);
    require(!extent.is_set() || extent.m_beg >= header_of(parent).m_end,
            "children follow the header block");
    require(body_of(child).lies_in(body_of(parent)), "a child's body lies in its parent's");
    require(!body_of(child).is_set() || mime_of(child).lies_in(mime_of(parent)),
            "a child with a body lies in its parent");
    require(epilogue_of(child).lies_in(epilogue_of(parent)),
            "a child's epilogue lies in its parent's");
    require(contents_of(child).lies_in(contents_of(parent)),
            "a child's contents lie in its parent's");
    require(header_of(child).lies_in(contents_of(parent)),
            "a child's header block lies in its parent's contents");
}

/// @param in_place  the entity was open to the end, so that its children still point at it
void require_children(const entity& of, bool in_place) {
    std::uint64_t lines = 0;
    std::uint64_t last_end = 0;
    for (const entity& child : of.m_children) {
        require_child(of, child);
        const range extent = extent_of(child);
        require(!extent.is_set() || extent.m_beg >= last_end, "siblings follow one another");
        if (extent.is_set()) last_end = extent.m_end;
        lines += child.m_lines;
        require(!in_place || child.m_parent == &of, "children of an open entity point at it");
    }
    require(lines <= of.m_lines, "children's lines count in the parent");
}

} // namespace

void check_classic_entity(const visited_entity& visited, const parse_facts& facts) {
    const auto [of, parent, in_place] = visited;
    const bool is_leaf = of->m_children.empty();
    require_ranges(*of, facts);
    require_fields(*of, facts, parent == nullptr, in_place && is_leaf);
    require_kept_text(*of, facts.m_keep_text);
    if (is_leaf) require_leaf(*of, parent, facts);
    require_children(*of, in_place);
}

} // namespace test_support
