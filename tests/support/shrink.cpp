#include "support/shrink.h"

#include "support/line_list.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace test_support {
namespace {

using question = std::function<bool(const std::string&)>;

constexpr std::size_t most_attempts = 20000;

/// Cuts the message into pieces and tries to leave out runs of them, long runs first.
/// @return whether anything could be left out
template <typename cutter>
bool leave_out_pieces(std::string& message, const question& fails, std::size_t& attempts,
                      cutter pieces_of) {
    bool smaller = false;
    std::size_t run = pieces_of(message).size();
    while (run > 0) {
        bool left_out = false;
        for (std::size_t first = 0; attempts < most_attempts;) {
            std::vector<std::string_view> pieces = pieces_of(message);
            if (first >= pieces.size()) break;
            const std::size_t last = std::min(first + run, pieces.size());
            pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(first),
                         pieces.begin() + static_cast<std::ptrdiff_t>(last));
            std::string attempt = joined(pieces);
            ++attempts;
            if (fails(attempt)) {
                message = std::move(attempt);
                left_out = true;
            } else {
                first += run;
            }
        }
        smaller = smaller || left_out;
        if (!left_out || run > 1) run /= 2;
    }
    return smaller;
}

std::vector<std::string_view> bytes_of(std::string_view text) {
    std::vector<std::string_view> bytes;
    for (std::size_t i = 0; i < text.size(); ++i) bytes.push_back(text.substr(i, 1));
    return bytes;
}

} // namespace

std::string shrunk(std::string message, const question& fails) {
    std::size_t attempts = 0;
    bool smaller = true;
    while (smaller && attempts < most_attempts) {
        smaller = leave_out_pieces(message, fails, attempts, lines_of);
        smaller = leave_out_pieces(message, fails, attempts, bytes_of) || smaller;
    }
    return message;
}

} // namespace test_support
