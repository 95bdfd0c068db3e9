// The digests of messages and bodies, which come in pieces of any size.

#include "scan/pipeline/message_digests.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

std::string sha256(std::string_view text) {
    digest all;
    all.add(text);
    return all.text();
}

/// Expects the digests of the two texts, however the message is cut.
void expect(const std::string& header_block, const std::string& body) {
    const std::string message = header_block + body;
    for (std::size_t piece = 1; piece <= message.size() + 1; ++piece) {
        message_digester digester;
        for (std::size_t at = 0; at < message.size(); at += piece)
            digester.add(std::string_view(message).substr(at, piece));
        const message_digests found = digester.finish();
        EXPECT_EQ(found.m_message, sha256(message)) << message;
        EXPECT_EQ(found.m_body, sha256(body)) << message << " in pieces of " << piece;
    }
}

TEST(message_digests, take_the_body_from_the_first_empty_line_on) {
    expect("A: b\n\n", "body\n\nof lines\n");
    expect("A: b\r\nC: d\r\n\r\n", "body\r\n\r\n");
    expect("A: b\n \n\r\r\n", "\n");
    expect("\n", "A: b\n\n");
    expect("A: b\n\n", "");
    expect("A: b\n", "");
    expect("A: b\r", "");
    expect("", "");
}

TEST(message_digests, of_known_texts) {
    EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(md5_text("<CALckR-a8UDkRjO4xJyjd_s0GPxQWw@mail.gmail.com>"),
              "1de319c276884bd0c9e2f1621ada26cc");
}

} // namespace
