// What the reference parser of the rule set "standard" reads in a Content-Type field, in a
// Content-Transfer-Encoding field, and in the parameters that give a boundary. The library is held
// against the same tables.

#include "parser/standard/field_values.h"
#include "reference/standard_boundary.h"
#include "reference/standard_content_type.h"
#include "support/case_name.h"
#include "support/escape.h"

#include <gtest/gtest.h>
#include <string>

namespace reference::standard {
namespace {

using standard_rules::text_case;
using test_support::case_name;
using test_support::escaped;

/// The value in quotes, type and subtype or "malformed", then each parameter.
std::string shown(const content_type& found) {
    std::string text = '"' + escaped(found.m_value) + "\" ";
    text += found.m_media_type
                ? escaped(found.m_media_type->m_type + '/' + found.m_media_type->m_subtype)
                : "malformed";
    for (const auto& [name, value] : found.m_parameters)
        text += " (" + escaped(name) + " \"" + escaped(value) + "\")";
    return text;
}

class content_type_field : public testing::TestWithParam<text_case> {};

TEST_P(content_type_field, says) {
    EXPECT_EQ(shown(read_content_type(std::string(GetParam().m_body))), GetParam().m_wanted);
}

INSTANTIATE_TEST_SUITE_P(value, content_type_field, testing::ValuesIn(standard_rules::value_cases),
                         case_name<text_case>);

INSTANTIATE_TEST_SUITE_P(type, content_type_field,
                         testing::ValuesIn(standard_rules::media_type_cases), case_name<text_case>);

INSTANTIATE_TEST_SUITE_P(parameters, content_type_field,
                         testing::ValuesIn(standard_rules::parameter_cases), case_name<text_case>);

INSTANTIATE_TEST_SUITE_P(quoted_value, content_type_field,
                         testing::ValuesIn(standard_rules::quoted_cases), case_name<text_case>);

INSTANTIATE_TEST_SUITE_P(unquoted_value, content_type_field,
                         testing::ValuesIn(standard_rules::unquoted_cases), case_name<text_case>);

class transfer_encoding_field : public testing::TestWithParam<text_case> {};

TEST_P(transfer_encoding_field, says) {
    EXPECT_EQ(escaped(read_transfer_encoding(std::string(GetParam().m_body))), GetParam().m_wanted);
}

INSTANTIATE_TEST_SUITE_P(transfer_encoding, transfer_encoding_field,
                         testing::ValuesIn(standard_rules::encoding_cases), case_name<text_case>);

class boundary_parameters : public testing::TestWithParam<text_case> {};

TEST_P(boundary_parameters, give) {
    const auto boundary = boundary_of(
        read_content_type("multipart/mixed;" + std::string(GetParam().m_body)).m_parameters);
    EXPECT_EQ(boundary ? '[' + escaped(*boundary) + ']' : "none", GetParam().m_wanted);
}

INSTANTIATE_TEST_SUITE_P(boundary, boundary_parameters,
                         testing::ValuesIn(standard_rules::boundary_cases), case_name<text_case>);

} // namespace
} // namespace reference::standard
