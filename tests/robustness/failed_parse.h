// What the tests share that parse a message while an allocation fails: the messages, and the check
// of what the parser object holds afterwards.

#ifndef TESTS_ROBUSTNESS_FAILED_PARSE_H
#define TESTS_ROBUSTNESS_FAILED_PARSE_H

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/allocating_messages.h"
#include "robustness/progress.h"
#include "support/parse.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

namespace test_support {

struct failed_parse_case {
    const differential::rule_set* m_by;
    allocating_message m_message;
    bool m_keep_text;
};

inline std::string name_of(const failed_parse_case& one) {
    return one.m_by->m_name + ('_' + one.m_message.m_name)
           + (one.m_keep_text ? "_keeping_text" : "");
}

/// How a failed test names the case.
inline void PrintTo(const failed_parse_case& one, std::ostream* out) { *out << name_of(one); }

/// Each message by each rule set, with kept text and without.
inline std::vector<failed_parse_case> failed_parse_cases() {
    std::vector<failed_parse_case> cases;
    for (const differential::rule_set* by : differential::all_rule_sets)
        for (const allocating_message& message : allocating_messages(*by))
            for (const bool keep_text : {false, true}) cases.push_back({by, message, keep_text});
    return cases;
}

class failed_parse : public testing::TestWithParam<failed_parse_case> {
protected:
    const differential::rule_set& by() const { return *GetParam().m_by; }
    const allocating_message& filled_with() const { return GetParam().m_message; }

    MailStructure new_message() const {
        MailStructure message;
        message.m_keep_text = GetParam().m_keep_text;
        return message;
    }

    /// Checks the tree that std::bad_alloc left behind: it holds what the lines brought that lie
    /// within so many bytes of the message. The last of them may have been taken in part only.
    std::string judged_after_bad_alloc(const MailStructure& message, std::size_t bytes) const {
        if (message.m_done) return "m_done is set";
        const std::size_t lines = m_steps.lines_within(bytes);
        if (lines == 0 && is_as_cleared(message)) return {}; // it failed before the first line
        const end_of_input end = by().m_rules == MailStructure::rules::standard
                                     ? end_of_input::ends_blocks
                                     : end_of_input::leaves_blocks_open;
        return progress_difference(message.m_root, m_steps.after(lines == 0 ? 0 : lines - 1).root(),
                                   m_steps.after(lines).root(), end);
    }

private:
    memory_limit m_limit{filled_with().m_memlimit};

protected:
    parse_steps m_steps{
        by(),
        filled_with().m_input,
        {GetParam().m_keep_text, filled_with().m_memlimit, filled_with().m_first_offset}};
};

} // namespace test_support

#endif
