// The rules about the trees of the rule set "standard":
//
//     ranges          header block, contents and epilogue lie end to end. Only a multipart has an
//                     epilogue, and it follows the closing line.
//     whole entity    header block and body. The body lies in the contents, and begins or ends with
//                     them unless a separator or a child's header block does.
//     leaf            contents and body are the same.
//     message         has exactly one child, which takes all of the contents.
//     multipart       the lines of the contents are those of its parts, one separator for each
//                     part, and the multipart's own body lines: the preamble and the closing line.
//     no lines        an entity without a header block has no lines at all.

#include "support/tree_ranges.h"
#include "support/tree_rules.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace test_support {
namespace {

using entity = MailStructure::MimeObj;
using field = MailStructure::header;

constexpr std::string_view white_space = " \t\n\v\f\r";

char lower_case(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool is_word(std::string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char a, char b) { return lower_case(a) == b; });
}

bool is_token(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) > 32 && c != 127
               && std::string_view("()<>@,;:\\\"/[]?=").find(c) == std::string_view::npos;
    });
}

bool is_name(std::string_view text) {
    return !text.empty()
           && std::all_of(text.begin(), text.end(), [](char c) { return c > 32 && c < 127; })
           && text.find(':') == std::string_view::npos;
}

/// Takes the first line off the text, and returns it without its end.
std::string_view take_line(std::string_view& text) {
    const std::size_t bytes = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, bytes);
    text.remove_prefix(std::min(bytes + 1, text.size()));
    while (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// Whether the text has lines, and the last of them is empty.
bool last_line_is_empty(std::string_view text) {
    if (text.empty()) return false;
    if (text.ends_with('\n')) text.remove_suffix(1);
    while (text.ends_with('\r')) text.remove_suffix(1);
    return text.empty() || text.ends_with('\n');
}

/// The lines of a text as the parser keeps them: without their ends, each followed by CR LF.
std::string kept_lines(std::string_view text) {
    std::string kept;
    while (!text.empty()) kept.append(take_line(text)).append("\r\n");
    return kept;
}

void require_ranges(const entity& of, const parse_facts& facts, bool is_root) {
    const range header = header_of(of);
    const range body = body_of(of);
    const range contents = contents_of(of);
    const range epilogue = epilogue_of(of);
    for (const range& one : {header, mime_of(of), body, contents, epilogue}) {
        require(!facts.m_input || one.m_end <= facts.m_input->size(),
                "a range ends inside the input");
        require(one.is_set() || one.m_beg == 0, "an unset range is all zero");
        require(!one.is_set() || header.is_set(), "an entity without a header block has no lines");
    }
    require(!contents.is_set() || contents.m_beg == header.m_end,
            "the contents begin where the header block ends");
    require(!epilogue.is_set() || epilogue.m_beg == contents.m_end,
            "the epilogue begins where the contents end");
    require(body.lies_in(contents), "the body lies in the contents");
    require(mime_of(of) == range{header.m_beg, body.is_set() ? body.m_end : header.m_end},
            "an entity is its header block and its body");
    require(body.is_set() == (of.m_lines != 0), "a body range and body lines come together");
    require(!epilogue.is_set() || (of.m_multipart && body.m_end == contents.m_end),
            "an epilogue follows the closing line of a multipart");
    require(!is_root || header.m_beg == 0, "the root begins with the input");
    require(!is_root || !facts.m_all_read || !facts.m_input
                || extent_of(of).m_end == facts.m_input->size(),
            "the root ends with the input");
}

void require_types(const entity& of) {
    require(is_token(of.m_type) && is_token(of.m_subtype) && is_token(of.m_encoding),
            "types and encodings are tokens");
    require(!of.m_multipart || is_word(of.m_type, "multipart"), "a multipart is of that type");
    require(!of.m_message || is_word(of.m_type, "message"), "a message is of that type");
    require(!of.m_message || of.m_children.size() == 1, "a message has exactly one child");
    require(of.m_multipart || of.m_message || of.m_children.empty(), "a leaf has no children");
}

void require_field(const field& of, const range& header, const parse_facts& facts) {
    require(is_name(of.m_name), "field names are printable, without a colon");
    require(of.m_params.empty() || is_word(of.m_name, "content-type"),
            "only Content-Type fields have parameters");
    for (const auto& [name, value] : of.m_params)
        require(is_token(name) && value.size() <= of.m_end - of.m_beg,
                "a parameter has a token for a name, and no more than its field for a value");
    require(header.m_beg <= of.m_beg && of.m_beg < of.m_end && of.m_end <= header.m_end,
            "a field lies in its header block");
    require(!facts.m_input || facts.m_input->substr(of.m_beg).starts_with(of.m_name),
            "a field begins with its name");
    require(of.m_value.size() <= of.m_end - of.m_beg, "a value is no longer than its field");
    require(of.m_value.empty()
                || (white_space.find(of.m_value.front()) == std::string_view::npos
                    && white_space.find(of.m_value.back()) == std::string_view::npos),
            "a value has no white space at its ends");
}

void require_header_block(const entity& of, const parse_facts& facts) {
    const range header = header_of(of);
    std::uint64_t last_end = header.m_beg;
    for (const field& one : of.m_headers) {
        require_field(one, header, facts);
        require(one.m_beg >= last_end, "fields follow one another");
        last_end = one.m_end;
    }
    if (!facts.m_input) return;
    std::string_view block = cut(*facts.m_input, header);
    require(!contents_of(of).is_set() || last_line_is_empty(block),
            "lines follow a header block only behind its empty line");
    while (!block.empty())
        require(!take_line(block).empty() || block.empty(),
                "an empty line is the last of its header block");
}

void require_text(const entity& of, const parse_facts& facts) {
    if (facts.m_keep_text) {
        require(std::count(of.m_body_text.begin(), of.m_body_text.end(), '\n')
                    == static_cast<std::ptrdiff_t>(of.m_lines),
                "kept text has one CR LF for each body line");
        require(of.m_body_last_empty == ends_with_empty_line(of.m_body_text)
                    && of.m_epilogue_last_empty == ends_with_empty_line(of.m_epilogue_text),
                "the flags tell of the last lines kept");
    } else {
        require(of.m_body_text.empty() && of.m_epilogue_text.empty(), "no text is kept unasked");
    }
    if (!facts.m_input) return;
    const std::string_view epilogue = cut(*facts.m_input, epilogue_of(of));
    require(of.m_body_last_empty == last_line_is_empty(cut(*facts.m_input, body_of(of))),
            "the flag tells of the last body line");
    require(of.m_epilogue_last_empty == last_line_is_empty(epilogue),
            "the flag tells of the last epilogue line");
    require(!facts.m_keep_text || of.m_epilogue_text == kept_lines(epilogue),
            "the kept epilogue is the entity's own");
}

void require_leaf(const entity& of, const parse_facts& facts) {
    require(body_of(of) == contents_of(of), "the contents of a leaf are its body");
    if (!facts.m_input) return;
    const std::string_view body = cut(*facts.m_input, body_of(of));
    const auto ends = std::count(body.begin(), body.end(), '\n');
    const bool has_unended = !body.empty() && !body.ends_with('\n');
    require(of.m_lines == static_cast<std::uint32_t>(ends) + (has_unended ? 1 : 0),
            "a leaf's lines are those of its body");
    require(!facts.m_keep_text || of.m_body_text == kept_lines(body),
            "a leaf's text is that of its body");
}

void require_message(const entity& of) {
    const entity& child = of.m_children.front();
    require(extent_of(child) == contents_of(of), "a message is all the contents of its entity");
    require(of.m_lines == child.m_lines && body_of(of) == body_of(child),
            "a message has the body lines of its entity");
}

/// The lines of a multipart's contents that lie between its parts, one piece after the other.
class lines_between_parts {
public:
    /// @param is_first  a preamble may stand there
    void add(std::string_view text, bool is_first) {
        while (!text.empty()) {
            m_last_is_dashed = take_line(text).starts_with("--");
            require(is_first || m_last_is_dashed,
                    "between and behind the parts stand delimiter lines alone");
            ++m_lines;
        }
    }

    std::uint64_t m_lines = 0;
    bool m_last_is_dashed = false;
};

void require_multipart(const entity& of, const parse_facts& facts) {
    const range contents = contents_of(of);
    std::uint64_t at = contents.m_beg;
    std::uint64_t lines_of_parts = 0;
    bool is_first = true;
    lines_between_parts between;
    for (const entity& part : of.m_children) {
        lines_of_parts += part.m_lines;
        require(body_of(part).lies_in(body_of(of)), "the body of a part lies in that around it");
        const range extent = extent_of(part);
        if (!extent.is_set()) continue;
        require(extent.m_beg > at, "a separator stands before each part");
        if (facts.m_input) {
            between.add(cut(*facts.m_input, {at, extent.m_beg}), is_first);
            require(between.m_last_is_dashed, "a separator stands directly before each part");
        }
        at = extent.m_end;
        is_first = false;
    }
    require(at <= contents.m_end, "the parts lie in the contents");
    require(lines_of_parts <= of.m_lines, "the lines of parts count in the multipart");
    if (!facts.m_input) return;
    between.add(cut(*facts.m_input, {at, contents.m_end}), is_first);
    require(between.m_lines == of.m_children.size() + of.m_lines - lines_of_parts,
            "the contents are the parts, a separator for each, and the multipart's own lines");
}

} // namespace

void check_standard_entity(const visited_entity& visited, const parse_facts& facts) {
    const entity& of = *visited.m_entity;
    require_ranges(of, facts, visited.m_parent == nullptr);
    require_types(of);
    require_header_block(of, facts);
    require_text(of, facts);
    if (of.m_multipart)
        require_multipart(of, facts);
    else if (of.m_message)
        require_message(of);
    else
        require_leaf(of, facts);
    for (const entity& child : of.m_children)
        require(!visited.m_in_place || child.m_parent == &of,
                "children of an open entity point at it");
}

} // namespace test_support
