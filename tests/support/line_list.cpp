#include "support/line_list.h"

#include <algorithm>
#include <cstddef>

namespace test_support {

std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

std::string joined(const std::vector<std::string_view>& lines) {
    std::string text;
    for (const std::string_view line : lines) text += line;
    return text;
}

} // namespace test_support
