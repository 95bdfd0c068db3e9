// How the decoders meet damage.

#ifndef TOOLS_COMMON_STRICTNESS_H
#define TOOLS_COMMON_STRICTNESS_H

#include <cstdint>

/// What to do about damage: to end at what cannot be decoded, or to pass over it.
enum class strictness : std::uint8_t { strict, lenient };

#endif
