// Walks from one "From " line to the next; see the header.

#include "scan/mbox/mbox_splitter.h"

#include "common/ascii_case.h"
#include "scan/mbox/from_date.h"
#include "scan/mbox/line_search.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr std::string_view from = "From ";
constexpr std::uint64_t bytes_before =
    3; // of a line: its line break, and an empty line before that
constexpr std::size_t longest_header_block = 1 << 20; // a longer one is not searched for a length

/// The bytes of the line end at the end of the text: 0, 1 or 2.
unsigned line_end_bytes(std::string_view text) {
    if (text.empty() || text.back() != '\n') return 0;
    return text.size() > 1 && text[text.size() - 2] == '\r' ? 2 : 1;
}

/// The first line of the text, without its line end.
std::string_view first_line(std::string_view text) {
    std::string_view line = text.substr(0, text.find('\n'));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

/// The number that the line gives, if it is a Content-Length field with nothing but a number.
std::optional<std::uint64_t> content_length_of(std::string_view line) {
    constexpr std::string_view name = "content-length:";
    if (!equal_ignoring_case(line.substr(0, name.size()), name)) return std::nullopt;
    line.remove_prefix(name.size());
    line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t")));
    std::uint64_t number = 0;
    const char* const end = line.data() + line.size();
    const auto [stop, error] = std::from_chars(line.data(), end, number);
    const bool is_all =
        std::string_view(stop, static_cast<std::size_t>(end - stop)).find_first_not_of(" \t\r")
        == std::string_view::npos;
    if (error != std::errc() || !is_all || number >> 62 != 0) return std::nullopt;
    return number;
}

struct header_facts {
    std::size_t m_bytes = 0; // with the empty line
    std::optional<std::uint64_t> m_content_length;
};

/// Reads the header block at the front of the text; nothing if it does not end there.
std::optional<header_facts> read_header_block(std::string_view text, bool is_all) {
    header_facts facts;
    const bool is_cut = text.size() > longest_header_block;
    text = text.substr(0, longest_header_block);
    for (;;) {
        const std::size_t lf = text.find('\n', facts.m_bytes);
        if (lf == std::string_view::npos) break;
        const std::string_view line = text.substr(facts.m_bytes, lf - facts.m_bytes);
        facts.m_bytes = lf + 1;
        if (line.empty() || line == "\r") return facts;
        if (!facts.m_content_length) facts.m_content_length = content_length_of(line);
    }
    if (is_all || is_cut) return header_facts();
    return std::nullopt;
}

} // namespace

/// A window, and what lies where in it.
struct mbox_splitter::window_view {
    std::string_view m_bytes;
    std::uint64_t m_offset;
    bool m_is_last;

    std::uint64_t end() const { return m_offset + m_bytes.size(); }
    /// The bytes from that offset on, which must lie in the window or at its end.
    std::string_view from_on(std::uint64_t offset) const {
        return m_bytes.substr(static_cast<std::size_t>(offset - m_offset));
    }
    std::string_view up_to(std::uint64_t offset) const {
        return m_bytes.substr(0, static_cast<std::size_t>(offset - m_offset));
    }

    /// The bytes of the empty line directly before that offset; 0 if there is none.
    unsigned empty_line_before(std::uint64_t offset) const {
        const std::string_view before = up_to(offset);
        const unsigned last = line_end_bytes(before);
        if (last == 0) return 0;
        const std::string_view line = before.substr(0, before.size() - last);
        const bool is_first_line = line.empty() && m_offset == 0;
        return is_first_line || line_end_bytes(line) != 0 ? last : 0;
    }
};

mbox_splitter::mbox_splitter(mbox_options options, std::uint64_t first, peek_function peek)
    : m_options(options), m_peek(std::move(peek)), m_next(first == 0 ? 0 : first - 1),
      m_is_at_start(first == 0) {
    if (first == 0 || !m_peek) return;
    const std::string beginning = m_peek(0, longest_from_line);
    m_patch_lines_count = is_patch_line(first_line(beginning));
}

std::uint64_t mbox_splitter::needed_from() const {
    const std::uint64_t next = m_header ? std::min(*m_header, m_next) : m_next;
    return next < bytes_before ? 0 : next - bytes_before;
}

