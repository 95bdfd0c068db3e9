// Patterns of file names, as a shell has them: "*.pdf", "report-?.[ch]".

#ifndef TOOLS_COMMON_FILE_PATTERN_H
#define TOOLS_COMMON_FILE_PATTERN_H

#include <clocale>
#include <memory>
#include <string>

/// A pattern for whole names in UTF-8, whatever the user's locale. Case is ignored. A slash, and a
/// dot at the beginning, are characters like others.
class file_pattern {
public:
    explicit file_pattern(std::string pattern);

    /// False for a name with a NUL. Linear in the length of the name.
    bool matches(const std::string& name) const;

private:
    struct free_locale {
        void operator()(locale_t locale) const { ::freelocale(locale); }
    };

    std::string m_pattern;
    /// Null if the system has no locale with UTF-8; characters outside ASCII then count as several.
    std::unique_ptr<std::remove_pointer_t<locale_t>, free_locale> m_utf8;
};

#endif
