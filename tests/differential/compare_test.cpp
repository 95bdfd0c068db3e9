// That the comparison sees everything: each member of a tree that agrees with the reference is
// changed in turn, and each change must be reported under its name.

#include "differential/both_parsers.h"
#include "support/compare.h"

#include <gtest/gtest.h>
#include <string>

namespace differential {
namespace {

using entity = MailStructure::MimeObj;

/// A multipart with a message in it, fields with parameters, an epilogue: every member has a value
/// somewhere.
const char* const message_with_everything = "Subject: all of it\n"
                                            "Content-Type: multipart/mixed; boundary=X\n"
                                            "\n"
                                            "preamble\n"
                                            "--X\n"
                                            "Content-Type: text/html; charset=a\n"
                                            "\n"
                                            "first\n"
                                            "--X\n"
                                            "Content-Type: message/rfc822\n"
                                            "\n"
                                            "Subject: inner\n"
                                            "A: b\n"
                                            "\n"
                                            "second\n"
                                            "--X--\n"
                                            "epilogue\n";

struct change_case {
    const char* m_name;
    const char* m_report; // how the report begins
    void (*m_change)(library_result&);
};

entity& root_of(library_result& result) { return result.m_message.m_root; }
entity& first_part_of(library_result& result) { return root_of(result).m_children.at(0); }
entity& inner_message_of(library_result& result) {
    return root_of(result).m_children.at(1).m_children.at(0);
}

const change_case change_cases[] = {
    {"error", "error: ", [](library_result& r) { r.m_error = "other"; }},
    {"done", "m_done: ", [](library_result& r) { r.m_message.m_done = false; }},
    {"parent_of_root",
     "1 m_parent: ", [](library_result& r) { root_of(r).m_parent = &root_of(r); }},
    {"multipart", "1 m_multipart: ", [](library_result& r) { root_of(r).m_multipart = false; }},
    {"message",
     "1.2 m_message: ", [](library_result& r) { root_of(r).m_children[1].m_message = false; }},
    {"header_beg",
     "1.1 m_header_beg: ", [](library_result& r) { ++first_part_of(r).m_header_beg; }},
    {"header_len",
     "1.1 m_header_len: ", [](library_result& r) { ++first_part_of(r).m_header_len; }},
    {"mime_beg", "1.1 m_mime_beg: ", [](library_result& r) { ++first_part_of(r).m_mime_beg; }},
    {"mime_len", "1.2.1 m_mime_len: ", [](library_result& r) { ++inner_message_of(r).m_mime_len; }},
    {"body_beg", "1.2.1 m_body_beg: ", [](library_result& r) { ++inner_message_of(r).m_body_beg; }},
    {"body_len", "1 m_body_len: ", [](library_result& r) { ++root_of(r).m_body_len; }},
    {"epilogue_beg", "1 m_epilogue_beg: ", [](library_result& r) { ++root_of(r).m_epilogue_beg; }},
    {"epilogue_len", "1 m_epilogue_len: ", [](library_result& r) { ++root_of(r).m_epilogue_len; }},
    {"contents_beg",
     "1.2 m_contents_beg: ", [](library_result& r) { ++root_of(r).m_children[1].m_contents_beg; }},
    {"contents_len",
     "1.2 m_contents_len: ", [](library_result& r) { ++root_of(r).m_children[1].m_contents_len; }},
    {"one_child_more",
     "1.1 m_children.size(): ", [](library_result& r) { first_part_of(r).get_obj(); }},
    {"one_child_less", "1.2 m_children.size(): ",
     [](library_result& r) { root_of(r).m_children[1].m_children.clear(); }},
    {"one_field_more",
     "1.2.1 m_headers.size(): ", [](library_result& r) { inner_message_of(r).get_header(); }},
    {"field_name", "1.2.1 m_headers[1].m_name: ",
     [](library_result& r) { inner_message_of(r).m_headers[1].m_name = "a"; }},
    {"field_value",
     "1 m_headers[0].m_value: ", [](library_result& r) { root_of(r).m_headers[0].m_value += ' '; }},
    {"field_beg",
     "1 m_headers[1].m_beg: ", [](library_result& r) { ++root_of(r).m_headers[1].m_beg; }},
    {"field_end",
     "1 m_headers[1].m_end: ", [](library_result& r) { ++root_of(r).m_headers[1].m_end; }},
    {"parameter_count", "1.1 m_headers[0].m_params.size(): ",
     [](library_result& r) { first_part_of(r).m_headers[0].m_params.clear(); }},
    {"parameter_name", "1.1 m_headers[0].m_params[0].first: ",
     [](library_result& r) { first_part_of(r).m_headers[0].m_params[0].first = "Charset"; }},
    {"parameter_value", "1.1 m_headers[0].m_params[0].second: ",
     [](library_result& r) { first_part_of(r).m_headers[0].m_params[0].second.clear(); }},
    {"parent_of_first_child", "1 m_children[0].m_parent: ",
     [](library_result& r) { first_part_of(r).m_parent = &first_part_of(r); }},
    {"parent_of_innermost", "1.2 m_children[0].m_parent: ",
     [](library_result& r) { inner_message_of(r).m_parent = nullptr; }},
    {"type", "1.1 m_type: ", [](library_result& r) { first_part_of(r).m_type = "Text"; }},
    {"subtype", "1.1 m_subtype: ", [](library_result& r) { first_part_of(r).m_subtype.clear(); }},
    {"encoding",
     "1.2 m_encoding: ", [](library_result& r) { root_of(r).m_children[1].m_encoding.clear(); }},
    {"lines", "1 m_lines: ", [](library_result& r) { ++root_of(r).m_lines; }},
    {"body_text",
     "1.2.1 m_body_text: ", [](library_result& r) { inner_message_of(r).m_body_text.pop_back(); }},
    {"epilogue_text",
     "1 m_epilogue_text: ", [](library_result& r) { root_of(r).m_epilogue_text[0] = '\0'; }},
    {"body_last_empty", "1.1 m_body_last_empty: ",
     [](library_result& r) { first_part_of(r).m_body_last_empty = true; }},
    {"epilogue_last_empty", "1 m_epilogue_last_empty: ",
     [](library_result& r) { root_of(r).m_epilogue_last_empty = true; }},
};

class comparison : public testing::TestWithParam<change_case> {};

TEST_P(comparison, reports_the_change) {
    reference::options wanted;
    wanted.m_keep_text = true;
    const reference::message expected =
        parse_with_reference(classic, message_with_everything, wanted);
    library_result result;
    parse_with_library(classic, result, message_with_everything, wanted,
                       test_support::every_delivery[0]);
    ASSERT_EQ(test_support::first_difference(result.m_message, result.m_error, expected), "");
    GetParam().m_change(result);
    const std::string report =
        test_support::first_difference(result.m_message, result.m_error, expected);
    EXPECT_EQ(report.substr(0, std::string(GetParam().m_report).size()), GetParam().m_report)
        << report;
}

std::string change_name(const testing::TestParamInfo<change_case>& change) {
    return change.param.m_name;
}

INSTANTIATE_TEST_SUITE_P(every_member, comparison, testing::ValuesIn(change_cases), change_name);

} // namespace
} // namespace differential
