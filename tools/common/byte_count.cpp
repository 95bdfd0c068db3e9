// Reads digits and a unit; see the header.

#include "common/byte_count.h"

#include "common/ascii_case.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

/// The number of bytes in "", "K", "KiB", "KB" and so on; nothing for another text.
std::optional<std::uint64_t> unit_named(std::string_view text) {
    if (text.empty()) return 1;
    constexpr std::string_view letters = "kmg";
    const std::size_t place = letters.find(lower_case(text.front()));
    const std::string_view rest = text.substr(1);
    if (place == std::string_view::npos || !(rest.empty() || rest == "B" || rest == "iB"))
        return std::nullopt;
    const std::uint64_t step = rest == "B" ? 1000 : 1024;
    std::uint64_t unit = step;
    for (std::size_t power = 0; power < place; ++power) unit *= step;
    return unit;
}

} // namespace

std::optional<std::uint64_t> parse_byte_count(std::string_view text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::invalid_argument) return std::nullopt;
    const auto unit = unit_named({stop, static_cast<std::size_t>(end - stop)});
    if (!unit) return std::nullopt;
    if (error == std::errc::result_out_of_range || number > largest / *unit) return largest;
    return number * *unit;
}
