// Parses a message given as text, and reports how the parse ended.

#ifndef TESTS_SUPPORT_PARSE_H
#define TESTS_SUPPORT_PARSE_H

#include <mail_structure.h>

#include "support/streams.h"

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace test_support {

/// What a host sets before the parse.
struct parse_options {
    bool m_keep_text = false;
    std::uint32_t m_memlimit = 0xFFFFFFFF;
    MailStructure::rules m_rules = MailStructure::rules::classic;
};

struct parse_outcome {
    MailStructure m_message;
    /// Empty after a normal return, else the exception that left Fill: "runtime_error: " and its
    /// text, "length_error", "bad_cast", "bad_alloc", "ios_failure" or "other".
    std::string m_error;
};

/// Sets the memory limit for header fields, which all parsers share, for as long as the object
/// lives.
class memory_limit {
public:
    explicit memory_limit(std::uint32_t bytes) : m_before(MailStructure::m_memlimit) {
        MailStructure::m_memlimit = bytes;
    }
    ~memory_limit() { MailStructure::m_memlimit = m_before; }
    memory_limit(const memory_limit&) = delete;
    memory_limit& operator=(const memory_limit&) = delete;

private:
    std::uint32_t m_before;
};

/// Fills the object from the stream. Returns the exception that left Fill, in the words above. A
/// tree whose offsets begin at 0 is then checked by the rules of support/tree_rules.h: a broken
/// rule is a failure of the test that runs. The functions parse do the same.
/// @param first_offset  offset of the first byte, for tests of the wrap
/// @param by            the rules that the message is taken apart by
std::string fill(MailStructure& message, std::istream& in, std::uint32_t first_offset = 0,
                 MailStructure::rules by = MailStructure::rules::classic);

/// The same for a text that is handed in in the given way.
std::string fill(MailStructure& message, std::string_view text, const delivery& way,
                 std::uint32_t first_offset = 0,
                 MailStructure::rules by = MailStructure::rules::classic);

/// Fails the test that runs if the tree that Fill left behind breaks a rule of
/// support/tree_rules.h.
/// @param error    in the words above; a tree that lack of memory broke off is not checked
/// @param options  as they were when Fill began
/// @param input    all bytes that the stream could hand out, if they are known
void check_filled_tree(const MailStructure& message, const std::string& error,
                       const parse_options& options, std::optional<std::string_view> input);

parse_outcome parse(std::istream& in, const parse_options& options = {});
/// The text as one stream that hands out all bytes at once.
parse_outcome parse(std::string_view input, const parse_options& options = {});
parse_outcome parse(std::string_view input, const delivery& way, const parse_options& options);

/// The tree as tree_text gives it, then, if an exception left Fill, a line "! " and m_error.
std::string outcome_text(const parse_outcome& outcome);
/// The same with full_tree_text.
std::string full_outcome_text(const parse_outcome& outcome);

} // namespace test_support

#endif
