// How many findings of each name and level one message has.

#ifndef TOOLS_SCAN_ROWS_FINDING_COUNTS_H
#define TOOLS_SCAN_ROWS_FINDING_COUNTS_H

#include <mail_findings.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// The findings of one name and one level.
struct finding_count {
    mail_findings::name m_name = mail_findings::name::bare_cr;
    mail_findings::level m_level = mail_findings::level::note;
    std::uint64_t m_times = 0;
    std::uint64_t m_first = 0; ///< The least offset, counted from the first byte of the message.
};

/// Is used for one message after another, so that its memory is taken once.
class finding_counts {
public:
    /// Forgets the last message, and counts the findings of this one.
    /// @throws std::bad_alloc
    void count(std::string_view message);

    /// In the order in which the first of each was found.
    const std::vector<finding_count>& all() const { return m_counts; }
    /// The findings of that level, whatever their names.
    std::uint64_t of(mail_findings::level level) const;

private:
    static constexpr std::size_t levels = 3;
    static_assert(mail_findings::name_count * levels < 256, "an index fits into a byte");

    void add(const mail_findings::finding& found);

    std::vector<finding_count> m_counts;
    // By name and level: one more than the index in m_counts, or 0 if there is none.
    std::array<std::uint8_t, mail_findings::name_count * levels> m_places{};
};

#endif
