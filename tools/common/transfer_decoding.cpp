// Decodes base64 with nettle where it must be sound, and with code of its own where it may be
// damaged; the others with code of its own. See the header.

#include "common/transfer_decoding.h"

#include "common/ascii_case.h"
#include "common/character_class.h"
#include "common/hex_digit.h"

#include <algorithm>
#include <array>
#include <nettle/base64.h>
#include <vector>

namespace {

constexpr std::size_t block_bytes = 65536;

/// Decodes base64 a block at a time.
class base64_decoder {
public:
    base64_decoder(std::string_view text, const byte_sink& sink)
        : m_text(text), m_sink(sink),
          m_decoded(BASE64_DECODE_LENGTH(std::min(text.size(), block_bytes))) {
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
    std::vector<std::uint8_t> m_decoded;
};

/// Gathers decoded bytes and hands them to a sink in blocks, until that wants no more.
class block_gatherer {
public:
    /// @param most  no more bytes than this come
    block_gatherer(const byte_sink& sink, std::size_t most) : m_sink(sink) {
        m_block.reserve(std::min(most, block_bytes));
    }

    bool is_wanted() const { return m_wanted; }

    void put(std::string_view decoded) {
        while (!decoded.empty() && m_wanted) {
            const std::string_view fits = decoded.substr(0, block_bytes - m_block.size());
            m_block += fits;
            decoded.remove_prefix(fits.size());
            if (m_block.size() == block_bytes) flush();
        }
    }

    void flush() {
        if (m_wanted && !m_block.empty()) m_wanted = m_sink(m_block);
        m_block.clear();
    }

private:
    const byte_sink& m_sink;
    bool m_wanted = true; // the sink takes more
    std::string m_block;
};

/// The first damage, and the count of the bytes at fault.
class damage_counter {
public:
    void add(std::string_view what, std::size_t offset, std::size_t bytes = 1) {
        if (bytes == 0) return;
        if (!m_damage) m_damage = decoding_damage{std::string(what), offset, 0};
        m_damage->m_bytes += bytes;
    }
    const std::optional<decoding_damage>& damage() const { return m_damage; }

private:
    std::optional<decoding_damage> m_damage;
};

/// The six bits that a character of base64 stands for; no_digit for any other.
constexpr std::uint8_t no_digit = 64;
constexpr std::array<std::uint8_t, 256> values_of_characters() {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::array<std::uint8_t, 256> values{};
    values.fill(no_digit);
    std::uint8_t value = 0;
    for (const char digit : digits) values[static_cast<unsigned char>(digit)] = value++;
    return values;
}
constexpr std::array<std::uint8_t, 256> base64_digits = values_of_characters();

std::uint8_t base64_digit(char c) { return base64_digits[static_cast<unsigned char>(c)]; }

/// Decodes what it can of base64, and counts what it passes over.
class lenient_base64_decoder {
public:
    lenient_base64_decoder(std::string_view text, const byte_sink& sink)
        : m_text(text), m_decoded(sink, text.size()) {}

    std::optional<decoding_damage> run() {
        while (m_at < m_text.size() && m_decoded.is_wanted()) {
            const char c = m_text[m_at];
            if (const std::uint8_t digit = base64_digit(c); digit != no_digit) {
                take_digit(digit);
            } else if (c == '=') {
                take_padding();
            } else {
                if (!is_white_space(c)) m_damage.add("not a base64 character", m_at);
                ++m_at;
            }
        }
        end_group();
        m_decoded.flush();
        return m_decoded.is_wanted() ? m_damage.damage() : std::nullopt;
    }

private:
    void take_digit(std::uint8_t digit) {
        if (m_digits == 0) m_group_begin = m_at;
        m_damage.add("misplaced base64 padding", m_padding_begin, m_paddings);
        m_paddings = 0;
        m_bits = m_bits << 6 | digit;
        ++m_at;
        if (++m_digits == 4) put_group();
    }

    /// Hands over the bytes that the digits of the group make, and begins a new group.
    void put_group() {
        std::array<char, 3> bytes{};
        const std::uint32_t bits = m_bits << (6 * (4 - m_digits));
        for (std::size_t at = 0; at < bytes.size(); ++at)
            bytes[at] = static_cast<char>(bits >> (16 - 8 * at) & 0xFF);
        m_decoded.put({bytes.data(), m_digits * 3 / 4});
        m_bits = m_digits = m_paddings = 0;
    }

