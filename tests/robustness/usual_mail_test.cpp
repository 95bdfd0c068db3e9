// A parser object that reads one usual message after another allocates nothing, once it has read
// some of them: fields, parts and parameters come and go, and their lengths change.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/failing_new.h"
#include "support/tree_text.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using test_support::allocation_trap;
using test_support::full_tree_text;

/// Writes messages as lists and people send them, each another one.
class usual_mail {
public:
    std::string next() {
        std::string message = fields(from_to(14, 38));
        if (from_to(1, 4) == 1)
            return message + "Content-Type: text/plain; charset=utf-8\n\n" + lines();
        message += multipart("mixed", outer) + "--" + outer + '\n' + multipart("alternative", inner)
                   + part(inner, "text/plain; charset=utf-8", "8bit")
                   + part(inner, "text/html; charset=utf-8", "quoted-printable") + "--" + inner
                   + "--\n\n";
        if (from_to(1, 3) == 1)
            message += "--" + outer + "\nContent-Type: message/rfc822\n\n" + fields(from_to(8, 15))
                       + '\n' + lines();
        else
            message += part(outer, "application/pdf; name=\"minutes.pdf\"", "base64");
        return message + "--" + outer + "--\n";
    }

private:
    std::size_t from_to(std::size_t least, std::size_t most) {
        return least + m_engine() % (most - least + 1);
    }

    std::string fields(std::size_t count) {
        constexpr std::string_view names[] = {"Received", "To", "Subject", "Authentication-Results",
                                              "List-Unsubscribe"};
        std::string block;
        for (; count > 0; --count) {
            block.append(names[from_to(0, std::size(names) - 1)]).append(": ");
            block.append(from_to(8, 60), 'v').append("\n");
            if (from_to(1, 3) != 1) continue;
            for (std::size_t folds = from_to(1, 4); folds > 0; --folds)
                block.append("\t").append(from_to(20, 66), 'f').append("\n");
        }
        return block;
    }

    static std::string multipart(const std::string& subtype, const std::string& boundary) {
        return "Content-Type: multipart/" + subtype + ";\n\tboundary=\"" + boundary + "\"\n\n";
    }

    std::string part(const std::string& boundary, const std::string& type,
                     const std::string& encoding) {
        return "--" + boundary + "\nContent-Type: " + type
               + "\nContent-Transfer-Encoding: " + encoding + "\n\n" + lines();
    }

    std::string lines() { return std::string(from_to(1, 70), 'x') + "\n\ntext\n"; }

    const std::string outer = "----=_mixed_0000_91C3";
    const std::string inner = "=_alternatives_0001_4F2A";
    std::mt19937 m_engine; // its numbers are the same everywhere
};

class usual_messages : public testing::TestWithParam<const differential::rule_set*> {};

TEST_P(usual_messages, allocate_nothing_after_the_first_thousand) {
    constexpr int first_ones = 1000;
    constexpr int others = 3000;
    usual_mail mail;
    MailStructure parser;
    for (int count = 0; count < first_ones; ++count)
        parser.Fill(std::string_view(mail.next()), GetParam()->m_rules);
    for (int count = 0; count < others; ++count) {
        const std::string message = mail.next();
        const allocation_trap counter;
        parser.Fill(std::string_view(message), GetParam()->m_rules);
        ASSERT_EQ(counter.count(), 0U) << count << '\n' << message;
    }
}

TEST_P(usual_messages, give_the_trees_of_a_new_parser) {
    usual_mail mail;
    MailStructure parser;
    for (int count = 0; count < 300; ++count) {
        const std::string message = mail.next();
        MailStructure fresh;
        fresh.Fill(std::string_view(message), GetParam()->m_rules);
        parser.Fill(std::string_view(message), GetParam()->m_rules);
        ASSERT_EQ(full_tree_text(parser.m_root), full_tree_text(fresh.m_root)) << message;
    }
}

/// A parser object that holds nothing but records for later messages.
MailStructure with_spare_records(MailStructure::rules by) {
    usual_mail mail;
    MailStructure parser;
    for (int count = 0; count < 100; ++count) parser.Fill(std::string_view(mail.next()), by);
    parser.m_root = MailStructure::MimeObj();
    return parser;
}

TEST_P(usual_messages, leave_records_that_a_copy_does_not_have) {
    const std::size_t live = test_support::live_allocations();
    const MailStructure parser = with_spare_records(GetParam()->m_rules);
    const std::size_t held = test_support::live_allocations();
    EXPECT_GT(held, live);
    const MailStructure copy(parser);
    MailStructure assigned;
    assigned = parser;
    EXPECT_EQ(test_support::live_allocations(), held);
}

TEST_P(usual_messages, leave_records_that_an_assigned_copy_does_not_replace) {
    MailStructure parser = with_spare_records(GetParam()->m_rules);
    const std::size_t held = test_support::live_allocations();
    const MailStructure empty;
    parser = empty;
    EXPECT_EQ(test_support::live_allocations(), held);
    const MailStructure& same = parser;
    parser = same;
    EXPECT_EQ(test_support::live_allocations(), held);
}

TEST_P(usual_messages, leave_records_that_a_moved_object_takes_along) {
    const std::size_t live = test_support::live_allocations();
    MailStructure assigned;
    {
        MailStructure parser = with_spare_records(GetParam()->m_rules);
        const std::size_t held = test_support::live_allocations();
        MailStructure constructed(std::move(parser));
        parser = MailStructure(); // has nothing left to free
        EXPECT_EQ(test_support::live_allocations(), held);
        assigned = std::move(constructed);
        constructed = MailStructure();
        EXPECT_EQ(test_support::live_allocations(), held);
    }
    EXPECT_GT(test_support::live_allocations(), live);
    assigned = MailStructure();
    EXPECT_EQ(test_support::live_allocations(), live);
}

TEST_P(usual_messages, are_read_by_copies_and_moved_objects) {
    usual_mail mail;
    const std::size_t live = test_support::live_allocations();
    {
        std::vector<MailStructure> parsers(1);
        for (int count = 0; count < 100; ++count) {
            const std::string message = mail.next();
            MailStructure& parser = parsers[0];
            parser.Fill(std::string_view(message), GetParam()->m_rules);
            MailStructure copy = parser;
            const std::string other = mail.next();
            copy.Fill(std::string_view(other), GetParam()->m_rules);
            MailStructure fresh;
            fresh.Fill(std::string_view(other), GetParam()->m_rules);
            ASSERT_EQ(full_tree_text(copy.m_root), full_tree_text(fresh.m_root));
            if (count % 3 == 0) parser = copy;
            if (count % 3 == 1) parser = std::move(copy);
            if (count % 10 == 9) {
                MailStructure taken = std::move(parser);
                parser = MailStructure();
                parser = std::move(taken);
            }
        }
    }
    EXPECT_EQ(test_support::live_allocations(), live);
}

INSTANTIATE_TEST_SUITE_P(rules, usual_messages, testing::ValuesIn(differential::all_rule_sets),
                         differential::rule_set_name);

} // namespace
