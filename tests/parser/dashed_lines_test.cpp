// Delimiter lines among many lines that begin with "--" and are none: at each place within the
// blocks of a scan, by both sets of rules.

#include <mail_structure.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using rules = MailStructure::rules;

std::vector<std::string> some_boundaries() {
    return {"b",
            "=_a7",
            "----=_Part_1",
            "------------060708",
            "----",
            std::string(60, '-') + "far",
            std::string(70, 'x')};
}

/// Lines that begin with "--", some of them as a delimiter does, with this many bytes in all.
std::string dashed_lines(std::size_t bytes, std::string_view boundary) {
    const std::string lines[] = {"-- \n",
                                 "--- a/file\n",
                                 "-----BEGIN KEY-----\n",
                                 "--\n",
                                 "text\n",
                                 std::string(40, '-') + "\n",
                                 "--" + std::string(boundary.substr(0, boundary.size() - 1))
                                     + "!\n",
                                 "--" + std::string(boundary) + "!\n"};
    std::string text;
    for (std::size_t next = 0; text.size() < bytes; ++next) text += lines[next % std::size(lines)];
    text.resize(bytes - 2);
    return text + "!\n"; // a line that is cut off here must not become a delimiter line
}

/// A multipart of two parts; the body of the first has this many bytes.
std::string two_parts(std::string_view boundary, std::size_t body_bytes) {
    const std::string delimiter = "--" + std::string(boundary);
    return "Content-Type: multipart/mixed; boundary=\"" + std::string(boundary) + "\"\n\n"
           + delimiter + "\n\n\n" + dashed_lines(body_bytes, boundary) + delimiter
           + "\nContent-Type: text/html\n\n" + dashed_lines(300, boundary) + delimiter
           + "--\nend\n";
}

void expect_two_parts(const std::string& boundary, std::size_t bytes, rules by) {
    const std::string input = two_parts(boundary, bytes);
    MailStructure message;
    message.Fill(std::string_view(input), by);
    ASSERT_EQ(message.m_root.m_children.size(), 2U) << boundary << ' ' << bytes;
    const auto& first = message.m_root.m_children.front();
    const auto& second = message.m_root.m_children.back();
    EXPECT_EQ(second.m_header_beg - first.m_body_beg, first.m_body_len + boundary.size() + 3);
    EXPECT_EQ(second.m_subtype, "html");
    EXPECT_EQ(message.m_root.m_epilogue_len, 4U);
}

TEST(dashed_lines, do_not_hide_a_delimiter_line_at_any_place) {
    for (const rules by : {rules::classic, rules::standard})
        for (const std::string& boundary : some_boundaries())
            for (std::size_t bytes = 100; bytes < 420; ++bytes)
                ASSERT_NO_FATAL_FAILURE(expect_two_parts(boundary, bytes, by));
}

/// Calls act with every two boundaries that differ.
template <class Act>
void for_each_two_boundaries(Act act) {
    for (const std::string& outer : some_boundaries())
        for (const std::string& inner : some_boundaries())
            if (inner != outer) act(outer, inner);
}

/// The beginning of a multipart, as far as the separator before its first part.
std::string begin_of_multipart(const std::string& boundary) {
    return "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\n\n--" + boundary + '\n';
}

/// Where multiparts are nested, a line of the body may belong to any of them by the standard rules,
/// and to the innermost alone by the classic rules.
void expect_lines_of_both(const std::string& outer, const std::string& inner) {
    std::string input = two_parts(inner, 500);
    input.resize(input.size() - std::string_view("--\nend\n").size()); // it is not closed
    input += "!\n" + dashed_lines(300, "z") + "--" + outer + "\n\nlast\n--" + outer + "--\n"
             + dashed_lines(300, "z");
    input = begin_of_multipart(outer) + input;
    MailStructure message;
    message.Fill(std::string_view(input), rules::standard);
    ASSERT_EQ(message.m_root.m_children.size(), 2U) << outer << ' ' << inner;
    EXPECT_EQ(message.m_root.m_children.front().m_children.size(), 2U);
    EXPECT_EQ(message.m_root.m_epilogue_len, 300U);
    message.Fill(std::string_view(input), rules::classic);
    ASSERT_EQ(message.m_root.m_children.size(), 1U) << outer << ' ' << inner;
    EXPECT_EQ(message.m_root.m_children.front().m_children.size(), 2U);
}

TEST(dashed_lines, do_not_hide_the_delimiter_lines_of_enclosing_multiparts) {
    for_each_two_boundaries(expect_lines_of_both);
}

/// When the inner multipart is closed, its delimiter is out of force and that of the outer one
/// counts, by both sets of rules.
void expect_lines_of_outer(const std::string& outer, const std::string& inner) {
    const std::string input = begin_of_multipart(outer) + two_parts(inner, 300)
                              + dashed_lines(300, "z") + "--" + outer + "\n\nlast\n";
    MailStructure message;
    for (const rules by : {rules::classic, rules::standard}) {
        message.Fill(std::string_view(input), by);
        EXPECT_EQ(message.m_root.m_children.size(), 2U) << outer << ' ' << inner;
    }
}

TEST(dashed_lines, do_not_hide_delimiter_lines_behind_a_closed_multipart) {
    for_each_two_boundaries(expect_lines_of_outer);
}

/// When the innermost of three multiparts is closed, lines of both others count by the standard
/// rules.
void expect_lines_of_both_left(const std::string& outer, const std::string& middle) {
    const std::string text = dashed_lines(300, "z");
    const std::string input = begin_of_multipart(outer) + begin_of_multipart(middle)
                              + two_parts("innermost", 300) + text + "--" + middle + "\n\n" + text
                              + "--" + outer + "\n\nlast\n";
    MailStructure message;
    message.Fill(std::string_view(input), rules::standard);
    ASSERT_EQ(message.m_root.m_children.size(), 2U) << outer << ' ' << middle;
    EXPECT_EQ(message.m_root.m_children.front().m_children.size(), 2U) << outer << ' ' << middle;
}

TEST(dashed_lines, do_not_hide_lines_of_any_multipart_that_is_left) {
    for_each_two_boundaries(expect_lines_of_both_left);
}

} // namespace
