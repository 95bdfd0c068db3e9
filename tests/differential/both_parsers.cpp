#include "differential/both_parsers.h"

#include "support/compare.h"
#include "support/escape.h"
#include "support/fill_unchecked.h"
#include "support/parse.h"
#include "support/shrink.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <istream>
#include <sstream>

namespace differential {
namespace {

bool g_full_run = false;

} // namespace

void parse_with_library(const rule_set& by, library_result& result, const std::string& input,
                        const reference::options& wanted, const test_support::delivery& way) {
    MailStructure::m_memlimit = wanted.m_memlimit;
    result.m_message.m_keep_text = wanted.m_keep_text;
    result.m_message.m_done = false;
    result.m_error = test_support::fill_unchecked(result.m_message, input, way,
                                                  wanted.m_first_offset, by.m_rules);
    if (wanted.m_first_offset == 0)
        test_support::check_filled_tree(result.m_message, result.m_error,
                                        {wanted.m_keep_text, wanted.m_memlimit, by.m_rules}, input);
    MailStructure::m_memlimit = 0xFFFFFFFF;
}

reference::message parse_with_reference(const rule_set& by, const std::string& input,
                                        const reference::options& wanted) {
    std::istringstream in(input);
    return by.m_parse(in, wanted);
}

std::string library_difference(const rule_set& by, library_result& result, const std::string& input,
                               const reference::options& wanted, const test_support::delivery& way,
                               const reference::message& expected) {
    parse_with_library(by, result, input, wanted, way);
    return test_support::first_difference(result.m_message, result.m_error, expected);
}

std::string failure_report(const rule_set& by, const std::string& input,
                           const reference::options& wanted, const test_support::delivery& way) {
    const auto difference_of = [&](const std::string& text) {
        library_result fresh;
        return library_difference(by, fresh, text, wanted, way,
                                  parse_with_reference(by, text, wanted));
    };
    std::ostringstream report;
    const std::string difference = difference_of(input);
    if (difference.empty()) report << "none in a parser object that was not filled before; ";
    report << difference << "\n  rules " << by.m_name << ", " << way.m_name << ", keep_text "
           << wanted.m_keep_text << ", memlimit " << wanted.m_memlimit << ", first offset "
           << wanted.m_first_offset;
    if (difference.empty()) return report.str();
    const std::string small = test_support::shrunk(
        input, [&](const std::string& text) { return !difference_of(text).empty(); });
    report << "\n  shrunk to \"" << test_support::escaped(small) << "\"\n  which gives "
           << difference_of(small);
    return report.str();
}

bool full_run() {
    const char* const wish = std::getenv("MAILSTRUCTURE_FULL");
    return g_full_run || (wish != nullptr && std::string(wish) != "0" && *wish != '\0');
}

void ask_for_full_run() { g_full_run = true; }

void record_count(const char* what, std::uint64_t count) {
    std::cout << "    " << what << ": " << count << '\n';
    testing::Test::RecordProperty(what, std::to_string(count));
}

} // namespace differential
