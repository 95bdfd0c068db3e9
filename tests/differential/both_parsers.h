// Runs the library and the reference parser of a rule set over the same bytes and tells how their
// results differ.

#ifndef TESTS_DIFFERENTIAL_BOTH_PARSERS_H
#define TESTS_DIFFERENTIAL_BOTH_PARSERS_H

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "reference/reference_parser.h"
#include "support/streams.h"

#include <cstdint>
#include <string>

namespace differential {

/// What Fill did: the error in the words of reference::message::m_error, empty after a normal
/// return.
struct library_result {
    MailStructure m_message;
    std::string m_error;
};

/// Parses the input with the library. The result is filled anew, whatever it holds: tests that hand
/// in the same one again also see that nothing of one message stays behind for the next.
void parse_with_library(const rule_set& by, library_result& result, const std::string& input,
                        const reference::options& wanted, const test_support::delivery& way);

reference::message parse_with_reference(const rule_set& by, const std::string& input,
                                        const reference::options& wanted);

/// Parses with the library and compares. Empty when the results are equal.
std::string library_difference(const rule_set& by, library_result& result, const std::string& input,
                               const reference::options& wanted, const test_support::delivery& way,
                               const reference::message& expected);

/// For a failure: the difference, and how to see it again with as small a message as still shows
/// one.
std::string failure_report(const rule_set& by, const std::string& input,
                           const reference::options& wanted, const test_support::delivery& way);

/// True when the long form of the tests is wanted: the environment variable MAILSTRUCTURE_FULL is
/// set to anything but 0, or the program was started with --full.
bool full_run();
void ask_for_full_run();

/// Prints what was compared, and keeps it as a property of the running test.
void record_count(const char* what, std::uint64_t count);

} // namespace differential

#endif