void mbox_splitter::look(std::string_view bytes, std::uint64_t offset, bool is_last,
                         std::vector<mbox_finding>& found) {
    const window_view window{bytes, offset, is_last};
    if (m_is_at_start) {
        if (bytes.size() < from.size() && !is_last) return;
        if (bytes.substr(0, from.size()) == from && !judge(window, 0, found)) return;
        m_is_at_start = false;
    }
    for (;;) {
        if (m_header && !believe_content_length(window, found)) return;
        if (m_next >= window.end()) break;
        const std::size_t begin = static_cast<std::size_t>(m_next - offset);
        const std::size_t lf = find_line(bytes, begin, "\nFrom ");
        if (lf == std::string_view::npos) {
            // The last bytes may be the beginning of what is looked for.
            m_next =
                std::max(m_next, window.end() - std::min<std::uint64_t>(from.size(), bytes.size()));
            break;
        }
        m_next = offset + lf;
        if (!judge(window, m_next + 1, found)) return;
    }
    if (!is_last) return;
    mbox_finding end;
    end.m_offset = end.m_next = window.end();
    end.m_bytes_between = window.empty_line_before(window.end());
    found.push_back(end);
}

/// Judges the "From " line at that offset, and moves on past it.
/// @return false if more of the file must be seen first
bool mbox_splitter::judge(const window_view& window, std::uint64_t line,
                          std::vector<mbox_finding>& found) {
    const std::string_view text = window.from_on(line);
    const unsigned between = window.empty_line_before(line);
    const line_before before = line == 0     ? line_before::none
                               : between > 0 ? line_before::empty
                                             : line_before::text;
    const std::size_t lf = text.find('\n');
    if (before == line_before::none) m_patch_lines_count = is_patch_line(first_line(text));
    const from_verdict verdict =
        judge_from_line(text, window.m_is_last, before, m_options.m_rules, m_patch_lines_count);
    if (verdict == from_verdict::undecided) return false;
    mbox_finding finding;
    finding.m_offset = line;
    finding.m_next = lf == std::string_view::npos ? window.end() : line + lf + 1;
    finding.m_bytes_between = between;
    finding.m_kind = verdict == from_verdict::text        ? mbox_finding::kind::doubtful_text
                     : verdict == from_verdict::separator ? mbox_finding::kind::separator
                                                          : mbox_finding::kind::doubtful_separator;
    found.push_back(finding);
    m_next = line + 1; // the LF that ends this line may begin the next match
    if (verdict != from_verdict::text && m_options.m_verify_content_length)
        m_header = finding.m_next;
    return true;
}

/// Reads the length of the message that has begun, and passes over the message if the length is
/// right.
/// @return false if more of the file must be seen first
bool mbox_splitter::believe_content_length(const window_view& window,
                                           std::vector<mbox_finding>& found) {
    const std::optional<header_facts> facts =
        read_header_block(window.from_on(*m_header), window.m_is_last);
    if (!facts) return false;
    const std::uint64_t message = *std::exchange(m_header, std::nullopt);
    if (!facts->m_content_length) return true;
    const std::uint64_t end = message + facts->m_bytes + *facts->m_content_length;
    const bool can_see = m_peek || window.m_is_last || end + 2 + from.size() <= window.end();
    if (!can_see) return true;
    if (const std::optional<std::uint64_t> next = message_end_at(window, end)) {
        m_next = *next - 1;
        m_has_believed_length = true;
        return true;
    }
    mbox_finding wrong;
    wrong.m_kind = mbox_finding::kind::wrong_content_length;
    wrong.m_offset = message;
    found.push_back(wrong);
    return true;
}

/// Where the next "From " line, or the end of the file, is, if a message ends at that offset.
std::optional<std::uint64_t> mbox_splitter::message_end_at(const window_view& window,
                                                           std::uint64_t end) const {
    constexpr std::size_t most = 1 + 2 + from.size(); // the byte before, a line end, the next line
    const std::uint64_t begin = end - 1;              // no header block has less than a byte
    const bool is_in_window =
        begin >= window.m_offset && (window.m_is_last || begin + most <= window.end());
    std::string far;
    std::string_view bytes;
    if (is_in_window) {
        if (begin >= window.end()) return std::nullopt;
        bytes = window.from_on(begin).substr(0, most);
    } else {
        far = m_peek(begin, most);
        bytes = far;
    }
    if (bytes.empty()) return std::nullopt; // past the end of the file
    const bool is_end_of_line = bytes.front() == '\n';
    bytes.remove_prefix(1);
    for (const std::string_view line_end : {"", "\n", "\r\n"}) {
        if (bytes.substr(0, line_end.size()) != line_end) continue;
        const std::string_view rest = bytes.substr(line_end.size());
        const bool is_line = !line_end.empty() || is_end_of_line;
        if (rest.empty() || (is_line && rest.substr(0, from.size()) == from))
            return end + line_end.size();
    }
    return std::nullopt;
}
