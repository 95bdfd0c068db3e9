// What the messages in the tests of sections are made of, and how those tests parse them.

#ifndef TESTS_SECTIONS_SAMPLES_H
#define TESTS_SECTIONS_SAMPLES_H

#include <mail_structure.h>

#include "support/message_generator.h"
#include "support/parse.h"
#include "support/standard_message_generator.h"

#include <cstdint>
#include <string>

namespace section_samples {

/// Header blocks, each with the empty line that ends it.
inline const std::string mixed_x = "Content-Type: multipart/mixed; boundary=X\n\n";
inline const std::string mixed_y = "Content-Type: multipart/mixed; boundary=Y\n\n";
inline const std::string rfc822 = "Content-Type: message/rfc822\n\n";
/// By the classic rules, a message within and parts beside it.
inline const std::string rfc822_and_mixed_x = "Content-Type: message/rfc822\n" + mixed_x;

/// Whole messages.
inline const std::string letter = "a: b\n"
                                  "c: d\n"
                                  "\n"
                                  "hi\n";
inline const std::string two_parts_y = mixed_y
                                       + "--Y\n"
                                         "\n"
                                         "a\n"
                                         "--Y\n"
                                         "\n"
                                         "b\n"
                                         "--Y--\n";

constexpr MailStructure::rules both_rules[] = {MailStructure::rules::classic,
                                               MailStructure::rules::standard};

/// The tree of the input; of a message at fault, what was read before the fault.
inline MailStructure parse(const std::string& input,
                           MailStructure::rules by = MailStructure::rules::classic) {
    return test_support::parse(input, {.m_rules = by}).m_message;
}

/// The message that the generator for these rules makes of the seed.
inline std::string random_message(MailStructure::rules by, std::uint64_t seed) {
    return by == MailStructure::rules::standard
               ? test_support::generate_standard_message(seed).m_input
               : test_support::generate_message(seed).m_input;
}

} // namespace section_samples

#endif
