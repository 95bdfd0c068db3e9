#include "support/parse_choices.h"

#include "support/line_list.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace test_support {
namespace {

/// What the fields of the message come to for the memory limit, as far as one can tell without
/// parsing it: after some of its fields, give or take a little.
std::uint32_t limit_near_the_estimate(const std::string& input, seeded_random& random) {
    std::vector<std::size_t> estimates{0};
    for (const std::string_view line : lines_of(input)) {
        if (line.find(':') == std::string_view::npos && line.front() != ' ') continue;
        if (line.front() != ' ' && line.front() != '\t')
            estimates.push_back(estimates.back() + 64 + line.size());
        for (std::size_t at = line.find(';'); at != std::string_view::npos;
             at = line.find(';', at + 1)) {
            const std::size_t end = std::min(line.find_first_of(";\r\n", at + 1), line.size());
            if (end - at > 3) estimates.push_back(estimates.back() + 64 + (end - at - 1) - 1);
        }
    }
    std::size_t nearby = random.one_of(estimates);
    nearby += random.below(7);
    return static_cast<std::uint32_t>(nearby < 3 ? 0 : nearby - 3);
}

} // namespace

std::uint32_t some_memlimit(const std::string& input, seeded_random& random) {
    switch (random.below(8)) {
    case 0: return 0;
    case 1: return static_cast<std::uint32_t>(random.below(400));
    case 2:
    case 3: return limit_near_the_estimate(input, random);
    default: return 0xFFFFFFFF;
    }
}

std::uint32_t some_first_offset(const std::string& input, seeded_random& random) {
    if (!random.one_in(5)) return 0;
    if (random.one_in(10)) return static_cast<std::uint32_t>(random.next());
    std::size_t bytes_before = random.below(input.size() + 2);
    if (!random.one_in(4)) {
        const std::size_t line_feed = input.find('\n', bytes_before);
        if (line_feed != std::string::npos) bytes_before = line_feed + 1;
    }
    return 0U - static_cast<std::uint32_t>(bytes_before);
}

} // namespace test_support
