// The structure that the findings are based on is the one that the parser finds.

#include <mail_structure.h>

#include "findings/message_check.h"
#include "findings/message_lines.h"
#include "findings/reporter.h"
#include "support/escape.h"
#include "support/standard_message_generator.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace detail = mail_structure_detail::findings;

/// Each entity with lines, as "DEPTH OFFSET ", in the order in which they begin; then how many
/// entities there are.
std::string outline_of_parser(std::string_view message) {
    MailStructure filled;
    filled.Fill(message, MailStructure::rules::standard);
    struct waiting_entity {
        const MailStructure::MimeObj* m_entity;
        std::size_t m_depth;
    };
    std::string text;
    std::size_t count = 0;
    std::vector<waiting_entity> waiting{{&filled.m_root, 0}};
    while (!waiting.empty()) {
        const waiting_entity next = waiting.back();
        waiting.pop_back();
        ++count;
        if (next.m_entity->m_header_len > 0)
            text += std::to_string(next.m_depth) + ' ' + std::to_string(next.m_entity->m_header_beg)
                    + '\n';
        const auto& children = next.m_entity->m_children;
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            waiting.push_back({&*child, next.m_depth + 1});
    }
    return text + std::to_string(count);
}

std::string outline_of_check(std::string_view message) {
    const detail::reporter nobody([](void*, const mail_findings::finding&) {}, nullptr);
    detail::message_check check(nobody);
    detail::message_lines lines(message);
    detail::message_line line;
    std::string text;
    while (lines.next(line)) {
        const std::size_t depth = check.open().size() - 1;
        check.take(line);
        if (depth >= check.open().size()) continue;
        const detail::open_entity& entity = check.open()[depth];
        if (entity.m_has_lines && entity.m_begin.m_offset == line.m_offset)
            text += std::to_string(depth) + ' ' + std::to_string(line.m_offset) + '\n';
    }
    check.end();
    return text + std::to_string(check.entities());
}

TEST(message_check, follows_generated_messages_as_the_parser_does) {
    constexpr std::uint64_t messages = 20000;
    for (std::uint64_t seed = 0; seed < messages; ++seed) {
        const std::string message = test_support::generate_standard_message(seed).m_input;
        ASSERT_EQ(outline_of_check(message), outline_of_parser(message))
            << "seed " << seed << ": " << test_support::escaped(message);
    }
}

} // namespace