    void take_padding() {
        const bool belongs = m_digits >= 2;
        if (!belongs) m_damage.add("misplaced base64 padding", m_at);
        if (m_paddings == 0) m_padding_begin = m_at;
        ++m_at;
        if (!belongs || m_digits + ++m_paddings != 4) return;
        if ((m_bits & (m_digits == 2 ? 0xFU : 0x3U)) != 0)
            m_damage.add("bits before the base64 padding that should be 0", m_padding_begin);
        put_group();
        skip_to_base64_line();
    }

    /// Passes over the rest of the line and all that follows, up to a line that is base64.
    void skip_to_base64_line() {
        while (m_at < m_text.size() && !is_base64_line()) {
            for (bool in_line = true; in_line && m_at < m_text.size(); ++m_at) {
                in_line = m_text[m_at] != '\n';
                if (!is_white_space(m_text[m_at]))
                    m_damage.add("text behind the base64 padding", m_at);
            }
        }
    }

    /// Whether the line from here on is base64 up to its end, or up to its padding.
    bool is_base64_line() const {
        std::size_t end = m_at;
        while (end < m_text.size() && base64_digit(m_text[end]) != no_digit) ++end;
        const std::size_t digits = end - m_at;
        if (digits == 0) return false;
        if (end < m_text.size() && m_text[end] == '=') return digits % 4 >= 2;
        while (end < m_text.size() && (is_blank(m_text[end]) || m_text[end] == '\r')) ++end;
        return digits % 4 == 0 && (end == m_text.size() || m_text[end] == '\n');
    }

    /// Ends the last group. If the text ends within it, its digits still give their whole bytes.
    void end_group() {
        if (m_digits == 0) return;
        m_damage.add("base64 ends within a group of four characters", m_group_begin,
                     m_digits + m_paddings);
        put_group();
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    block_gatherer m_decoded;
    damage_counter m_damage;
    // The group of four characters that is being read:
    std::size_t m_group_begin = 0;
    std::size_t m_padding_begin = 0;
    std::uint32_t m_bits = 0;
    std::uint32_t m_digits = 0;
    std::uint32_t m_paddings = 0;
};

class quoted_printable_decoder {
public:
    quoted_printable_decoder(std::string_view text, const byte_sink& sink)
        : m_text(text), m_decoded(sink, text.size()) {}

