// Small messages that have something wrong with them, and messages that nearly have it.

#ifndef TESTS_FINDINGS_CASES_H
#define TESTS_FINDINGS_CASES_H

#include <mail_findings.h>

#include <string>
#include <vector>

namespace findings {

struct finding_case {
    mail_findings::name m_finding;
    const char* m_name; // what the message shows
    std::string m_message;
    /// The findings of that name, each as "LEVEL LINE BYTES" and a line end. "" where the message
    /// nearly has one.
    std::string m_expected;
};

/// The cases of header blocks and Content-Type fields.
const std::vector<finding_case>& header_cases();
/// The cases of dates, addresses and message identifiers.
const std::vector<finding_case>& field_cases();
/// The cases of structure and bodies.
const std::vector<finding_case>& body_cases();

} // namespace findings

#endif
