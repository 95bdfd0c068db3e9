// What holds for every tree that Fill leaves behind, whatever the input, as long as it is shorter
// than 4 GiB: where ranges lie in the input, in their entity's other ranges, in the parent's, and
// among siblings.

#ifndef FUZZ_TREE_RULES_H
#define FUZZ_TREE_RULES_H

#include <mail_structure.h>

#include <string_view>

namespace fuzz {

/// How the tree came about.
struct parse_facts {
    std::string_view m_input; // all that the stream could have given
    bool m_keep_text = false;
    bool m_has_memlimit = false;
    bool m_length_error =
        false; // the last field of the innermost open entity is then without a place
};

/// Ends the process unless every rule holds for every entity. Does not recurse; linear in tree and
/// input.
void require_tree_rules(const MailStructure& message, const parse_facts& facts);

} // namespace fuzz

#endif
