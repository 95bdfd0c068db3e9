// Decodes base64 with nettle, and quoted-printable with code of its own; see the header.

#include "common/transfer_decoding.h"

#include "common/ascii_case.h"
#include "common/hex_digit.h"

#include <algorithm>
#include <array>
#include <nettle/base64.h>

namespace {

constexpr std::size_t block_bytes = 65536;

/// Decodes base64 a block at a time.
class base64_decoder {
public:
    base64_decoder(std::string_view text, const byte_sink& sink) : m_text(text), m_sink(sink) {
        ::base64_decode_init(&m_context);
    }

    std::optional<decoding_damage> run() {
        for (std::size_t begin = 0; begin < m_text.size(); begin += block_bytes) {
            const std::string_view block = m_text.substr(begin, block_bytes);
            const base64_decode_ctx context_before = m_context;
            std::size_t count = m_decoded.size();
            if (::base64_decode_update(&m_context, &count, m_decoded.data(), block.size(),
                                       block.data())
                == 0) {
                m_context = context_before;
                return decode_as_far_as_it_goes(begin, block);
            }
            if (!hand_over(count)) return std::nullopt;
        }
        if (::base64_decode_final(&m_context) != 0) return std::nullopt;
        return decoding_damage{"base64 ends within a group of four characters", m_text.size()};
    }

private:
    bool hand_over(std::size_t count) {
        return count == 0 || m_sink({reinterpret_cast<const char*>(m_decoded.data()), count});
    }

    /// Decodes byte by byte, to find the one that is wrong.
    std::optional<decoding_damage> decode_as_far_as_it_goes(std::size_t begin,
                                                            std::string_view block) {
        std::size_t decoded = 0;
        for (std::size_t at = 0; at < block.size(); ++at) {
            const int count =
                ::base64_decode_single(&m_context, m_decoded.data() + decoded, block[at]);
            if (count < 0) {
                hand_over(decoded);
                return decoding_damage{what_is_wrong_with(block[at]), begin + at};
            }
            decoded += static_cast<std::size_t>(count);
        }
        return std::nullopt; // cannot happen: the block as a whole has failed
    }

    std::string what_is_wrong_with(char c) const {
        if (c == '=') return "misplaced base64 padding, or bits before it that should be 0";
        return m_context.padding != 0 ? "text behind the base64 padding" : "not a base64 character";
    }

    std::string_view m_text;
    const byte_sink& m_sink;
    base64_decode_ctx m_context{};
    std::array<std::uint8_t, BASE64_DECODE_LENGTH(block_bytes)> m_decoded{};
};

bool is_blank(char c) { return c == ' ' || c == '\t'; }

/// Decodes quoted-printable, and gathers the decoded bytes in blocks.
class quoted_printable_decoder {
public:
    quoted_printable_decoder(std::string_view text, const byte_sink& sink)
        : m_text(text), m_sink(sink) {
        m_decoded.reserve(block_bytes);
    }

    std::optional<decoding_damage> run() {
        while (m_at < m_text.size() && m_wanted) {
            const std::size_t plain_end =
                std::min(m_text.find_first_of("= \t", m_at), m_text.size());
            put(m_text.substr(m_at, plain_end - m_at));
            m_at = plain_end;
            if (m_at == m_text.size()) break;
            if (m_text[m_at] == '=')
                take_equals_sign();
            else
                take_blanks();
        }
        flush();
        return m_wanted ? m_damage : std::nullopt;
    }

private:
    /// The length of the line end at that offset; 0 if there is none. The end of the text does not
    /// count as one.
    std::size_t line_end_at(std::size_t at) const {
        if (m_text.substr(at, 1) == "\n") return 1;
        return m_text.substr(at, 2) == "\r\n" ? 2 : 0;
    }

    std::size_t blanks_end(std::size_t at) const {
        while (at < m_text.size() && is_blank(m_text[at])) ++at;
        return at;
    }

    /// Blanks are text, unless they end a line.
    void take_blanks() {
        const std::size_t end = blanks_end(m_at);
        if (end != m_text.size() && line_end_at(end) == 0) put(m_text.substr(m_at, end - m_at));
        m_at = end;
    }

    void take_equals_sign() {
        const std::size_t after = m_at + 1;
        if (const std::optional<char> byte = hex_byte(m_text.substr(after))) {
            put({&*byte, 1});
            m_at += 3;
            return;
        }
        const std::size_t end = blanks_end(after);
        if (const std::size_t line_end = line_end_at(end); line_end != 0 || end == m_text.size()) {
            m_at = end + line_end; // a soft line break
            return;
        }
        if (!m_damage)
            m_damage = decoding_damage{
                "an equals sign without two hexadecimal digits or a line end", m_at};
        put(m_text.substr(m_at, 1));
        ++m_at;
    }

    void put(std::string_view decoded) {
        while (!decoded.empty() && m_wanted) {
            const std::string_view fits = decoded.substr(0, block_bytes - m_decoded.size());
            m_decoded += fits;
            decoded.remove_prefix(fits.size());
            if (m_decoded.size() == block_bytes) flush();
        }
    }

    void flush() {
        if (m_wanted && !m_decoded.empty()) m_wanted = m_sink(m_decoded);
        m_decoded.clear();
    }

    std::string_view m_text;
    const byte_sink& m_sink;
    std::size_t m_at = 0;
    bool m_wanted = true; // the sink takes more
    std::string m_decoded;
    std::optional<decoding_damage> m_damage;
};

} // namespace

std::optional<transfer_encoding> transfer_encoding_named(std::string_view name) {
    for (const std::string_view plain : {"", "7bit", "8bit", "binary"})
        if (equal_ignoring_case(name, plain)) return transfer_encoding::none;
    if (equal_ignoring_case(name, "base64")) return transfer_encoding::base64;
    if (equal_ignoring_case(name, "quoted-printable")) return transfer_encoding::quoted_printable;
    return std::nullopt;
}

std::optional<decoding_damage> decode(transfer_encoding encoding, std::string_view text,
                                      const byte_sink& sink) {
    switch (encoding) {
    case transfer_encoding::base64: return base64_decoder(text, sink).run();
    case transfer_encoding::quoted_printable: return quoted_printable_decoder(text, sink).run();
    case transfer_encoding::none: break;
    }
    if (!text.empty()) sink(text);
    return std::nullopt;
}
