// The functions of mail_sections.h when memory runs out at any of their allocations.

#include <mail_sections.h>

#include "robustness/failing_new.h"
#include "robustness/failures_of.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace {

using test_support::allocation_trap;
using test_support::failures_of;
using test_support::memory;

const std::string message_text = "Content-Type: multipart/mixed; boundary=\"a long boundary that "
                                 "no string object holds\"\n"
                                 "\n"
                                 "preamble\n"
                                 "--a long boundary that no string object holds\n"
                                 "Content-Type: message/rfc822\n"
                                 "\n"
                                 "To: a\n"
                                 "Cc: b\n"
                                 "To: c\n"
                                 "\n"
                                 "hi\n"
                                 "--a long boundary that no string object holds\n"
                                 "Content-Type: multipart/mixed; boundary=b\n"
                                 "\n"
                                 "--b--\n"
                                 "--a long boundary that no string object holds--\n";

class failed_sections : public testing::TestWithParam<memory> {};

TEST_P(failed_sections, throw_bad_alloc_and_leak_nothing) {
    MailStructure message;
    message.Fill(message_text, MailStructure::rules::standard);
    ASSERT_EQ(message.m_root.m_children.size(), 2U);
    const mail_sections::source source{message_text, MailStructure::rules::standard};
    const std::string fields =
        R"(1.HEADER.FIELDS (To "a name that no string object \"holds\" in itself"))";
    const std::function<void()> jobs[] = {
        [&] {
            mail_sections::walk walk(message.m_root);
            while (walk.next() != nullptr) walk.name();
        },
        [&] { mail_sections::text_of(mail_sections::parse(fields).m_section); },
        [&] { mail_sections::find(message.m_root, "1.1.2.3.4"); },
        [&] {
            const mail_sections::section wanted = mail_sections::parse(fields).m_section;
            const mail_sections::found found = mail_sections::find(message.m_root, wanted);
            mail_sections::ranges ranges(message.m_root, source);
            EXPECT_EQ(ranges.of_fields(found.m_place, wanted).size(), 2U);
        },
        [&] {
            mail_sections::ranges ranges(message.m_root, source);
            EXPECT_TRUE(ranges.at(10));
        },
        [&] { mail_sections::preamble_of(message.m_root.m_children.back(), source); },
    };
    for (const auto& job : jobs) EXPECT_GT(failures_of(job, GetParam()), 0U);
}

TEST(sections_without_memory, ranges_and_epilogues_allocate_nothing) {
    MailStructure message;
    message.Fill(message_text, MailStructure::rules::classic);
    mail_sections::ranges ranges(message.m_root, {message_text, MailStructure::rules::classic});
    const allocation_trap trap;
    ranges.of({&message.m_root, mail_sections::piece::body, true});
    mail_sections::epilogue_of(message.m_root, {message_text, MailStructure::rules::classic});
    EXPECT_EQ(trap.count(), 0U);
}

INSTANTIATE_TEST_SUITE_P(memory, failed_sections,
                         testing::Values(memory::comes_back, memory::stays_out));

} // namespace
