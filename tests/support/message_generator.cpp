#include "support/message_generator.h"

#include "support/line_list.h"
#include "support/message_words.h"
#include "support/parse_choices.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

namespace test_support {
namespace {

enum class endings : std::uint8_t { lf, crlf, mixed };

/// Writes one message from the outside in. Whatever it does by the grammar it also does wrong at
/// times.
class message_writer {
public:
    explicit message_writer(seeded_random& random)
        : m_random(random), m_endings(random.one_of(all_endings)), m_deep(random.one_in(8)),
          m_lines_left((m_deep ? 60 : 8) + random.below(60)) {}

    std::string written() {
        if (m_random.one_in(4))
            soup();
        else
            entity(0);
        if (m_random.one_in(5)) soup();
        break_bytes();
        break_end();
        return std::move(m_text);
    }

private:
    static constexpr endings all_endings[] = {endings::lf, endings::lf, endings::crlf,
                                              endings::crlf, endings::mixed};
    static constexpr int deepest = 12;

    void line(std::string_view text) {
        if (m_lines_left == 0) return;
        --m_lines_left;
        m_text += text;
        const bool cr =
            m_endings == endings::crlf || (m_endings == endings::mixed && m_random.one_in(2));
        m_text += cr ? "\r\n" : "\n";
    }

    bool crlf() const { return m_endings != endings::lf; }

    /// Drawn from left to right, as a chain of + would not promise: a seed gives the same message
    /// with every compiler.
    static std::string joined(std::initializer_list<std::string> pieces) {
        std::string all;
        for (const std::string& piece : pieces) all += piece;
        return all;
    }

    std::string blank() { return m_random.one_of(words::blanks); }

    /// Makes a boundary up and remembers it, so that separators can name it.
    std::string new_boundary() {
        m_boundaries.emplace_back(m_random.one_of(words::boundaries));
        return m_boundaries.back();
    }

    std::string quoted_or_not(const std::string& value) {
        if (m_random.one_in(3)) return '"' + value + '"';
        if (m_random.one_in(20)) return '"' + value + "\" ";
        return value;
    }

    std::string boundary_parameter() {
        return joined({blank(), m_random.one_of(words::boundary_names), blank(), "=", blank(),
                       quoted_or_not(new_boundary())});
    }

    std::string other_parameter() {
        return joined({blank(), m_random.one_of(words::parameter_names), blank(),
                       m_random.one_in(8) ? "" : "=", blank(),
                       m_random.one_of(words::parameter_values)});
    }

    /// Some parameters, each after its semicolon; any of them may stand on a folded line, where the
    /// parser wants the semicolon before the fold.
    /// @param boundary_odds  how many to one that there is a boundary among them; now and then
    /// there are several
    void add_parameters(std::string& text, std::size_t boundary_odds) {
        std::vector<std::string> parameters;
        if (m_random.one_in(3)) parameters.push_back(other_parameter());
        if (m_random.below(boundary_odds + 1) != 0) {
            do {
                const auto place =
                    static_cast<std::ptrdiff_t>(m_random.below(parameters.size() + 1));
                parameters.insert(parameters.begin() + place, boundary_parameter());
            } while (m_random.one_in(8));
        }
        if (m_random.one_in(6)) parameters.push_back(other_parameter());
        for (const std::string& parameter : parameters) {
            text += m_random.one_in(15) ? ";;" : ";";
            if (m_random.one_in(5)) {
                line(text);
                text = m_random.one_of(words::fold_starts);
            }
            text += parameter;
        }
        if (m_random.one_in(8)) text += ';';
    }

    void content_type(const char* type, std::size_t boundary_odds) {
        std::string text = m_random.one_of(words::content_type_names);
        text += joined({":", blank(), type, blank()});
        add_parameters(text, boundary_odds);
        line(text);
    }

    void any_content_type() {
        switch (m_random.below(4)) {
        case 0: content_type(m_random.one_of(words::multipart_types), 6); break;
        case 1: content_type(m_random.one_of(words::message_types), 1); break;
        default: content_type(m_random.one_of(words::other_types), 1); break;
        }
    }

    void plain_field() {
        line(joined(
            {m_random.one_of(words::other_names), ":", m_random.one_of(words::plain_values)}));
    }

    void fold() {
        line(joined({m_random.one_of(words::fold_starts), m_random.one_of(words::fold_texts)}));
    }

    /// A name without a colon. Ended by CR LF it ends the parse, so it is rare where lines end so.
    void colonless_name() {
        if (!crlf() || m_random.one_in(10)) line(m_random.one_of(words::colonless_names));
    }

    void some_fields() {
        for (std::size_t i = m_random.below(4); i > 0; --i) {
            plain_field();
            while (m_random.one_in(4)) fold();
        }
        if (m_random.one_in(15)) line(m_random.one_of(words::not_quite_fields));
        if (m_random.one_in(30)) colonless_name();
        if (m_random.one_in(12)) any_content_type();
        if (m_random.one_in(12)) fold();
    }

    void end_of_block() {
        if (!m_random.one_in(12)) line("");
    }

    void body() {
        if (m_random.one_in(30)) long_body();
        for (std::size_t i = m_random.below(4); i > 0; --i) body_line();
    }

    /// Enough text for the parser to skip over it in blocks, its lines about as long as those
    /// blocks or very short, with what must not be skipped here and there.
    void long_body() {
        const std::size_t lines = 5 + m_random.below(40);
        m_lines_left += lines;
        for (std::size_t i = 0; i < lines; ++i) {
            static constexpr std::size_t lengths[] = {0,  0,  1,  2,  5,   29,  60,  61, 62,
                                                      63, 64, 65, 76, 125, 126, 127, 130};
            const std::size_t length = m_random.one_of(lengths);
            std::string text(length, static_cast<char>('!' + m_random.below(90)));
            if (m_random.one_in(20))
                text.insert(m_random.one_in(2) ? 0 : m_random.below(text.size()), "--");
            if (m_random.one_in(100)) text += '\0'; // legal, unless a CR follows
            if (m_random.one_in(15))
                boundary_line();
            else
                line(text);
        }
    }

