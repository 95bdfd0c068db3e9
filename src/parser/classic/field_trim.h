// Trims the values of header fields.

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_FIELD_TRIM_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_FIELD_TRIM_H

#include <locale>
#include <string_view>

namespace mail_structure_detail::classic {

/// Trims what is white space in the global locale, as it is when this object is made.
// Kept: the global locale decides what is trimmed; all other scans of header lines ask the classic
// locale. keeps_trim_of_values_to_the_global_locale
class field_trim {
public:
    /// The value without white space at both ends. Linear in what is removed.
    /// @throws std::bad_cast  the locale has no std::ctype<char>
    std::string_view operator()(std::string_view value) {
        if (m_classes == nullptr) m_classes = &std::use_facet<std::ctype<char>>(m_locale);
        while (!value.empty() && m_classes->is(std::ctype_base::space, value.back()))
            value.remove_suffix(1);
        while (!value.empty() && m_classes->is(std::ctype_base::space, value.front()))
            value.remove_prefix(1);
        return value;
    }

private:
    std::locale m_locale;
    const std::ctype<char>* m_classes = nullptr; // of the locale; looked up at the first field
};

} // namespace mail_structure_detail::classic

#endif
