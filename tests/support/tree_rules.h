// Rules that every tree obeys which Fill leaves behind, for any input of less than 4 GiB: where
// ranges lie in the input, and relative to other ranges of the entity, of its parent and of its
// siblings.

#ifndef TESTS_SUPPORT_TREE_RULES_H
#define TESTS_SUPPORT_TREE_RULES_H

#include <mail_structure.h>

#include <optional>
#include <string>
#include <string_view>

namespace test_support {

/// How the tree came about.
struct parse_facts {
    MailStructure::rules m_rules = MailStructure::rules::classic;
    /// All bytes that the stream could hand out. Rules that look at the bytes are left out where
    /// they are not known.
    std::optional<std::string_view> m_input;
    bool m_keep_text = false;
    bool m_has_memlimit = false;
    bool m_length_error = false; // then the last field of the innermost entity has no place
    /// Fill has read all of the input, and no allocation has failed.
    bool m_all_read = false;
};

/// The rule that the tree breaks, with the place in the input where the entity begins; "" if every
/// rule holds for every entity. Does not recurse; linear in tree and input.
std::string check_tree(const MailStructure& message, const parse_facts& facts);

} // namespace test_support

#endif
