// What the library reads in a Content-Type field and in a Content-Transfer-Encoding field under
// the rule set "standard".

#include "parser/standard/content_type.h"
#include "parser/standard/field_values.h"
#include "support/case_name.h"
#include "support/escape.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace standard_rules {
namespace {

using namespace mail_structure_detail::standard;
using test_support::case_name;
using test_support::escaped;

/// The value in quotes, type and subtype or "malformed", then each parameter.
std::string shown(std::string_view body) {
    std::string text = '"' + escaped(value_before_parameters(body)) + "\" ";
    content_type_reader reader(body);
    const media_type type = reader.read_type();
    text +=
        type.m_type.empty() ? "malformed" : escaped(type.m_type) + '/' + escaped(type.m_subtype);
    parameter found;
    while (reader.read_parameter(found))
        text += " (" + escaped(found.m_name) + " \"" + escaped(found.m_value) + "\")";
    return text;
}

class standard_content_type : public testing::TestWithParam<text_case> {};

TEST_P(standard_content_type, says) { EXPECT_EQ(shown(GetParam().m_body), GetParam().m_wanted); }

INSTANTIATE_TEST_SUITE_P(value, standard_content_type, testing::ValuesIn(value_cases),
                         case_name<text_case>);
INSTANTIATE_TEST_SUITE_P(media_type, standard_content_type, testing::ValuesIn(media_type_cases),
                         case_name<text_case>);
INSTANTIATE_TEST_SUITE_P(parameters, standard_content_type, testing::ValuesIn(parameter_cases),
                         case_name<text_case>);
INSTANTIATE_TEST_SUITE_P(quoted_value, standard_content_type, testing::ValuesIn(quoted_cases),
                         case_name<text_case>);
INSTANTIATE_TEST_SUITE_P(unquoted_value, standard_content_type, testing::ValuesIn(unquoted_cases),
                         case_name<text_case>);

class standard_transfer_encoding : public testing::TestWithParam<text_case> {};

TEST_P(standard_transfer_encoding, says) {
    EXPECT_EQ(escaped(transfer_encoding(GetParam().m_body)), GetParam().m_wanted);
}

INSTANTIATE_TEST_SUITE_P(transfer_encoding, standard_transfer_encoding,
                         testing::ValuesIn(encoding_cases), case_name<text_case>);

TEST(standard_content_type_reader, gives_the_type_as_malformed_only_as_a_whole) {
    content_type_reader reader("text/;a=b");
    const media_type type = reader.read_type();
    EXPECT_EQ(type.m_type, "");
    EXPECT_EQ(type.m_subtype, "");
}

} // namespace
} // namespace standard_rules
