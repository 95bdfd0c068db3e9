// The bytes that a stream buffer holds ready, looked at where they lie.

#ifndef MAIL_STRUCTURE_PARSER_LINES_GET_AREA_H
#define MAIL_STRUCTURE_PARSER_LINES_GET_AREA_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <streambuf>
#include <string_view>

namespace mail_structure_detail {

/// Reaches the protected get area of any std::streambuf: a class derived from std::streambuf may
/// name the members for it. Nothing here calls a virtual function, so nothing is read and nothing
/// throws.
class get_area : private std::streambuf {
public:
    /// The bytes that are ready; empty when the buffer would have to be refilled or has no get
    /// area. Valid until the next call of a member of the buffer.
    static std::string_view bytes(const std::streambuf& buffer) noexcept {
        const char* begin = (buffer.*&get_area::gptr)();
        return {begin, static_cast<std::size_t>((buffer.*&get_area::egptr)() - begin)};
    }

    /// The number of bytes that are ready or have been taken since the buffer was filled.
    static std::size_t size(const std::streambuf& buffer) noexcept {
        return static_cast<std::size_t>((buffer.*&get_area::egptr)()
                                        - (buffer.*&get_area::eback)());
    }

    /// Moves past that many of the bytes that are ready.
    static void consume(std::streambuf& buffer, std::size_t count) noexcept {
        constexpr auto most = static_cast<std::size_t>(std::numeric_limits<int>::max());
        while (count > 0) {
            const std::size_t step = std::min(count, most);
            (buffer.*&get_area::gbump)(static_cast<int>(step));
            count -= step;
        }
    }
};

} // namespace mail_structure_detail

#endif
