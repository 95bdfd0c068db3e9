// A hash of bytes that an attacker cannot foresee: SipHash-1-3 with a secret key of the process.
// The senders of messages choose the boundaries, so a hash without a key would let them choose
// which of the boundaries collide.

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_KEYED_HASH_H
#define MAIL_STRUCTURE_PARSER_STANDARD_KEYED_HASH_H

#include <cstdint>
#include <string_view>

namespace mail_structure_detail::standard {

/// The hash of the bytes. Linear. The first call draws the key; no call throws.
std::uint64_t keyed_hash(std::string_view bytes);

} // namespace mail_structure_detail::standard

#endif
