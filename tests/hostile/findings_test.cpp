// Findings of messages that are very deep or very wide, on a stack that is far too small for a
// function that recurses on the depth.

#include <mail_findings.h>

#include "support/small_stack.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace hostile {
namespace {

constexpr std::size_t million = 1000000;

/// How many findings of that name the message has.
std::size_t count_of(mail_findings::name wanted, const std::string& message) {
    std::size_t count = 0;
    test_support::run_on_stack(std::size_t{128} * 1024, [&] {
        mail_findings::find(message, [&](const mail_findings::finding& found) {
            if (found.m_name == wanted) ++count;
        });
    });
    return count;
}

TEST(findings_of_deep_messages, of_multiparts_that_are_never_closed) {
    constexpr std::size_t levels = 200000; // each boundary is compared with a hundred others
    std::string message;
    for (std::size_t level = 0; level < levels; ++level) {
        const std::string boundary = std::to_string(level);
        message += "Content-Type:multipart/x;boundary=" + boundary + "\n\n--" + boundary + '\n';
    }
    EXPECT_EQ(count_of(mail_findings::name::multipart_not_closed, message), levels);
}

TEST(findings_of_deep_messages, of_messages_within) {
    std::string message;
    for (std::size_t level = 0; level < million; ++level)
        message += "Content-Type:message/news\n\n";
    EXPECT_EQ(count_of(mail_findings::name::message_not_entered, message), million);
}

TEST(findings_of_long_fields, of_addresses_that_do_not_end) {
    for (const char* piece :
         {"(", "\"", "\\", "[", "a", "a ", "a.", "a,", ",", "<", "<@a,", ":", "a:", " "}) {
        std::string message = "To: ";
        for (std::size_t count = 0; count < million; ++count) message += piece;
        message += "(\n\n";
        EXPECT_EQ(count_of(mail_findings::name::address_invalid, message), 1U) << piece;
    }
}

TEST(findings_of_wide_messages, of_parts_without_lines) {
    std::string message = "Content-Type:multipart/x;boundary=b\n\n";
    for (std::size_t part = 0; part < million; ++part) message += "--b\n";
    EXPECT_EQ(count_of(mail_findings::name::part_without_lines, message), million);
}

} // namespace
} // namespace hostile
