#include "support/standard_message_generator.h"

#include "support/content_type_writer.h"
#include "support/parse_choices.h"
#include "support/standard_message_words.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace test_support {
namespace {

namespace words = standard_words;

enum class endings : std::uint8_t { lf, crlf, crcrlf, mixed };

/// Writes one message from the outside in. Whatever it does by the grammar it also does wrong at
/// times.
class message_writer {
public:
    explicit message_writer(seeded_random& random)
        : m_random(random), m_content_type(random), m_endings(random.one_of(all_endings)),
          m_deep(random.one_in(5)), m_lines_left((m_deep ? 100 : 8) + random.below(60)) {}

    std::string written() {
        if (m_random.one_in(8))
            soup();
        else
            entity(0);
        if (m_random.one_in(5)) soup();
        break_bytes();
        break_end();
        return std::move(m_text);
    }

private:
    static constexpr endings all_endings[] = {endings::lf,   endings::lf,     endings::crlf,
                                              endings::crlf, endings::crcrlf, endings::mixed};
    static constexpr int deepest = 12;

    std::string_view line_end() {
        static constexpr std::string_view mixture[] = {"\n", "\n", "\r\n", "\r\r\n"};
        switch (m_endings) {
        case endings::lf: return "\n";
        case endings::crlf: return "\r\n";
        case endings::crcrlf: return "\r\r\n";
        case endings::mixed: break;
        }
        return m_random.one_of(mixture);
    }

    void line(std::string_view text) {
        if (m_lines_left == 0) return;
        --m_lines_left;
        m_text += text;
        m_text += line_end();
    }

    // ----------------------------------------------------------------------------- boundaries

    /// A word, or a boundary that is there already, the beginning of one, or one with something
    /// after it.
    std::string new_boundary() {
        std::string made(m_random.one_of(words::boundaries));
        if (!m_boundaries.empty() && m_random.one_in(2)) {
            static constexpr std::string_view tails[] = {"", "", "--", "Y", "-"};
            made = m_random.one_of(m_boundaries);
            if (m_random.one_in(6))
                made.resize(m_random.below(made.size() + 1));
            else
                made += m_random.one_of(tails);
        }
        if (m_random.one_in(60)) made += std::string(60 + m_random.below(40), 'L');
        m_boundaries.push_back(made);
        return made;
    }

    void delimiter_line(const std::string& boundary, std::string_view tail) {
        std::string text = "--" + boundary;
        text += tail;
        text += m_random.one_of(words::paddings);
        line(text);
    }

    /// A line that is a separator or a closing line of any boundary so far, or nearly so.
    void any_delimiter_line() {
        const bool known = !m_boundaries.empty() && !m_random.one_in(8);
        const std::string boundary =
            known ? m_random.one_of(m_boundaries) : std::string(m_random.one_of(words::boundaries));
        switch (m_random.below(8)) {
        case 0: delimiter_line(boundary, m_random.one_of(words::delimiter_tails)); break;
        case 1: line((m_random.one_in(2) ? " --" : "-") + boundary); break;
        case 2:
        case 3:
        case 4: delimiter_line(boundary, "--"); break;
        default: delimiter_line(boundary, ""); break;
        }
    }

    // ---------------------------------------------------------------------------------- fields

    void content_type(std::string_view type, const std::optional<std::string>& boundary) {
        for (const std::string& text : m_content_type.field(type, boundary)) line(text);
    }

    void multipart_type(std::string_view subtype, const std::optional<std::string>& boundary) {
        content_type(std::string(m_random.one_in(6) ? "MULTIPART/" : "multipart/")
                         + std::string(subtype),
                     boundary);
    }

    void any_multipart_type() {
        const std::string boundary = new_boundary();
        multipart_type(m_random.one_of(words::multipart_subtypes), boundary);
    }

    void any_content_type() {
        switch (m_random.below(4)) {
        case 0: any_multipart_type(); break;
        case 1: content_type(m_random.one_of(words::message_types), std::nullopt); break;
        default: content_type(m_random.one_of(words::other_types), std::nullopt); break;
        }
    }

    void transfer_encoding() {
        std::string text(m_random.one_of(words::encoding_names));
        text += m_random.one_in(2) ? ": " : ":";
        text += m_random.one_of(words::encodings);
        line(text);
    }

    void plain_field() {
        std::string text(m_random.one_of(words::other_names));
        text += m_random.one_in(8) ? " \t:" : ":";
        text += m_random.one_of(words::field_values);
        line(text);
    }

    void fold() {
        std::string text(m_random.one_in(3) ? "\t" : " ");
        text += m_random.one_of(words::fold_texts);
        line(text);
    }

    void odd_line() {
        line(m_random.one_of(words::odd_lines));
        while (m_random.one_in(3)) fold();
    }

    void some_fields() {
        if (m_deep && !m_random.one_in(3)) return;
        if (m_random.one_in(30)) fold(); // to nothing, where the block begins
        for (std::size_t i = m_random.below(3); i > 0; --i) {
            plain_field();
            while (m_random.one_in(4)) fold();
        }
        if (m_random.one_in(6)) odd_line();
        if (m_random.one_in(6)) transfer_encoding();
        if (m_random.one_in(25)) any_content_type();
        if (m_random.one_in(25)) fold();
        if (m_random.one_in(25)) any_delimiter_line();
    }

