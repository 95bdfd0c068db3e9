// Which boundary the parameters of a Content-Type field give under the rule set "standard".

#include "parser/standard/boundary.h"
#include "parser/standard/content_type.h"
#include "parser/standard/field_values.h"
#include "support/case_name.h"
#include "support/escape.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

namespace standard_rules {
namespace {

using namespace mail_structure_detail::standard;
using test_support::case_name;
using test_support::escaped;

std::optional<std::string> boundary_of(std::string_view parameters) {
    const std::string field = "multipart/mixed;" + std::string(parameters);
    content_type_reader reader(field);
    reader.read_type();
    boundary_parameter boundary;
    parameter found;
    while (reader.read_parameter(found)) boundary.take(found.m_name, found.m_value);
    return std::optional<std::string>(boundary.value());
}

class standard_boundary : public testing::TestWithParam<text_case> {};

TEST_P(standard_boundary, is) {
    const auto boundary = boundary_of(GetParam().m_body);
    EXPECT_EQ(boundary ? '[' + escaped(*boundary) + ']' : "none", GetParam().m_wanted);
}

INSTANTIATE_TEST_SUITE_P(boundary, standard_boundary, testing::ValuesIn(boundary_cases),
                         case_name<text_case>);

/// Sections are sorted, whatever their order, and numbers have any number of digits.
TEST(standard_boundary_sections, are_joined_in_the_order_of_their_numbers) {
    constexpr int sections = 1000;
    std::string parameters;
    std::string wanted;
    for (int number = sections - 1; number >= 0; --number)
        parameters += "boundary*" + std::to_string(number) + '=' + std::to_string(number) + ";";
    for (int number = 0; number < sections; ++number) wanted += std::to_string(number);
    EXPECT_EQ(boundary_of(parameters), wanted);
}

} // namespace
} // namespace standard_rules
