// The size of quoted-printable text, beside what the decoder makes of the same text.

#include "common/quoted_printable_size.h"
#include "common/transfer_decoding.h"
#include "support/repeated.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using test_support::repeated;

void expect_size_as_decoded(std::string_view text) {
    std::size_t bytes = 0;
    const bool is_damaged =
        decode(transfer_encoding::quoted_printable, text, [&bytes](std::string_view block) {
            bytes += block.size();
            return true;
        }).has_value();
    const quoted_printable_size size = quoted_printable_size_of(text);
    ASSERT_EQ(size.m_bytes, bytes) << '"' << text << '"';
    ASSERT_EQ(size.m_is_damaged, is_damaged) << '"' << text << '"';
}

TEST(quoted_printable_size, is_known_of_texts) {
    struct size_case {
        std::string_view m_text;
        std::size_t m_bytes;
        bool m_is_damaged;
    };
    for (const auto& [text, bytes, is_damaged] : {
             size_case{"", 0, false},
             size_case{"caf=C3=A9\r\n", 7, false},
             size_case{"one =\r\nline", 8, false},  // a soft line break
             size_case{"one = \t\nline", 8, false}, // with blanks in it
             size_case{"blanks \t \r\n", 8, false}, // at the end of a line
             size_case{"blanks =20  \n", 9, false}, // one that is encoded
             size_case{"1 = 1=", 5, true},          // an equals sign that stays
             size_case{"=\r=4", 4, true},           //
             size_case{"none", 4, false},
         }) {
        const quoted_printable_size size = quoted_printable_size_of(text);
        EXPECT_EQ(size.m_bytes, bytes) << text;
        EXPECT_EQ(size.m_is_damaged, is_damaged) << text;
    }
}

/// Every text of up to six of these characters.
TEST(quoted_printable_size, is_that_of_the_decoded_text) {
    constexpr std::string_view characters = "= \t\r\nA";
    constexpr std::size_t most = 6;
    std::array<std::size_t, most> chosen{};
    std::string text;
    for (std::size_t length = 0; length <= most; ++length) {
        chosen.fill(0);
        for (std::size_t place = 0; place != length;) {
            text.clear();
            for (std::size_t each = 0; each != length; ++each) text += characters[chosen[each]];
            expect_size_as_decoded(text);
            if (::testing::Test::HasFatalFailure()) return;
            for (place = 0; place != length && ++chosen[place] == characters.size(); ++place)
                chosen[place] = 0;
        }
    }
}

/// Digits in pairs, and signs with one digit or none.
TEST(quoted_printable_size, knows_digits) {
    for (const std::string_view text :
         {"=4", "=41", "=4g", "=g4", "=4=", "=aF=fA=00", "==41", "===41=", "=4\n=41 \n"})
        expect_size_as_decoded(text);
}

/// Pieces of every kind, at every place of the first blocks of a longer text.
TEST(quoted_printable_size, is_that_of_the_decoded_text_at_every_place) {
    const std::string text =
        repeated(3, "price =3D 20=E2=82=AC, one long line =\r\nand another=\n");
    for (const std::string_view piece :
         {"=", "=4", "=4g", "=g4", "=aF", "==41", " ", "\t", "\n", "\r", "\r\n", " \n", "\t \r\n",
          " \r", "= \n", "=\t\r\n", "=\r", "=\n=", " =20\n"}) {
        for (std::size_t at = 0; at <= text.size(); ++at) {
            expect_size_as_decoded(std::string(text).insert(at, piece));
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

TEST(quoted_printable_size, leaves_out_blanks_at_line_ends_of_any_length) {
    for (std::size_t length = 0; length < 200; ++length) {
        for (const std::string_view before : {"", "x", "=3D", "="}) {
            for (const std::string_view end : {"", "\n", "\r\n", "\r", "x"}) {
                const std::string blanks = std::string(before) + std::string(length, ' ');
                expect_size_as_decoded(blanks + std::string(end));
                expect_size_as_decoded(blanks + std::string(end) + std::string(100, 'y'));
                if (::testing::Test::HasFatalFailure()) return;
            }
        }
    }
}

} // namespace
