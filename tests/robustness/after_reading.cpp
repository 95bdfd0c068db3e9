#include "robustness/after_reading.h"

#include "robustness/progress.h"
#include "support/escape.h"
#include "support/line_list.h"
#include "support/parse.h"

#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <typeinfo>

namespace test_support {
namespace {

std::string rest_of(std::istream& in) {
    std::string rest;
    try {
        for (;;) {
            const auto byte = in.rdbuf()->sbumpc();
            if (std::char_traits<char>::eq_int_type(byte, std::char_traits<char>::eof()))
                return rest;
            rest += std::char_traits<char>::to_char_type(byte);
        }
    } catch (...) {
        return rest;
    }
}

after_reading left_by(const std::string& error, std::istream& in) {
    after_reading left;
    left.m_error = error;
    left.m_state = in.rdstate();
    left.m_mask = in.exceptions();
    left.m_count = in.gcount();
    in.exceptions(std::ios_base::goodbit);
    if (in.rdbuf() != nullptr) {
        left.m_available = in.rdbuf()->in_avail();
        left.m_rest = rest_of(in);
    }
    return left;
}

/// Reads lines. Returns whether all of them could be read.
bool can_read(std::istream& in, std::size_t lines) {
    std::string line;
    for (; lines != 0; --lines)
        if (!std::getline(in, line)) return false;
    return true;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const after_reading& found) {
    return out << "error \"" << found.m_error << "\", state " << found.m_state << ", mask "
               << found.m_mask << ", gcount " << found.m_count << ", available "
               << found.m_available << ", rest \"" << escaped(found.m_rest) << '"';
}

after_reading after_getline(std::istream& in, std::size_t lines, const std::string& own_error) {
    std::string error;
    try {
        if (can_read(in, lines)) error = own_error;
    } catch (const std::ios_base::failure&) {
        error = "ios_failure";
    } catch (const std::runtime_error& thrown) {
        error = std::string("runtime_error: ") + thrown.what();
    } catch (const std::bad_cast&) {
        error = "bad_cast";
    } catch (...) {
        error = "other";
    }
    return left_by(error, in);
}

after_reading after_fill(MailStructure& message, std::istream& in, MailStructure::rules by) {
    const std::string error = fill(message, in, 0, by);
    return left_by(error, in);
}

erroneous_line first_erroneous_line(const differential::rule_set& by, std::string_view text) {
    std::istringstream in{std::string(text)};
    if (by.m_parse(in, {}).m_error.empty()) return {};
    const parse_steps steps(by, text, {});
    std::size_t lines = 0;
    while (steps.after(lines).m_error.empty()) ++lines;
    return {lines, steps.after(lines).m_error};
}

} // namespace test_support
