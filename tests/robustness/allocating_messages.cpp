#include "robustness/allocating_messages.h"

#include "support/cr_lf.h"
#include "support/repeated.h"

#include <cstddef>
#include <utility>

namespace test_support {
namespace {

using test_support::repeated;

/// A text of this many letters. More than 15 do not fit into a string object, and are allocated.
std::string letters(std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) result += static_cast<char>('a' + i % 26);
    return result;
}

/// The header block of a multipart, its empty line included.
std::string multipart(const std::string& boundary) {
    return "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\n\n";
}

/// Multiparts within each other. Each boundary is long enough to be allocated, and none is closed
/// yet.
std::string open_multiparts(std::size_t depth) {
    std::string result;
    for (std::size_t level = 0; level < depth; ++level) {
        const std::string boundary = letters(20) + std::to_string(level);
        result += multipart(boundary) + "preamble\n--" + boundary + "\n";
    }
    return result;
}

std::string closed_multiparts(std::size_t depth) {
    std::string result = open_multiparts(depth) + "\nbody of the innermost part\n";
    for (std::size_t level = depth; level-- > 0;)
        result += "--" + letters(20) + std::to_string(level) + "--\nepilogue of level "
                  + std::to_string(level) + "\n";
    return result;
}

std::string nested_messages(std::size_t depth) {
    return repeated(depth, "Content-Type: message/rfc822\nSubject: " + letters(30) + "\n\n");
}

/// A multipart whose parts each have fields, parameters and a body.
std::string full_parts(std::size_t count) {
    std::string result = multipart("a long boundary for parts");
    for (std::size_t i = 0; i < count; ++i)
        result += "--a long boundary for parts\n"
                  "Content-Type: application/octet-stream; name="
                  + letters(40) + "\nContent-Description: " + letters(50) + "\n\n" + letters(20)
                  + "\n";
    return result + "--a long boundary for parts--\n" + letters(20) + "\n";
}

void add_header_messages(std::vector<allocating_message>& all) {
    all.push_back({"empty_input", ""});
    all.push_back({"one_short_field", "a: b\n"
                                      "\n"
                                      "hi\n"});
    all.push_back({"long_field_name", letters(40) + ": b\n\nhi\n"});
    all.push_back({"long_field_value", "a: " + letters(60) + "\n\nhi\n"});
    all.push_back(
        {"value_grown_by_folds", "a: b\n" + repeated(12, "  " + letters(15) + "\n") + "\nhi\n"});
    all.push_back(
        {"many_fields", repeated(40, letters(20) + ": " + letters(25) + "\n") + "\nhi\n"});
    all.push_back({"many_fields_with_crlf",
                   with_cr_lf(repeated(20, "Received: " + letters(50) + "\n") + "\nhi\n")});
    all.push_back({"block_without_end", "Subject: " + letters(30) + "\nTo: " + letters(40)});
    all.push_back(
        {"name_without_colon", "a: " + letters(30) + "\r\n" + letters(30) + "\r\n\r\nhi\r\n"});
    all.push_back(
        {"field_of_a_line_feed_line_without_colon", letters(30) + "\n" + letters(40) + "\n\nhi\n"});
    all.push_back(
        {"stray_byte_in_the_block", "a: " + letters(30) + "\nb: " + letters(30) + "\rx\n"});
}

void add_content_type_messages(std::vector<allocating_message>& all) {
    all.push_back({"long_type", "Content-Type: " + letters(30) + "/b\n\nhi\n"});
    all.push_back({"long_subtype", "Content-Type: a/" + letters(30) + "\n\nhi\n"});
    all.push_back({"long_type_without_subtype", "Content-Type: " + letters(30) + "\n\nhi\n"});
    all.push_back({"long_encoding", "Content-Transfer: " + letters(30) + "\n\nhi\n"});
    all.push_back({"types_and_encodings_that_grow",
                   "C: a/b\nC: " + letters(20) + "/" + letters(20)
                       + "\nContent-Transfer-Enconding: a\nC: " + letters(50) + "/" + letters(50)
                       + "\nContent-Transfer-Enconding: " + letters(60) + "\n\nhi\n"});
    all.push_back({"many_parameters", "Content-Type: a/b" + repeated(30, "; p=v") + "\n\nhi\n"});
    all.push_back(
        {"long_parameter_names", "C: a/b" + repeated(6, "; " + letters(30) + "=v") + "\n\nhi\n"});
    all.push_back({"long_parameter_values",
                   "C: a/b" + repeated(6, "; p=\"" + letters(30) + "\"") + "\n\nhi\n"});
    all.push_back({"parameters_on_folds",
                   "C: a/b\n" + repeated(9, "\tname=" + letters(30) + ";\n") + "\nhi\n"});
    all.push_back({"broken_parameters", "C: a/b; " + letters(30) + "; p=" + letters(30) + "\n\t="
                                            + letters(30) + "\n\t" + letters(30) + "=\n\nhi\n"});
    all.push_back({"many_boundaries_of_one_field", "C: multipart/x"
                                                       + repeated(25, "; boundary=" + letters(20))
                                                       + "\n\n--" + letters(20) + "\n\nhi\n"});
    all.push_back({"long_boundaries_on_folds", "C: multipart/mixed;\n"
                                                   + repeated(14, " b=" + letters(45) + "\n")
                                                   + "\n--" + letters(45) + "\n"});
}

void add_body_messages(std::vector<allocating_message>& all) {
    all.push_back({"body_alone", "1 " + letters(40) + "\n" + letters(40) + "\n"});
    all.push_back({"long_body_lines",
                   "\n" + letters(100) + "\n" + letters(1000) + "\n" + letters(5000) + "\n"});
    all.push_back({"many_body_lines", "\n" + repeated(150, letters(30) + "\n")});
    all.push_back({"body_without_final_newline", "a: b\n\n" + letters(70)});
    all.push_back(
        {"stray_byte_in_the_body", "a: b\n\n" + letters(40) + "\n" + letters(40) + "\rx\n"});
    all.push_back({"lines_kept_in_another_form",
                   "\n" + letters(3) + "\n" + repeated(9, letters(40) + "\r\n") + "hi\n"});
    all.push_back({"preamble_and_epilogue", multipart("b") + repeated(5, letters(30) + "\n")
                                                + "--b\n\nhi\n--b--\n"
                                                + repeated(5, letters(30) + "\n")});
    all.push_back({"closing_line_alone", multipart("b") + "--b--\n" + letters(30) + "\n--b\n\n"
                                             + letters(30) + "\n--b--\n" + letters(30) + "\n"});
}

void add_tree_messages(std::vector<allocating_message>& all) {
    all.push_back({"many_empty_parts", multipart("b") + repeated(40, "--b\n")});
    all.push_back({"many_full_parts", full_parts(9)});
    all.push_back({"many_full_parts_with_crlf", with_cr_lf(full_parts(9))});
    all.push_back({"parts_without_blocks",
                   multipart("b") + repeated(6, "--b\n1 " + letters(30) + "\n") + "--b--\n"});
    all.push_back({"deep_multiparts", closed_multiparts(14)});
    all.push_back({"deep_multiparts_never_closed", open_multiparts(25) + "\nhi\n"});
    all.push_back({"deep_messages", nested_messages(20) + "hi\n" + letters(30) + "\n"});
    all.push_back({"message_in_a_part",
                   multipart("b") + "--b\nContent-Type: message/rfc822\n\nSubject: " + letters(30)
                       + "\n\n" + letters(30) + "\n--b\n\nhi\n--b--\n"});
    all.push_back({"message_in_a_message_in_a_part",
                   multipart("b") + "--b\n" + nested_messages(2) + "a: b\n\nhi\n--b\n"
                       + nested_messages(1) + letters(30) + "\n--b--\n" + letters(30) + "\n"});
    all.push_back(
        {"multipart_in_a_message", nested_messages(1) + closed_multiparts(3) + letters(30) + "\n"});
    all.push_back(
        {"multiparts_and_messages_mixed",
         open_multiparts(3) + nested_messages(2) + closed_multiparts(12) + nested_messages(1)});
    all.push_back({"parts_after_the_epilogue",
                   multipart("b") + repeated(8, "--b--\n" + letters(20) + "\n--b\n")});
    all.push_back({"stray_byte_at_depth", open_multiparts(12) + "\n" + letters(30) + "\n\r\r\n"});
    all.push_back(
        {"name_without_colon_at_depth",
         with_cr_lf(open_multiparts(12) + "Subject: " + letters(30) + "\n" + letters(30) + "\n")});
}

/// Multiparts within each other, so many that the table of delimiters grows more than once. Each
/// boundary has to be allocated.
std::string distinct_multiparts(std::size_t depth, const std::string& rest) {
    std::string result;
    for (std::size_t level = 0; level < depth; ++level) {
        const std::string boundary = letters(16) + std::to_string(level);
        result += multipart(boundary) + "--" + boundary + "\n";
    }
    return result + rest;
}

std::string multipart_with(const std::string& parameters, const std::string& boundary) {
    return "Content-Type: multipart/mixed" + parameters + "\n\n--" + boundary + "\n\n" + letters(30)
           + "\n--" + boundary + "--\n" + letters(30) + "\n";
}

/// For the rule set "standard": each way to a boundary, and texts that the tree holds in another
/// form than the message.
void add_standard_messages(std::vector<allocating_message>& all) {
    const std::string word = letters(20);
    all.push_back(
        {"boundary_with_escapes",
         multipart_with("; boundary=\"" + word + "\\\"" + word + "\"", word + '"' + word)});
    all.push_back({"unquoted_boundary_with_comments",
                   multipart_with("; boundary=" + word + " (" + word + ") " + word + "  (b) ;x",
                                  word + "  " + word)});
    all.push_back(
        {"extended_boundary",
         multipart_with("; boundary*=us-ascii'en'" + word + "%41" + word, word + 'A' + word)});
    all.push_back(
        {"boundary_in_sections",
         multipart_with("; boundary*12345678901234567890=" + word + "; boundary*3*=a'b'%42" + word
                            + "; boundary*03=x; boundary*7*=" + word + "%43",
                        'B' + word + word + 'C' + word)});
    std::string many_sections;
    for (int number = 40; number > 0; --number)
        many_sections += "; boundary*" + std::to_string(number) + "=" + letters(3);
    all.push_back(
        {"boundary_in_many_sections", multipart_with(many_sections, repeated(40, letters(3)))});
    all.push_back({"plain_boundary_among_others",
                   multipart_with("; boundary*=a'b'" + word + "; boundary*1=" + word
                                      + "; boundary=" + word + "; boundary=x",
                                  word)});
    all.push_back({"folded_content_type",
                   multipart_with(";\n" + repeated(6, " name=\"" + word + "\n " + word + "\";\n")
                                      + "\tboundary=\"" + word + "\n  " + word + "\"",
                                  word + "  " + word)});
    all.push_back({"comments_in_every_place", "Content-Type (" + word + "): x\nContent-Type: ("
                                                  + word + "(a)) multipart (b) / " + word
                                                  + " (;) ; (c) boundary (d) = (e) " + word
                                                  + "\n\n--" + word + "\n"});
    all.push_back({"long_types_and_encoding", "Content-Transfer-Encoding: (a)" + word
                                                  + " b\nContent-Type: " + word + "/" + word + "; "
                                                  + word + "=" + word + "\n\n" + word + "\n"});
    all.push_back({"folded_encoding", "Content-Transfer-Encoding:\n"
                                          + repeated(9, " (" + word + ")\n") + " " + word
                                          + "\n\nhi\n"});
    all.push_back(
        {"second_content_type", multipart_with("; boundary=" + word + "\nContent-Type: " + word
                                                   + "/" + word + "; " + word + "=" + word,
                                               word)});
    all.push_back({"distinct_boundaries_at_depth", distinct_multiparts(40, "\n" + word + "\n")});
    all.push_back(
        {"distinct_boundaries_closed_from_outside",
         distinct_multiparts(20, word + ": " + word + "\n--" + letters(16) + "1\n\n" + word + "\n--"
                                     + letters(16) + "0--\n" + word + "\n")});
    all.push_back({"equal_boundaries_at_depth", repeated(20, multipart(word) + "--" + word + "\n")
                                                    + repeated(25, "--" + word + "--\n")});
    all.push_back({"block_ended_by_a_delimiter",
                   multipart(word) + "--" + word + "\nContent-Type: message/rfc822\nSubject: "
                       + word + "\n--" + word + "\nContent-Type: multipart/mixed;\n boundary=\""
                       + word + word + "\n--" + word + "--\n"});
    all.push_back(
        {"digests_within_digests",
         repeated(6, "Content-Type: multipart/digest; boundary=" + word + "\n\n--" + word + "\n\n")
             + "\n" + word + "\n--" + word + "\n--" + word + "--\n" + word + "\n"});
    all.push_back({"message_without_lines", "Content-Type: message/global"});
    all.push_back({"lines_ended_by_crs", "a: b\r\r\n\r\r\n" + word + "\r\r\r\n" + word + "\r\n"
                                             + word + "\n" + word + "\r"});
    all.push_back({"wrap_in_distinct_boundaries", distinct_multiparts(20, "\n" + word + "\n"),
                   0xFFFFFFFF, 0xFFFFFFFF - 700});
    all.push_back({"standard_parameters_past_the_limit",
                   multipart_with("; a=" + word + "; boundary=" + word + "; b=" + word, word),
                   160});
}

void add_limited_messages(std::vector<allocating_message>& all) {
    const std::string fields = repeated(4, letters(20) + ": " + letters(30) + "\n")
                               + "C: " + letters(20) + "/" + letters(20) + "; " + letters(20) + "="
                               + letters(20) + "; q=" + letters(30) + "\n\t" + letters(40) + "="
                               + letters(40) + "\n";
    all.push_back({"all_fields_past_the_limit", fields + "\nhi\n", 0});
    all.push_back({"most_fields_past_the_limit", fields + "\nhi\n", 200});
    all.push_back({"parameters_past_the_limit", fields + "\nhi\n", 710});
    all.push_back({"boundaries_past_the_limit", closed_multiparts(6), 500});
    all.push_back({"types_of_parts_past_the_limit", full_parts(4), 600});
}

void add_wrapping_messages(std::vector<allocating_message>& all) {
    constexpr std::uint32_t shortly_before = 0xFFFFFFFF - 300;
    all.push_back({"wrap_in_deep_multiparts", closed_multiparts(14), 0xFFFFFFFF, shortly_before});
    all.push_back(
        {"wrap_in_deep_messages", nested_messages(20) + "hi\n", 0xFFFFFFFF, shortly_before});
    all.push_back({"wrap_in_full_parts", full_parts(6), 0xFFFFFFFF, shortly_before});
    all.push_back({"wrap_at_the_first_byte", closed_multiparts(5), 0xFFFFFFFF, 0xFFFFFFFF});
}

void add_generated_messages(std::vector<allocating_message>& all,
                            const differential::rule_set& by) {
    for (std::uint64_t seed = 1; seed <= 24; ++seed) {
        generated_message made = by.m_random_message(seed);
        all.push_back({"generated_" + std::to_string(seed), std::move(made.m_input),
                       made.m_memlimit, made.m_first_offset});
    }
}

} // namespace

std::vector<allocating_message> allocating_messages(const differential::rule_set& by) {
    std::vector<allocating_message> all;
    add_header_messages(all);
    if (by.m_rules == MailStructure::rules::standard) add_standard_messages(all);
    add_content_type_messages(all);
    add_body_messages(all);
    add_tree_messages(all);
    add_limited_messages(all);
    add_wrapping_messages(all);
    add_generated_messages(all, by);
    return all;
}

} // namespace test_support
