#include "support/escape.h"

namespace test_support {
namespace {

void append_octal(std::string& result, unsigned char byte) {
    result += '\\';
    for (unsigned shift : {6U, 3U, 0U}) result += static_cast<char>('0' + ((byte >> shift) & 7U));
}

} // namespace

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '\n': result += "\\n"; break;
        case '\r': result += "\\r"; break;
        case '\t': result += "\\t"; break;
        case '"': result += "\\\""; break;
        case '\\': result += "\\\\"; break;
        default:
            if (c >= ' ' && c <= '~')
                result += c;
            else
                append_octal(result, static_cast<unsigned char>(c));
        }
    }
    return result;
}

} // namespace test_support
