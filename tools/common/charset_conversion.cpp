// Converts with iconv, and ASCII and UTF-8 with code of its own; see the header.

#include "common/charset_conversion.h"

#include "common/charset_names.h"
#include "common/printable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iconv.h>
#include <utility>

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::size_t longest_utf8 = 4;                  // bytes of a character

bool is_ascii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// A byte order mark, and the charset of text that begins with it.
struct byte_order_mark {
    std::string_view m_bytes;
    const char* m_charset;
};

constexpr std::array marks_16 = {byte_order_mark{{"\xFF\xFE", 2}, "UTF-16LE"},
                                 byte_order_mark{{"\xFE\xFF", 2}, "UTF-16BE"}};
constexpr std::array marks_32 = {byte_order_mark{{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
                                 byte_order_mark{{"\0\0\xFE\xFF", 4}, "UTF-32BE"}};

const auto no_converter = reinterpret_cast<iconv_t>(-1); // NOLINT: the system's value for failure

/// Converters of one thread that are open and not in use. When the system opens the first one of a
/// charset it loads a library, and it unloads that library after the last one: both together take
/// longer than most conversions.
class idle_converters {
public:
    idle_converters() = default;
    ~idle_converters() {
        for (const place& each : m_places) close(each.m_handle);
    }
    idle_converters(const idle_converters&) = delete;
    idle_converters& operator=(const idle_converters&) = delete;

    /// A converter that is as good as new, which is the caller's from then on; no_converter if none
    /// of the charset is idle.
    iconv_t take(std::string_view charset) {
        place* const found = place_of(charset);
        if (found == nullptr) return no_converter;
        found->m_charset = {};
        return std::exchange(found->m_handle, no_converter);
    }

    /// Keeps the converter, and closes another one if there are too many.
    /// @param charset  lives as long as the program
    void keep(std::string_view charset, iconv_t handle) noexcept {
        ::iconv(handle, nullptr, nullptr, nullptr, nullptr); // makes it as good as new
        place* to = place_of({});
        if (to == nullptr) {
            to = &m_places[m_next_closed];
            m_next_closed = (m_next_closed + 1) % m_places.size();
            close(to->m_handle);
        }
        *to = {charset, handle};
    }

private:
    struct place {
        std::string_view m_charset; // "" if there is no converter here
        iconv_t m_handle = no_converter;
    };

    place* place_of(std::string_view charset) {
        auto* const found =
            std::find_if(m_places.begin(), m_places.end(),
                         [charset](const place& each) { return each.m_charset == charset; });
        return found == m_places.end() ? nullptr : found;
    }

    static void close(iconv_t handle) {
        if (handle != no_converter) ::iconv_close(handle);
    }

    std::array<place, 8> m_places; // most mail is in fewer charsets
    std::size_t m_next_closed = 0; // the place whose converter goes when there are too many
};

thread_local idle_converters idle; // NOLINT: it outlives each conversion

} // namespace

/// An open converter of the system.
class utf8_conversion::converter {
public:
    /// @param charset  lives as long as the program
    explicit converter(std::string_view charset)
        : m_charset(charset), m_handle(idle.take(charset)) {
        if (!is_open()) m_handle = ::iconv_open("UTF-8", std::string(charset).c_str());
    }
    ~converter() {
        if (is_open()) idle.keep(m_charset, m_handle);
    }
    converter(const converter&) = delete;
    converter& operator=(const converter&) = delete;

    bool is_open() const { return m_handle != no_converter; }

    /// Converts as far as possible and appends the result.
    /// @return 0, or the system's number for what ended the conversion
    int convert(std::string_view& text, std::string& to) {
        char* from = const_cast<char*>(text.data()); // NOLINT: it is only read
        std::size_t bytes = text.size();
        const int error = call(&from, &bytes, to);
        text.remove_prefix(text.size() - bytes);
        return error;
    }

    /// Appends what the converter still holds.
    void finish(std::string& to) { call(nullptr, nullptr, to); }

private:
    int call(char** from, std::size_t* bytes, std::string& to) {
        for (;;) {
            std::array<char, 1024> block{};
            char* block_end = block.data();
            std::size_t room = block.size();
            const std::size_t status = ::iconv(m_handle, from, bytes, &block_end, &room);
            const int error = status == static_cast<std::size_t>(-1) ? errno : 0;
            to.append(block.data(), block_end);
            if (error != E2BIG) return error;
        }
    }

    std::string_view m_charset;
    iconv_t m_handle;
};

utf8_conversion::utf8_conversion(std::string_view charset, strictness how) : m_how(how) {
    const std::string_view name = converter_name(charset);
    if (name.empty()) {
        m_known = false;
    } else if (name == "US-ASCII") {
        m_kind = how == strictness::strict ? kind::ascii : kind::utf8;
    } else if (name == "UTF-16" || name == "UTF-32") {
        m_kind = kind::by_mark;
        m_marked = name;
    } else if (name != "UTF-8") {
        open(name);
    }
}

utf8_conversion::~utf8_conversion() = default;

void utf8_conversion::open(std::string_view converter_name) {
    if (converter_name.substr(0, 6) == "UTF-16") m_unit = 2;
    if (converter_name.substr(0, 6) == "UTF-32") m_unit = 4;
    m_convert = std::make_unique<converter>(converter_name);
    m_known = m_convert->is_open();
    m_kind = m_known ? kind::by_iconv : kind::utf8;
}

bool utf8_conversion::add(std::string_view piece, std::string& to) {
    const bool goes_on = m_how == strictness::lenient || (m_known && !m_damage);
    if (!goes_on) return false;
    m_input += piece;
    convert(more::follows, to);
    return m_how == strictness::lenient || !m_damage;
}

bool utf8_conversion::finish(std::string& to) {
    if (!add("", to)) return false;
    convert(more::does_not_follow, to);
    if (m_convert) m_convert->finish(to);
    return m_how == strictness::lenient || !m_damage;
}

void utf8_conversion::convert(more input, std::string& to) {
    if (m_kind == kind::by_mark) {
        if (input == more::follows && m_input.size() < longest_utf8) return;
        open_by_mark();
    }
    const std::size_t converted =
        m_kind == kind::by_iconv ? convert_by_iconv(input, to) : convert_own(input, to);
    m_input.erase(0, converted);
    m_input_offset += converted;
}

/// Finds the byte order, and leaves out its mark.
void utf8_conversion::open_by_mark() {
    const auto& marks = m_marked == "UTF-16" ? marks_16 : marks_32;
    const byte_order_mark* chosen = &marks.front();
    for (const byte_order_mark& mark : marks) {
        if (m_input.compare(0, mark.m_bytes.size(), mark.m_bytes) != 0) continue;
        chosen = &mark;
        m_input.erase(0, mark.m_bytes.size());
        m_input_offset += mark.m_bytes.size();
        break;
    }
    open(chosen->m_charset);
}

/// Converts m_input, which is ASCII or UTF-8.
/// @return how many of its bytes are dealt with
std::size_t utf8_conversion::convert_own(more input, std::string& to) {
    std::size_t at = 0;
    while (at < m_input.size()) {
        std::size_t ascii_end = at;
        while (ascii_end < m_input.size() && is_ascii(m_input[ascii_end])) ++ascii_end;
        to.append(m_input, at, ascii_end - at);
        at = ascii_end;
        if (at == m_input.size()) break;
        const utf8_character next = first_character(std::string_view(m_input).substr(at));
        if (next.m_valid && m_kind == kind::utf8) {
            to.append(m_input, at, next.m_bytes);
            at += next.m_bytes;
            continue;
        }
        if (input == more::follows && m_input.size() - at < longest_utf8) break; // it may be cut
        if (!take_damage(at, to)) break;
        ++at;
    }
    return at;
}

/// Converts m_input with the system's converter.
/// @return how many of its bytes are dealt with
std::size_t utf8_conversion::convert_by_iconv(more input, std::string& to) {
    std::string_view left = m_input;
    while (!left.empty()) {
        const int error = m_convert->convert(left, to);
        if (error == 0) break;
        const bool is_cut = error == EINVAL;
        if (is_cut && input == more::follows) break;
        if (!take_damage(m_input.size() - left.size(), to)) break;
        left.remove_prefix(std::min(m_unit, left.size()));
    }
    return m_input.size() - left.size();
}

/// @param at  the place in m_input that cannot be converted
/// @return whether the conversion goes on behind it
bool utf8_conversion::take_damage(std::size_t at, std::string& to) {
    if (!m_damage) m_damage = conversion_damage{m_input_offset + at, 0};
    ++m_damage->m_count;
    if (m_how == strictness::lenient) to += replacement;
    return m_how == strictness::lenient;
}

std::optional<std::string> to_utf8(std::string_view text, std::string_view charset) {
    utf8_conversion conversion(charset, strictness::strict);
    std::string result;
    if (!conversion.is_known() || !conversion.add(text, result) || !conversion.finish(result))
        return std::nullopt;
    return result;
}
