// Equality of two trees of the library, for copies and for trees of a second parse.

#ifndef FUZZ_SAME_TREE_H
#define FUZZ_SAME_TREE_H

#include <mail_structure.h>

#include <cstdint>

namespace fuzz {

enum class parents : std::uint8_t { ignored, equal };

/// Ends the process unless all members of all entities are equal. Parent pointers of a copy are
/// those of its original; those of a second parse may differ. Does not recurse.
void require_same_tree(const MailStructure::MimeObj& one, const MailStructure::MimeObj& other,
                       parents pointers);

} // namespace fuzz

#endif
