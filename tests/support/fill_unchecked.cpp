#include "support/fill_unchecked.h"

#include "parser/fill.h"

#include <ios>
#include <new>
#include <stdexcept>
#include <typeinfo>

namespace test_support {

std::string fill_unchecked(MailStructure& message, std::istream& in, std::uint32_t first_offset,
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

} // namespace test_support
