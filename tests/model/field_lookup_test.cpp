// The lookups of header fields by name.

#include <mail_structure.h>

#include "support/case_name.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>
#include <ostream>
#include <string>

namespace {

using test_support::case_name;

MailStructure::MimeObj entity_with_fields(std::initializer_list<const char*> names) {
    MailStructure::MimeObj entity;
    for (const char* name : names) {
        MailStructure::header* field = entity.get_header();
        field->m_name = name;
        field->m_value = std::string("value of ") + name;
    }
    return entity;
}

struct lookup_case {
    const char* m_name;
    std::string m_query;
    int m_found; // index of the field, or -1
};

/// Without this, GoogleTest would print a row byte by byte, padding included.
void PrintTo(const lookup_case& row, std::ostream* out) { *out << row.m_name; }

// The fields are X-Subject, Subject-Line, SUBJECT, To and a field without a name, in this order.
const lookup_case lookup_cases[] = {
    {"exact_name", "To", 3},
    {"case_is_ignored", "tO", 3},
    {"first_of_two_fields_that_begin_so", "subject", 1},
    {"later_letters_choose", "x-s", 0},
    {"query_longer_than_every_name", "subject-lines", -1},
    {"name_that_no_field_begins_with", "from", -1},
    {"query_inside_a_name_only", "line", -1},
    {"query_with_a_colon", "to:", -1},
    {"nul_in_the_query_matches_nothing", std::string("to\0", 3), -1},
};

class field_lookup : public testing::TestWithParam<lookup_case> {};

TEST_P(field_lookup, finds) {
    const MailStructure::MimeObj entity =
        entity_with_fields({"X-Subject", "Subject-Line", "SUBJECT", "To", ""});
    const lookup_case& row = GetParam();
    const std::string fallback = "fallback";
    if (row.m_found < 0) {
        EXPECT_EQ(entity.find_header_full(row.m_query), nullptr);
        EXPECT_EQ(entity.find_header(row.m_query, &fallback), &fallback);
    } else {
        const MailStructure::header& wanted =
            entity.m_headers[static_cast<std::size_t>(row.m_found)];
        EXPECT_EQ(entity.find_header_full(row.m_query), &wanted);
        EXPECT_EQ(entity.find_header(row.m_query, &fallback), &wanted.m_value);
    }
}

INSTANTIATE_TEST_SUITE_P(cases, field_lookup, testing::ValuesIn(lookup_cases),
                         case_name<lookup_case>);

TEST(field_lookups, keeps_lookup_by_the_beginning_of_a_name) {
    const MailStructure::MimeObj entity =
        entity_with_fields({"X-Subject", "Subject-Line", "SUBJECT"});
    EXPECT_EQ(entity.find_header_full("subject"), &entity.m_headers[1]);
    EXPECT_EQ(*entity.find_header("subject", nullptr), "value of Subject-Line");
}

TEST(field_lookups, keeps_empty_query_finding_the_first_field) {
    const MailStructure::MimeObj entity = entity_with_fields({"A", "B"});
    EXPECT_EQ(entity.find_header_full(""), &entity.m_headers[0]);
}

TEST(field_lookups, entity_without_fields_has_nothing_to_find) {
    const MailStructure::MimeObj entity;
    const std::string fallback = "fallback";
    EXPECT_EQ(entity.find_header_full(""), nullptr);
    EXPECT_EQ(entity.find_header_full("a"), nullptr);
    EXPECT_EQ(entity.find_header("", &fallback), &fallback);
    EXPECT_EQ(entity.find_header("a", nullptr), nullptr);
}

TEST(field_lookups, null_default_is_returned_as_it_is) {
    const MailStructure::MimeObj entity = entity_with_fields({"A"});
    EXPECT_EQ(entity.find_header("b", nullptr), nullptr);
}

TEST(field_lookups, field_with_an_empty_value_is_found) {
    MailStructure::MimeObj entity;
    entity.get_header()->m_name = "Subject";
    const std::string fallback = "fallback";
    EXPECT_EQ(entity.find_header("subject", &fallback), &entity.m_headers[0].m_value);
}

} // namespace
