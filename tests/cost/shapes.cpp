#include "cost/shapes.h"

#include "support/repeated.h"

#include <initializer_list>
#include <span>

namespace cost {

namespace {

using test_support::repeated;

const words classic_words{
    MailStructure::rules::classic, "c:multipart/;b=x\n", "C:\n\n\n", "C:\n\n", "c:", ";b=x"};
const words standard_words{MailStructure::rules::standard,
                           "Content-Type:multipart/a;boundary=x\n\n",
                           "Content-Type:message/news\n\n",
                           "Content-Type:message/news\n\n",
                           "Content-Type:",
                           ";boundary=x"};

const std::string separator = "--x\n";
const std::string closing = "--x--\n";

/// The beginning of that many messages, each within the one before it. Lines that follow belong to
/// the header block of the innermost.
std::string message_blocks(const words& by, std::size_t depth) {
    return by.m_first_block + repeated(depth, by.m_message);
}

/// The same; lines that follow belong to the body of the innermost.
std::string messages(const words& by, std::size_t depth) {
    return message_blocks(by, depth) + "a:\n\n\n";
}

/// The beginning of so many multiparts, each the first part of the one before it. Lines that follow
/// belong to the first part of the innermost.
std::string multiparts(const words& by, std::size_t depth) {
    return repeated(depth, by.m_multipart + separator) + "a:\n\n";
}

std::string nested_messages(const words& by, std::size_t n) { return messages(by, n) + "x\n"; }

std::string nested_multiparts(const words& by, std::size_t n) { return multiparts(by, n) + "x\n"; }

std::string nested_by_turns(const words& by, std::size_t n) {
    return repeated(n / 2, by.m_multipart + separator + by.m_first_block) + "a:\n\n\nx\n";
}

std::string parts(const words& by, std::size_t n) {
    return by.m_multipart + "\n" + repeated(n, separator + "A: b\n\nc\n") + closing;
}

std::string bare_parts(const words& by, std::size_t n) {
    return by.m_multipart + "\n" + repeated(n, separator);
}

std::string parts_at_depth(const words& by, std::size_t n) {
    return multiparts(by, n) + repeated(n, separator + "A: b\n\nc\n");
}

std::string separators_at_depth(const words& by, std::size_t n) {
    return multiparts(by, n) + repeated(n, separator);
}

std::string fields(const words&, std::size_t n) { return repeated(n, "Subject: hello\n"); }

/// Three bytes a field.
std::string shortest_fields(const words&, std::size_t n) { return repeated(n, "a:\n"); }

std::string folds_of_one_field(const words&, std::size_t n) {
    return "Subject: hello\n" + repeated(n, "\tand more\n");
}

std::string parameters_of_one_field(const words& by, std::size_t n) {
    return by.m_field + "text/plain" + repeated(n, ";a=b") + "\n\n";
}

std::string parameters_over_folds(const words& by, std::size_t n) {
    return by.m_field + "text/plain;\n" + repeated(n, " a=b;\n");
}

/// By the classic rules there are n open multiparts. As many lines are compared with the delimiter
/// of the innermost.
std::string boundary_parameters(const words& by, std::size_t n) {
    return by.m_field + "multipart/mixed" + repeated(n, by.m_boundary) + "\n\n"
           + repeated(n, "--y\n");
}

std::string closings_of_boundary_parameters(const words& by, std::size_t n) {
    return by.m_field + "multipart/mixed" + repeated(n, by.m_boundary) + "\n\n"
           + repeated(n, closing);
}

/// The lines differ from the delimiter in the last byte alone.
std::string almost_matching_lines(const words& by, std::size_t n) {
    const std::string almost(1000, '-');
    const std::string boundary = by.m_boundary.substr(0, by.m_boundary.find('=') + 1) + almost;
    return by.m_field + "multipart/mixed" + boundary + "x\n\n" + repeated(n, "--" + almost + "y\n");
}

std::string body_lines_at_depth(const words& by, std::size_t n) {
    return messages(by, n) + repeated(n, "text\n");
}

/// Lines that may be delimiter lines are examined one by one.
std::string dashed_lines_at_depth(const words& by, std::size_t n) {
    return multiparts(by, n) + repeated(n, "--text\n");
}

std::string epilogue_lines_at_depth(const words& by, std::size_t n) {
    return multiparts(by, n) + closing + repeated(n, "text\n");
}

std::string header_lines_at_depth(const words& by, std::size_t n) {
    return message_blocks(by, n / 2) + repeated(n, "A: b\n");
}

/// By the classic rules, each closing line closes a message and the message around it.
std::string messages_closed_in_pairs(const words& by, std::size_t n) {
    return by.m_multipart + separator + repeated(n, by.m_first_block) + "a:\n\n"
           + repeated(n / 2, separator + closing);
}

std::string one_line(const words&, std::size_t n) {
    return "a: b\n\n" + std::string(n, 'x') + "\n";
}

std::string one_header_line(const words&, std::size_t n) {
    return "a: " + std::string(n, 'x') + "\n";
}

std::string empty_lines(const words&, std::size_t n) { return "a: b\n" + std::string(n, '\n'); }

/// By the classic rules the parse ends with an exception, and all ranges that are still owed to
/// ancestors are settled on the way out.
std::string stray_byte_at_depth(const words& by, std::size_t n) {
    return messages(by, n) + repeated(n, "text\n") + "a\rb\n";
}

std::string kept_text(const words&, std::size_t n) {
    return "a: b\n\n" + repeated(n, "some text\n");
}

const shape all_of_both[] = {
    {"nested_messages", nested_messages, 5'000},
    {"nested_multiparts", nested_multiparts, 5'000},
    {"nested_by_turns", nested_by_turns, 5'000},
    {"parts", parts, 5'000},
    {"bare_parts", bare_parts, 5'000},
    {"parts_at_depth", parts_at_depth, 2'500},
    {"separators_at_depth", separators_at_depth, 5'000},
    {"fields", fields, 10'000},
    {"shortest_fields", shortest_fields, 10'000},
    {"folds_of_one_field", folds_of_one_field, 25'000},
    {"parameters_of_one_field", parameters_of_one_field, 15'000},
    {"parameters_over_folds", parameters_over_folds, 15'000},
    {"boundary_parameters", boundary_parameters, 15'000},
    {"closings_of_boundary_parameters", closings_of_boundary_parameters, 15'000},
    {"almost_matching_lines", almost_matching_lines, 2'500},
    {"body_lines_at_depth", body_lines_at_depth, 5'000},
    {"dashed_lines_at_depth", dashed_lines_at_depth, 5'000},
    {"epilogue_lines_at_depth", epilogue_lines_at_depth, 5'000},
    {"header_lines_at_depth", header_lines_at_depth, 5'000},
    {"one_line", one_line, 2 << 20},
    {"one_header_line", one_header_line, 1 << 20},
    {"empty_lines", empty_lines, 1 << 18},
    {"kept_text", kept_text, 50'000, true},
};

const shape all_of_classic[] = {
    {"messages_closed_in_pairs", messages_closed_in_pairs, 5'000},
    {"stray_byte_at_depth", stray_byte_at_depth, 5'000},
};

/// A multipart that takes its boundary from the given parameters.
std::string with_parameters(const std::string& parameters) {
    return "Content-Type:multipart/a" + parameters + "\n\n--x\n";
}

std::string multipart_with(const std::string& boundary) {
    return "Content-Type:multipart/a;boundary=" + boundary + "\n\n--" + boundary + '\n';
}

/// Multiparts within each other, whose boundaries differ in their lengths too.
std::string distinct_multiparts(std::size_t depth) {
    std::string all;
    for (std::size_t level = 0; level < depth; ++level)
        all += multipart_with(std::to_string(level) + std::string(level % 64, 'y'));
    return all;
}

std::string distinct_boundaries(const words&, std::size_t n) { return distinct_multiparts(n); }

/// One line ends all multiparts but the outermost, again and again.
std::string levels_closed_at_once(const words&, std::size_t n) {
    return multipart_with("x") + repeated(4, distinct_multiparts(n / 4) + "--x\n");
}

/// About n bytes of boundaries, each the beginning of the next.
std::string boundaries_that_begin_others(const words&, std::size_t n) {
    std::string all;
    for (std::size_t bytes = 1; all.size() < n; ++bytes)
        all += multipart_with(std::string(bytes, 'x'));
    return all;
}

std::string huge_boundaries(const words&, std::size_t n) {
    std::string all;
    for (char first = 'a'; first < 'i'; ++first)
        all += multipart_with(first + std::string(n / 8, 'x'));
    return all;
}

/// Lines that match no delimiter, of as many lengths as there are boundaries.
std::string other_dashed_lines_at_depth(const words&, std::size_t n) {
    std::string all = distinct_multiparts(n);
    for (std::size_t line = 0; line < n; ++line)
        all += "--" + std::to_string(line) + std::string(line % 64, 'z') + '\n';
    return all;
}

std::string separators_with_blanks(const words& by, std::size_t n) {
    return by.m_multipart + repeated(n / 100, "--x" + std::string(100, ' ') + "\n");
}

std::string blanks_behind_a_separator(const words& by, std::size_t n) {
    return by.m_multipart + "--x" + std::string(n, '\t') + '\n';
}

std::string blanks_behind_dashes(const words& by, std::size_t n) {
    return by.m_multipart + "--" + repeated(n / 2, " \r") + '\n';
}

std::string crs_at_the_end_of_a_line(const words&, std::size_t n) {
    return "a: b\n\n" + std::string(n, '\r') + '\n';
}

std::string crs_at_the_end_of_many_lines(const words& by, std::size_t n) {
    return by.m_multipart + repeated(n / 100, std::string(99, '\r') + '\n');
}

std::string crs_in_a_header_line(const words&, std::size_t n) {
    return "a: b" + std::string(n, '\r') + '\n';
}

std::string crs_in_kept_text(const words&, std::size_t n) {
    return "a: b\n\n" + repeated(n / 100, "x" + std::string(98, '\r') + '\n');
}

std::string nested_comments(const words&, std::size_t n) {
    return "Content-Type:" + std::string(n, '(') + std::string(n, ')')
           + "multipart/a;boundary=x\n\n";
}

std::string unfinished_comments(const words&, std::size_t n) {
    return with_parameters(";boundary=x;a=" + repeated(n, " ("));
}

std::string comments_before_a_semicolon(const words&, std::size_t n) {
    return with_parameters(repeated(n, "(;)") + ";boundary=x");
}

std::string comments_of_a_value(const words&, std::size_t n) {
    return with_parameters(";boundary=x" + repeated(n, " (a)"));
}

std::string unfinished_quote(const words&, std::size_t n) {
    return with_parameters(";boundary=\"" + repeated(n, "\\\\"));
}

std::string quotes_before_a_semicolon(const words&, std::size_t n) {
    return with_parameters(repeated(n, "\";\"") + ";boundary=x");
}

std::string junk_parameters(const words&, std::size_t n) {
    return with_parameters(repeated(n, ";a b(") + ";boundary=x");
}

std::string section(std::size_t number, const char* value) {
    return ";boundary*" + std::to_string(number) + '=' + value;
}

std::string ascending_sections(const words&, std::size_t n) {
    std::string all;
    for (std::size_t number = 0; number < n; ++number) all += section(number, "x");
    return with_parameters(all);
}

std::string descending_sections(const words&, std::size_t n) {
    std::string all;
    for (std::size_t number = n; number > 0; --number) all += section(number, "x");
    return with_parameters(all);
}

std::string equal_sections(const words&, std::size_t n) {
    return with_parameters(repeated(n, ";boundary*1*=%78"));
}

/// The numbers differ in the last of many digits.
std::string sections_of_many_digits(const words&, std::size_t n) {
    std::string all;
    for (std::size_t number = 0; number < n / 100; ++number)
        all += ";boundary*" + std::string(100, '9') + std::to_string(number % 10) + "=x";
    return with_parameters(all);
}

std::string section_of_huge_number(const words&, std::size_t n) {
    return with_parameters(";boundary*" + std::string(n, '7') + "=x");
}

std::string section_of_many_zeros(const words&, std::size_t n) {
    return with_parameters(";boundary*" + std::string(n, '0') + "=x");
}

std::string encoded_boundary(const words&, std::size_t n) {
    return with_parameters(";boundary*=''" + repeated(n, "%79"));
}

std::string folded_boundary(const words&, std::size_t n) {
    return "Content-Type:multipart/a;boundary=\"\n" + repeated(n, " y\n") + "\n";
}

std::string folded_encoding(const words&, std::size_t n) {
    return "Content-Transfer-Encoding:\n" + repeated(n, " (a)\n") + " base64\n\n";
}

std::string lines_passed_over(const words&, std::size_t n) {
    return repeated(n / 2, "no field\n and folds\n");
}

std::string content_type_fields(const words&, std::size_t n) {
    return repeated(n, "Content-Type:a/b;c=d\n");
}

std::string nested_digests(const words&, std::size_t n) {
    return repeated(n / 2, "Content-Type:multipart/digest;boundary=\n\n--\n\n");
}

std::string bare_parts_of_a_digest(const words&, std::size_t n) {
    return "Content-Type:multipart/digest;boundary=\n\n" + repeated(n, "--\n");
}

const shape all_of_standard[] = {
    {"distinct_boundaries", distinct_boundaries, 4'000},
    {"levels_closed_at_once", levels_closed_at_once, 4'000},
    {"boundaries_that_begin_others", boundaries_that_begin_others, 1 << 18},
    {"huge_boundaries", huge_boundaries, 1 << 18},
    {"other_dashed_lines_at_depth", other_dashed_lines_at_depth, 4'000},
    {"separators_with_blanks", separators_with_blanks, 100'000},
    {"blanks_behind_a_separator", blanks_behind_a_separator, 1 << 18},
    {"blanks_behind_dashes", blanks_behind_dashes, 1 << 18},
    {"crs_at_the_end_of_a_line", crs_at_the_end_of_a_line, 1 << 18},
    {"crs_at_the_end_of_many_lines", crs_at_the_end_of_many_lines, 1 << 18},
    {"crs_in_a_header_line", crs_in_a_header_line, 1 << 18},
    {"crs_in_kept_text", crs_in_kept_text, 1 << 18, true},
    {"nested_comments", nested_comments, 60'000},
    {"unfinished_comments", unfinished_comments, 60'000},
    {"comments_before_a_semicolon", comments_before_a_semicolon, 30'000},
    {"comments_of_a_value", comments_of_a_value, 20'000},
    {"unfinished_quote", unfinished_quote, 30'000},
    {"quotes_before_a_semicolon", quotes_before_a_semicolon, 30'000},
    {"junk_parameters", junk_parameters, 30'000},
    {"ascending_sections", ascending_sections, 4'000},
    {"descending_sections", descending_sections, 4'000},
    {"equal_sections", equal_sections, 4'000},
    {"sections_of_many_digits", sections_of_many_digits, 60'000},
    {"section_of_huge_number", section_of_huge_number, 60'000},
    {"section_of_many_zeros", section_of_many_zeros, 60'000},
    {"encoded_boundary", encoded_boundary, 30'000},
    {"folded_boundary", folded_boundary, 20'000},
    {"folded_encoding", folded_encoding, 20'000},
    {"lines_passed_over", lines_passed_over, 20'000},
    {"content_type_fields", content_type_fields, 5'000},
    {"nested_digests", nested_digests, 5'000},
    {"bare_parts_of_a_digest", bare_parts_of_a_digest, 5'000},
};

} // namespace

std::vector<chosen_shape> shapes(MailStructure::rules by) {
    const bool is_classic = by == MailStructure::rules::classic;
    const words& chosen = is_classic ? classic_words : standard_words;
    const std::span<const shape> own = is_classic ? std::span<const shape>(all_of_classic)
                                                  : std::span<const shape>(all_of_standard);
    std::vector<chosen_shape> all;
    for (const std::span<const shape> some : {std::span<const shape>(all_of_both), own})
        for (const shape& one : some) all.push_back({&chosen, &one});
    return all;
}

} // namespace cost