    std::optional<decoding_damage> run() {
        while (m_at < m_text.size() && m_decoded.is_wanted()) {
            const std::size_t line_end = std::min(m_text.find('\n', m_at), m_text.size());
            take_line(line_end);
        }
        m_decoded.flush();
        return m_decoded.is_wanted() ? m_damage.damage() : std::nullopt;
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

    /// Decodes the rest of a line.
    /// @param line_end  the offset of its LF, or the end of the text
    void take_line(std::size_t line_end) {
        const std::string_view up_to_line_end = m_text.substr(0, line_end);
        while (m_at < line_end && m_decoded.is_wanted()) {
            const std::size_t equals_sign = up_to_line_end.find('=', m_at);
            if (equals_sign == std::string_view::npos) break;
            m_decoded.put(m_text.substr(m_at, equals_sign - m_at));
            m_at = equals_sign;
            take_equals_sign();
        }
        if (m_at <= line_end) take_end_of_line(line_end); // else a soft line break took the LF
    }

    /// Takes the rest of a line, which holds no equals sign. Blanks are text, unless they end it.
    void take_end_of_line(std::size_t line_end) {
        const bool has_cr =
            line_end > m_at && line_end < m_text.size() && m_text[line_end - 1] == '\r';
        std::size_t text_end = line_end - (has_cr ? 1 : 0);
        const std::string_view ending = m_text.substr(text_end, line_end + 1 - text_end);
        while (text_end > m_at && is_blank(m_text[text_end - 1])) --text_end;
        m_decoded.put(m_text.substr(m_at, text_end - m_at));
        m_decoded.put(ending);
        m_at = line_end + 1;
    }

    void take_equals_sign() {
        const std::size_t after = m_at + 1;
        if (const std::optional<char> byte = hex_byte(m_text.substr(after))) {
            m_decoded.put({&*byte, 1});
            m_at += 3;
            return;
        }
        const std::size_t end = blanks_end(after);
        if (const std::size_t line_end = line_end_at(end); line_end != 0 || end == m_text.size()) {
            m_at = end + line_end; // a soft line break
            return;
        }
        m_damage.add("an equals sign without two hexadecimal digits or a line end", m_at);
        m_decoded.put(m_text.substr(m_at, 1));
        ++m_at;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    block_gatherer m_decoded;
    damage_counter m_damage;
};

/// Decodes uuencode: a first line "begin 644 name", then lines that each begin with a character
/// for the count of their bytes, and a last line "end". Each character stands for six bits.
class uu_decoder {
public:
    uu_decoder(std::string_view text, const byte_sink& sink)
        : m_text(text), m_decoded(sink, text.size()) {}

    std::optional<decoding_damage> run() {
        if (skip_to_begin()) {
            decode_lines();
        } else {
            m_damage.add("uuencoded text without a line that begins it", 0, m_text.size());
            m_decoded.put(m_text);
        }
        m_decoded.flush();
        return m_decoded.is_wanted() ? m_damage.damage() : std::nullopt;
    }

private:
    /// The next line, without its end.
    std::string_view take_line() {
        m_line_begin = m_at;
        const std::size_t end = std::min(m_text.find('\n', m_at), m_text.size());
        m_at = std::min(end + 1, m_text.size());
        std::string_view line = m_text.substr(m_line_begin, end - m_line_begin);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        return line;
    }

    bool skip_to_begin() {
        while (m_at < m_text.size()) {
            if (take_line().substr(0, 6) == "begin ") return true;
        }
        return false;
    }

    void decode_lines() {
        while (m_at < m_text.size() && m_decoded.is_wanted()) {
            const std::string_view line = take_line();
            if (line == "end") return;
            if (!line.empty()) decode_line(line);
        }
        m_damage.add("uuencoded text without an end", m_text.size());
    }

    /// Blanks at the end of a line may have been cut off.
    void decode_line(std::string_view line) {
        const std::size_t count = digit_at(line, 0);
        std::string bytes;
        for (std::size_t at = 1; bytes.size() < count; at += 4) {
            std::uint32_t bits = 0;
            for (std::size_t each = at; each < at + 4; ++each)
                bits = bits << 6 | digit_at(line, each);
            for (const int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift & 0xFF);
        }
        m_decoded.put(std::string_view(bytes).substr(0, count));
    }

    /// Both a blank and a grave accent are 0.
    std::uint32_t digit_at(std::string_view line, std::size_t at) {
        if (at >= line.size()) return 0;
        const char c = line[at];
        if (c < ' ' || c > '`') m_damage.add("not a uuencode character", m_line_begin + at);
        return static_cast<std::uint32_t>(static_cast<unsigned char>(c) - ' ') & 0x3FU;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_line_begin = 0;
    block_gatherer m_decoded;
    damage_counter m_damage;
};

} // namespace

std::optional<transfer_encoding> transfer_encoding_named(std::string_view name, strictness how) {
    for (const std::string_view plain : {"", "7bit", "8bit", "binary"})
        if (equal_ignoring_case(name, plain)) return transfer_encoding::none;
    if (equal_ignoring_case(name, "base64")) return transfer_encoding::base64;
    if (equal_ignoring_case(name, "quoted-printable")) return transfer_encoding::quoted_printable;
    if (how == strictness::strict) return std::nullopt;
    for (const std::string_view older : {"x-uuencode", "uuencode", "x-uue", "uue"})
        if (equal_ignoring_case(name, older)) return transfer_encoding::uuencode;
    return std::nullopt;
}

std::optional<decoding_damage> decode(transfer_encoding encoding, std::string_view text,
                                      const byte_sink& sink, strictness how) {
    switch (encoding) {
    case transfer_encoding::base64:
        return how == strictness::strict ? base64_decoder(text, sink).run()
                                         : lenient_base64_decoder(text, sink).run();
    case transfer_encoding::quoted_printable: return quoted_printable_decoder(text, sink).run();
    case transfer_encoding::uuencode: return uu_decoder(text, sink).run();
    case transfer_encoding::none: break;
    }
    if (!text.empty()) sink(text);
    return std::nullopt;
}
