// Rules that every tree obeys which Fill leaves behind, for any input of less than 4 GiB: where
// ranges lie in the input, and relative to other ranges of the entity, of its parent and of its
// siblings.

#ifndef FUZZ_TREE_RULES_H
#define FUZZ_TREE_RULES_H

#include <mail_structure.h>

#include <string_view>

namespace fuzz {

/// How the tree came about.
struct parse_facts {
    std::string_view m_input; // all bytes that the stream may hand out
    bool m_keep_text = false;
    bool m_has_memlimit = false;
    bool m_length_error = false; // then the last field of the innermost entity has no place
};

/// Ends the process unless every rule holds for every entity. Does not recurse; linear in tree and
/// input.
void require_tree_rules(const MailStructure& message, const parse_facts& facts);

} // namespace fuzz

#endif
