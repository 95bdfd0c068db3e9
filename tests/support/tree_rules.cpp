#include "support/tree_rules.h"

#include "support/tree_ranges.h"

#include <vector>

namespace test_support {

std::string check_tree(const MailStructure& message, const parse_facts& facts) {
    const bool is_standard = facts.m_rules == MailStructure::rules::standard;
    std::vector<visited_entity> waiting{{&message.m_root, nullptr, true}};
    while (!waiting.empty()) {
        const visited_entity visited = waiting.back();
        const MailStructure::MimeObj& of = *visited.m_entity;
        waiting.pop_back();
        try {
            if (is_standard)
                check_standard_entity(visited, facts);
            else
                check_classic_entity(visited, facts);
        } catch (const broken_rule& broken) {
            return std::string(broken.m_rule) + ", but not for the entity whose header block is "
                   + std::to_string(of.m_header_beg) + "+" + std::to_string(of.m_header_len);
        }
        for (const MailStructure::MimeObj& child : of.m_children)
            waiting.push_back({&child, &of, visited.m_in_place && &child == &of.m_children.back()});
    }
    return {};
}

} // namespace test_support
