// The front of a text that is sound base64: where it ends, and that what lies behind it decodes to
// the rest.

#include "common/base64_front.h"
#include "common/transfer_decoding.h"
#include "support/repeated.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using test_support::repeated;

struct size_and_damage {
    std::size_t m_bytes = 0;
    bool m_is_damaged = false;
    bool operator==(const size_and_damage&) const = default;
};

size_and_damage decoded_from(std::string_view text, std::size_t bytes_before) {
    size_and_damage result = {bytes_before, false};
    result.m_is_damaged = decode(transfer_encoding::base64, text, [&](std::string_view bytes) {
                              result.m_bytes += bytes.size();
                              return true;
                          }).has_value();
    return result;
}

size_and_damage decoded(std::string_view text) { return decoded_from(text, 0); }

size_and_damage decoded_with_front(std::string_view text) {
    const base64_front front = base64_front_of(text);
    return decoded_from(text.substr(front.m_bytes), front.m_decoded_bytes);
}

TEST(base64_front, ends_behind_a_whole_group) {
    struct front_case {
        std::string m_text;
        std::size_t m_bytes;
        std::size_t m_decoded_bytes;
    };
    for (const auto& [text, bytes, decoded_bytes] : {
             front_case{"", 0, 0},
             front_case{std::string(63, 'A'), 0, 0},             // less than a block
             front_case{std::string(64, 'A'), 64, 48},           //
             front_case{std::string(127, 'A'), 64, 48},          //
             front_case{std::string(128, '/'), 128, 96},         //
             front_case{' ' + std::string(63, 'A'), 61, 45},     // three digits of a group
             front_case{std::string(62, '+') + "\r\n", 60, 45},  // two digits of a group
             front_case{std::string(61, '9') + " \r\n", 60, 45}, // one digit
             front_case{std::string(64, ' '), 64, 0},            //
             front_case{std::string(63, 'z') + '=' + "AAAA", 0, 0},
         }) {
        const base64_front front = base64_front_of(text);
        EXPECT_EQ(front.m_bytes, bytes) << text;
        EXPECT_EQ(front.m_decoded_bytes, decoded_bytes) << text;
    }
}

/// Every byte, at every place of the first blocks, beside what the decoder makes of the whole text.
TEST(base64_front, leaves_what_decides_the_rest) {
    const std::string lines = repeated(5, "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVphYmNkZWZn\r\n");
    for (int byte = 0; byte < 256; ++byte) {
        for (std::size_t at = 0; at < 150; ++at) {
            std::string text = lines;
            text[at] = static_cast<char>(byte);
            ASSERT_EQ(decoded_with_front(text), decoded(text)) << "byte " << byte << " at " << at;
        }
    }
}

TEST(base64_front, may_be_followed_by_any_end) {
    const std::string lines = repeated(4, "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVphYmNkZWZn\n");
    for (std::size_t length = 0; length < lines.size(); ++length) {
        for (const char* const end : {"", "=", "==", "===", "\n", "=\n=\n", "QUJD", "!"}) {
            const std::string text = lines.substr(0, length) + end;
            ASSERT_EQ(decoded_with_front(text), decoded(text)) << length << end;
        }
    }
}

} // namespace
