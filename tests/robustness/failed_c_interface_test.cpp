// The interface for C when memory runs out: each allocation of each call fails once, alone and with
// all that follow it. The failure is a code, the parser can be used again, and nothing leaks.

#include "differential/rule_sets.h"
#include "robustness/allocating_messages.h"
#include "robustness/failing_new.h"

#include <gtest/gtest.h>
#include <mail_structure_c.h>
#include <string>
#include <string_view>

namespace {

using test_support::allocating_message;
using test_support::allocation_trap;
using test_support::memory;

/// What the calls for one message have come to.
struct run_result {
    mail_structure_code m_code = MAIL_STRUCTURE_OK;
    bool m_has_sprung = false;
    std::size_t m_entities = 0;
    std::size_t m_fields = 0;
    std::size_t m_text_bytes = 0;
};

mail_structure_code feed(mail_structure_parser* parser, std::string_view bytes, int rules) {
    mail_structure_code code = mail_structure_begin(parser, rules);
    for (; code == MAIL_STRUCTURE_OK && !bytes.empty(); bytes.remove_prefix(1))
        code = mail_structure_feed(parser, bytes.data(), 1);
    return code == MAIL_STRUCTURE_OK ? mail_structure_finish(parser) : code;
}

/// Asks for the names of all entities and for a section that most messages have.
mail_structure_code find_sections(mail_structure_parser* parser, std::string_view bytes) {
    mail_structure_names names{};
    names.struct_bytes = sizeof names;
    mail_structure_section section{};
    section.struct_bytes = sizeof section;
    const mail_structure_code code = mail_structure_get_names(parser, &names);
    if (code != MAIL_STRUCTURE_OK) return code;
    const mail_structure_code found = mail_structure_find_section(
        parser, "HEADER.FIELDS (Subject)", 23, bytes.data(), bytes.size(), &section);
    return found == MAIL_STRUCTURE_NO_SECTION ? MAIL_STRUCTURE_OK : found;
}

/// Reads the message and lays its tree out. A message that the rules refuse has a tree too.
run_result run(mail_structure_parser* parser, std::string_view bytes, int rules, bool in_pieces,
               std::size_t failing, memory afterwards) {
    run_result result;
    mail_structure_tree tree{};
    tree.struct_bytes = sizeof tree;
    {
        const allocation_trap trap(failing, afterwards);
        result.m_code = in_pieces ? feed(parser, bytes, rules)
                                  : mail_structure_parse(parser, bytes.data(), bytes.size(), rules);
        if (result.m_code != MAIL_STRUCTURE_NO_MEMORY) {
            for (const mail_structure_code code :
                 {mail_structure_get_tree(parser, &tree), find_sections(parser, bytes)})
                if (code != MAIL_STRUCTURE_OK) result.m_code = code;
        }
        result.m_has_sprung = trap.has_sprung();
    }
    result.m_entities = tree.entity_count;
    result.m_fields = tree.field_count;
    result.m_text_bytes = tree.text_bytes;
    return result;
}

void run_all(const allocating_message& message, int rules, bool in_pieces, memory afterwards) {
    mail_structure_parser* const whole = mail_structure_new();
    const run_result wanted =
        run(whole, message.m_input, rules, in_pieces, allocation_trap::never, memory::comes_back);
    mail_structure_free(whole);
    bool goes_on = true;
    for (std::size_t failing = 0; goes_on; ++failing) {
        const std::size_t live_before = test_support::live_allocations();
        mail_structure_parser* const parser = mail_structure_new();
        ASSERT_NE(parser, nullptr);
        const run_result failed =
            run(parser, message.m_input, rules, in_pieces, failing, afterwards);
        goes_on = failed.m_has_sprung;
        // Sorting the sections of a boundary does without memory where there is none.
        if (failed.m_code != MAIL_STRUCTURE_NO_MEMORY) {
            ASSERT_EQ(failed.m_code, wanted.m_code) << message.m_name << ", allocation " << failing;
        }
        const run_result again = run(parser, message.m_input, rules, in_pieces,
                                     allocation_trap::never, memory::comes_back);
        ASSERT_EQ(again.m_code, wanted.m_code);
        ASSERT_EQ(again.m_entities, wanted.m_entities);
        ASSERT_EQ(again.m_fields, wanted.m_fields);
        ASSERT_EQ(again.m_text_bytes, wanted.m_text_bytes);
        mail_structure_free(parser);
        ASSERT_EQ(test_support::live_allocations(), live_before) << "leaked";
    }
}

class failed_c_interface : public testing::TestWithParam<const differential::rule_set*> {
protected:
    void run_messages(bool in_pieces) const {
        const int rules = GetParam()->m_rules == MailStructure::rules::standard
                              ? MAIL_STRUCTURE_STANDARD
                              : MAIL_STRUCTURE_CLASSIC;
        for (const allocating_message& message : test_support::allocating_messages(*GetParam())) {
            if (message.m_memlimit != 0xFFFFFFFF) continue; // set by a function that cannot fail
            run_all(message, rules, in_pieces, memory::comes_back);
            run_all(message, rules, in_pieces, memory::stays_out);
        }
    }
};

TEST_P(failed_c_interface, is_a_code_when_a_message_is_parsed) { run_messages(false); }

TEST_P(failed_c_interface, is_a_code_when_a_message_comes_in_pieces) { run_messages(true); }

TEST_P(failed_c_interface, is_null_when_a_parser_is_made) {
    const std::size_t live_before = test_support::live_allocations();
    mail_structure_parser* parser = nullptr;
    {
        const allocation_trap trap(0);
        parser = mail_structure_new();
    }
    EXPECT_EQ(parser, nullptr);
    mail_structure_free(parser);
    EXPECT_EQ(test_support::live_allocations(), live_before);
}

INSTANTIATE_TEST_SUITE_P(rules, failed_c_interface, testing::ValuesIn(differential::all_rule_sets),
                         [](const auto& one) { return std::string(one.param->m_name); });

} // namespace