    void end_of_block() {
        if (!m_random.one_in(20)) line("");
    }

    // ---------------------------------------------------------------------------------- bodies

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
            if (m_random.one_in(15)) {
                static constexpr std::string_view odd[] = {"--", "--", "\r", {"\0", 1}, "--X", " "};
                const std::size_t place = m_random.one_in(2) ? 0 : m_random.below(text.size() + 1);
                text.insert(place, m_random.one_of(odd));
            }
            if (m_random.one_in(15))
                any_delimiter_line();
            else
                line(text);
        }
    }

    std::string long_line() {
        const std::size_t length = 1 + m_random.below(3000);
        return std::string(length, "x-\r\t "[m_random.below(5)]);
    }

    void body_line() {
        if (m_random.one_in(200))
            line(long_line());
        else if (m_random.one_in(10))
            any_delimiter_line();
        else
            line(m_random.one_of(words::body_texts));
    }

    // -------------------------------------------------------------------------------- entities

    void entity(int depth) {
        const std::size_t kind = depth < deepest ? m_random.below(m_deep ? 3 : 4) : 4;
        if (kind < 2)
            multipart(depth);
        else if (kind == 2)
            message(depth);
        else
            leaf();
    }

    void leaf() {
        some_fields();
        if (m_random.one_in(2)) content_type(m_random.one_of(words::other_types), std::nullopt);
        end_of_block();
        body();
    }

    void message(int depth) {
        some_fields();
        content_type(m_random.one_of(words::message_types), std::nullopt);
        if (!m_deep && m_random.one_in(2)) some_fields();
        end_of_block();
        entity(depth + 1);
        if (m_random.one_in(3)) body();
    }

    void multipart(int depth) {
        const bool digest = m_random.one_in(4);
        some_fields();
        const std::string own = new_boundary();
        const std::string_view subtype = m_random.one_of(words::multipart_subtypes);
        const bool without_boundary = m_random.one_in(12);
        multipart_type(digest ? "digest" : subtype,
                       without_boundary ? std::nullopt : std::optional(own));
        if (!m_deep && m_random.one_in(2)) some_fields();
        end_of_block();
        if (m_random.one_in(3)) body();
        for (std::size_t parts = m_deep ? 1 : m_random.below(4); parts > 0; --parts) {
            if (!m_random.one_in(15)) delimiter_line(own, "");
            if (m_random.one_in(15)) any_delimiter_line();
            part(depth + 1, digest);
        }
        for (std::size_t closings = m_random.one_in(6) ? m_random.below(4) : 1; closings > 0;
             --closings)
            delimiter_line(own, "--");
        if (m_random.one_in(2)) body();
    }

    /// In a digest most often a message without a Content-Type field.
    void part(int depth, bool in_digest) {
        if (in_digest && !m_random.one_in(4)) {
            if (m_random.one_in(3)) some_fields();
            end_of_block();
        }
        if (!m_random.one_in(15)) entity(depth);
    }

    /// Lines of all kinds in any order.
    void soup() {
        for (std::size_t lines = 1 + m_random.below(25); lines > 0; --lines) {
            switch (m_random.below(12)) {
            case 0:
            case 1: any_content_type(); break;
            case 2: plain_field(); break;
            case 3: fold(); break;
            case 4: transfer_encoding(); break;
            case 5: odd_line(); break;
            case 6:
            case 7:
            case 8: any_delimiter_line(); break;
            case 9:
            case 10: line(""); break;
            default: body_line(); break;
            }
        }
    }

    // ---------------------------------------------------------------------------------- damage

    void break_bytes() {
        if (m_text.empty() || !m_random.one_in(10)) return;
        static constexpr std::string_view strays[] = {{"\0", 1}, "\r", "\r\r", "\n", "\"",
                                                      "\\",      "(",  ";",    " "};
        const std::size_t place = m_random.below(m_text.size());
        m_text.insert(place, m_random.one_of(strays));
    }

    /// A message need not end with a line end.
    void break_end() {
        if (m_random.one_in(4) && !m_text.empty()) m_text.pop_back();
        if (m_random.one_in(12) && !m_text.empty()) m_text.resize(m_random.below(m_text.size()));
        if (m_random.one_in(40)) m_text += '\r';
        if (m_random.one_in(40)) m_text += '\0';
    }

    seeded_random& m_random;
    content_type_writer m_content_type;
    endings m_endings;
    bool m_deep; // little beside nesting
    std::size_t m_lines_left;
    std::string m_text;
    std::vector<std::string> m_boundaries;
};

} // namespace

generated_message generate_standard_message(std::uint64_t seed) {
    seeded_random random(seed);
    generated_message made;
    made.m_input = message_writer(random).written();
    made.m_keep_text = random.one_in(3);
    made.m_memlimit = some_memlimit(made.m_input, random);
    made.m_first_offset = some_first_offset(made.m_input, random);
    return made;
}

} // namespace test_support
