#include "support/parse.h"

#include "support/fill_unchecked.h"
#include "support/tree_rules.h"
#include "support/tree_text.h"

#include <gtest/gtest.h>
#include <sstream>

namespace test_support {
namespace {

std::string with_error(std::string text, const std::string& error) {
    if (!error.empty()) text.append("! ").append(error).append("\n");
    return text;
}

/// Whether lines end as check_tree knows it.
bool has_usual_lines(const std::istream& in, const std::string& error) {
    return error != "bad_cast" && in.widen('\n') == '\n';
}

std::string fill_and_check(MailStructure& message, std::istream& in, MailStructure::rules by,
                           std::optional<std::string_view> input) {
    const parse_options options{message.m_keep_text, MailStructure::m_memlimit, by};
    const std::string error = fill_unchecked(message, in, 0, by);
    if (has_usual_lines(in, error)) check_filled_tree(message, error, options, input);
    return error;
}

} // namespace

void check_filled_tree(const MailStructure& message, const std::string& error,
                       const parse_options& options, std::optional<std::string_view> input) {
    if (error == "bad_alloc") return; // the tree may be half built
    const std::string broken =
        check_tree(message, {options.m_rules, input, options.m_keep_text,
                             options.m_memlimit != 0xFFFFFFFF, error == "length_error"});
    EXPECT_EQ(broken, "");
}

std::string fill(MailStructure& message, std::istream& in, std::uint32_t first_offset,
                 MailStructure::rules by) {
    if (first_offset != 0) return fill_unchecked(message, in, first_offset, by);
    return fill_and_check(message, in, by, std::nullopt);
}

std::string fill(MailStructure& message, std::string_view text, const delivery& way,
                 std::uint32_t first_offset, MailStructure::rules by) {
    const parse_options options{message.m_keep_text, MailStructure::m_memlimit, by};
    std::string error = fill_unchecked(message, text, way, first_offset, by);
    if (first_offset == 0) check_filled_tree(message, error, options, text);
    return error;
}

parse_outcome parse(std::istream& in, const parse_options& options) {
    const memory_limit limit(options.m_memlimit);
    parse_outcome outcome;
    outcome.m_message.m_keep_text = options.m_keep_text;
    outcome.m_error = fill_and_check(outcome.m_message, in, options.m_rules, std::nullopt);
    return outcome;
}

parse_outcome parse(std::string_view input, const parse_options& options) {
    const memory_limit limit(options.m_memlimit);
    std::istringstream in{std::string(input)};
    parse_outcome outcome;
    outcome.m_message.m_keep_text = options.m_keep_text;
    outcome.m_error = fill_and_check(outcome.m_message, in, options.m_rules, input);
    return outcome;
}

parse_outcome parse(std::string_view input, const delivery& way, const parse_options& options) {
    const memory_limit limit(options.m_memlimit);
    parse_outcome outcome;
    outcome.m_message.m_keep_text = options.m_keep_text;
    outcome.m_error = fill(outcome.m_message, input, way, 0, options.m_rules);
    return outcome;
}

std::string outcome_text(const parse_outcome& outcome) {
    return with_error(tree_text(outcome.m_message.m_root), outcome.m_error);
}

std::string full_outcome_text(const parse_outcome& outcome) {
    return with_error(full_tree_text(outcome.m_message.m_root), outcome.m_error);
}

} // namespace test_support
