// Names the cases of a table-driven test by the names of the table's rows.

#ifndef TESTS_SUPPORT_CASE_NAME_H
#define TESTS_SUPPORT_CASE_NAME_H

#include <gtest/gtest.h>
#include <string>

namespace test_support {

/// The name of a case for INSTANTIATE_TEST_SUITE_P. The rows have a member m_name.
template <class Case>
std::string case_name(const testing::TestParamInfo<Case>& row) {
    return row.param.m_name;
}

} // namespace test_support

#endif