    std::string long_line() {
        const std::size_t length = 1 + m_random.below(3000);
        return std::string(length, "x-:; "[m_random.below(5)]);
    }

    void body_line() {
        if (m_random.one_in(200))
            line(long_line());
        else if (m_random.one_in(12))
            boundary_line();
        else
            line(m_random.one_of(words::body_texts));
    }

    /// A line that looks like a separator or a closing line of any boundary so far, or nearly so.
    void boundary_line() {
        static constexpr const char* tails[] = {"",    "",  "",    "--", "--",   "-",
                                                "---", " ", "-- ", "x",  "----", "\x01"};
        const bool known = !m_boundaries.empty() && !m_random.one_in(8);
        std::string text = "--";
        text += known ? m_random.one_of(m_boundaries) : m_random.one_of(words::boundaries);
        if (m_random.one_in(30)) text.pop_back();
        line(text + m_random.one_of(tails));
    }

    void entity(int depth) {
        const std::size_t kind = depth < deepest ? m_random.below(m_deep ? 3 : 5) : 4;
        if (kind < 2)
            multipart(depth);
        else if (kind == 2)
            message_in_message(depth);
        else
            leaf();
    }

    void leaf() {
        some_fields();
        if (m_random.one_in(2)) content_type(m_random.one_of(words::other_types), 1);
        end_of_block();
        body();
    }

    void message_in_message(int depth) {
        some_fields();
        content_type(m_random.one_of(words::message_types), 0);
        if (!m_deep) some_fields();
        end_of_block();
        entity(depth + 1);
        if (m_random.one_in(3)) body();
    }

    void multipart(int depth) {
        some_fields();
        content_type(m_random.one_of(words::multipart_types), 6);
        if (!m_deep) some_fields();
        const std::string own = m_boundaries.empty() ? "X" : m_boundaries.back();
        end_of_block();
        if (m_random.one_in(3)) body();
        for (std::size_t parts = m_deep ? 1 : m_random.below(4); parts > 0; --parts) {
            if (!m_random.one_in(15)) line("--" + own);
            if (m_random.one_in(15)) boundary_line();
            entity(depth + 1);
        }
        for (std::size_t closings = m_random.one_in(6) ? m_random.below(4) : 1; closings > 0;
             --closings)
            line("--" + own + "--");
        if (m_random.one_in(2)) body();
    }

    /// Lines of all kinds in any order.
    void soup() {
        for (std::size_t lines = 1 + m_random.below(25); lines > 0; --lines) {
            switch (m_random.below(12)) {
            case 0: content_type(m_random.one_of(words::multipart_types), 6); break;
            case 1: content_type(m_random.one_of(words::message_types), 1); break;
            case 2: plain_field(); break;
            case 3: fold(); break;
            case 4: any_content_type(); break;
            case 5: line(m_random.one_of(words::not_quite_fields)); break;
            case 6: colonless_name(); break;
            case 7:
            case 8:
            case 9: boundary_line(); break;
            case 10: line(""); break;
            default: body_line(); break;
            }
        }
    }

    /// Puts bytes where they may and may not stand: a CR or a NUL is legal only just before an LF
    /// or the end.
    void break_bytes() {
        if (m_text.empty() || !m_random.one_in(12)) return;
        static constexpr std::string_view strays[] = {
            {"\0", 1}, {"\r", 1}, {"\r\r", 2}, {"\0\r", 2}};
        std::size_t place = m_random.below(m_text.size());
        if (m_random.one_in(2)) place = std::min(m_text.find('\n', place), m_text.size() - 1);
        m_text.insert(place, m_random.one_of(strays));
    }

    /// A message need not end with a line terminator.
    void break_end() {
        if (m_random.one_in(4) && !m_text.empty()) m_text.pop_back();
        if (m_random.one_in(12) && !m_text.empty()) m_text.pop_back();
        if (m_random.one_in(40)) m_text += '\0';
    }

    seeded_random& m_random;
    endings m_endings;
    bool m_deep; // little beside nesting
    std::size_t m_lines_left;
    std::string m_text;
    std::vector<std::string> m_boundaries;
};

} // namespace

generated_message generate_message(std::uint64_t seed) {
    seeded_random random(seed);
    generated_message made;
    made.m_input = message_writer(random).written();
    made.m_keep_text = random.one_in(3);
    made.m_memlimit = some_memlimit(made.m_input, random);
    made.m_first_offset = some_first_offset(made.m_input, random);
    return made;
}

std::string damaged(const std::string& text, seeded_random& random) {
    std::vector<std::string_view> lines = lines_of(text);
    for (std::size_t i = 1 + random.below(6); i > 0 && !lines.empty(); --i) {
        const std::size_t at = random.below(lines.size());
        const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
        const std::string_view line = lines[at];
        switch (random.below(4)) {
        case 0: lines.erase(place); break;
        case 1: lines.insert(place, line); break;
        case 2: std::swap(lines[at], lines[random.below(lines.size())]); break;
        default: lines[at] = line.substr(random.below(line.size())); break;
        }
    }
    std::string result = joined(lines);
    if (!result.empty() && random.one_in(3)) {
        static constexpr char odd_bytes[] = {'-', ':', ' ', '\n', ';', '"', 'c', '\r', '\0'};
        result[random.below(result.size())] = random.one_of(odd_bytes);
    }
    return result;
}

} // namespace test_support
