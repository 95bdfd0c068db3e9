#include "support/parse.h"

#include "parser/fill.h"
#include "support/tree_text.h"

#include <ios>
#include <new>
#include <sstream>
#include <stdexcept>
#include <typeinfo>

namespace test_support {
namespace {

std::string with_error(std::string text, const std::string& error) {
    if (!error.empty()) text.append("! ").append(error).append("\n");
    return text;
}

} // namespace

std::string fill(MailStructure& message, std::istream& in, std::uint32_t first_offset,
                 MailStructure::rules by) {
    try {
        if (first_offset != 0)
            mail_structure_detail::fill_from(message, in, first_offset, by);
        else if (by == MailStructure::rules::classic)
            message.Fill(in);
        else
            message.Fill(in, by);
        return {};
    } catch (const std::ios_base::failure&) { // before runtime_error, which it derives from
        return "ios_failure";
    } catch (const std::runtime_error& error) {
        return std::string("runtime_error: ") + error.what();
    } catch (const std::length_error&) {
        return "length_error";
    } catch (const std::bad_cast&) {
        return "bad_cast";
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    } catch (...) {
        return "other";
    }
}

parse_outcome parse(std::istream& in, const parse_options& options) {
    const memory_limit limit(options.m_memlimit);
    parse_outcome outcome;
    outcome.m_message.m_keep_text = options.m_keep_text;
    outcome.m_error = fill(outcome.m_message, in);
    return outcome;
}

parse_outcome parse(std::string_view input, const parse_options& options) {
    std::istringstream in{std::string(input)};
    return parse(in, options);
}

std::string outcome_text(const parse_outcome& outcome) {
    return with_error(tree_text(outcome.m_message.m_root), outcome.m_error);
}

std::string full_outcome_text(const parse_outcome& outcome) {
    return with_error(full_tree_text(outcome.m_message.m_root), outcome.m_error);
}

} // namespace test_support
