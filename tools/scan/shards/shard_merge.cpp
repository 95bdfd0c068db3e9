// Copies files, and joins the rows of divided sources; see the header.

#include "scan/shards/shard_merge.h"

#include "scan/input/file_reader.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace {

constexpr std::size_t block_bytes = std::size_t{1} << 20;
constexpr std::string_view source_row = R"({"kind":"source",)";

/// A row of a source, and its counts.
struct counted_row {
    std::string m_before; // the row up to the counts
    std::uint64_t m_messages = 0;
    std::uint64_t m_faults = 0;
    std::string m_after;

    std::string line() const {
        return m_before + std::to_string(m_messages) + R"(,"faults":)" + std::to_string(m_faults)
               + m_after;
    }
};

/// Takes a number from the front of the text; nothing if there is none.
std::optional<std::uint64_t> take_number(std::string_view& text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

std::optional<counted_row> counted(std::string_view line) {
    constexpr std::string_view messages_name = R"(,"messages":)"; // no name of a source holds that
    constexpr std::string_view faults_name = R"(,"faults":)";
    const std::size_t at = line.rfind(messages_name);
    if (line.substr(0, source_row.size()) != source_row || at == std::string_view::npos)
        return std::nullopt;
    counted_row row;
    row.m_before = line.substr(0, at + messages_name.size());
    line.remove_prefix(row.m_before.size());
    const std::optional<std::uint64_t> messages = take_number(line);
    if (!messages || line.substr(0, faults_name.size()) != faults_name) return std::nullopt;
    line.remove_prefix(faults_name.size());
    const std::optional<std::uint64_t> faults = take_number(line);
    if (!faults) return std::nullopt;
    row.m_messages = *messages;
    row.m_faults = *faults;
    row.m_after = line;
    return row;
}

/// Copies the rows of one shard after another.
class shard_merge {
public:
    explicit shard_merge(const std::function<bool(std::string_view)>& write) : m_write(write) {}

    /// @return what is wrong with the file; nothing if nothing is
    std::optional<std::string> add(const shard_file& shard) {
        file_reader file(shard.m_name, [](std::uint64_t) {});
        const shard_row& row = shard.m_row;
        if (file.error() == 0 && add(file, row) && !file.failure()) return std::nullopt;
        if (const std::optional<read_failure> failure = file.failure())
            return "cannot read: " + failure->m_text;
        return "damaged: it does not have the rows that its last one tells of";
    }

    bool goes_on() const { return m_goes_on; }
    std::uint64_t joined() const { return m_joined; }

private:
    /// False if the rows are not as they should be.
    bool add(file_reader& file, const shard_row& row) {
        const bool begins_within = row.m_range.m_begin.m_offset != 0;
        const bool ends_within = row.m_range.m_end.value().m_offset != 0;
        std::uint64_t done = 0;
        if (begins_within) {
            const std::optional<std::uint64_t> begin = row.m_sources == 1
                                                           ? last_line(file, row.m_bytes)
                                                           : first_source_row(file, row.m_bytes);
            if (!begin || !copy(file, 0, *begin)) return false;
            const std::string line = line_at(file, *begin);
            if (!join(line)) return false;
            done = *begin + line.size();
            if (ends_within && row.m_sources == 1) return done == row.m_bytes;
            write(m_held->line());
            m_held.reset();
        }
        if (!ends_within) return copy(file, done, row.m_bytes);
        const std::optional<std::uint64_t> last = last_line(file, row.m_bytes);
        if (!last || *last < done || !copy(file, done, *last)) return false;
        m_held = counted(line_at(file, *last));
        return m_held.has_value();
    }

    void write(std::string_view rows) { m_goes_on = m_goes_on && m_write(rows); }

    /// False if bytes are missing.
    bool copy(file_reader& file, std::uint64_t begin, std::uint64_t end) {
        if (begin == end) return true;
        if (!file.seek(begin)) return false;
        m_block.resize(block_bytes);
        while (begin < end && m_goes_on) {
            const std::size_t count = file.read(
                m_block.data(),
                static_cast<std::size_t>(std::min<std::uint64_t>(end - begin, block_bytes)));
            if (count == 0) return false;
            write(std::string_view(m_block).substr(0, count));
            begin += count;
        }
        return true;
    }

    /// Adds the counts of the row to those of the row that is held back.
    bool join(const std::string& line) {
        const std::optional<counted_row> row = counted(line);
        if (!row || !m_held || row->m_before != m_held->m_before || row->m_after != m_held->m_after)
            return false;
        m_held->m_messages += row->m_messages;
        m_held->m_faults += row->m_faults;
        ++m_joined;
        return true;
    }

    /// The line at that offset, with its line end.
    static std::string line_at(const file_reader& file, std::uint64_t offset) {
        for (std::size_t count = 4096;; count *= 2) {
            std::string line = file.peek(offset, count);
            const std::size_t lf = line.find('\n');
            if (lf == std::string::npos && line.size() == count) continue;
            return line.substr(0, lf == std::string::npos ? lf : lf + 1);
        }
    }

    /// Where the last line before that offset begins.
    static std::optional<std::uint64_t> last_line(const file_reader& file, std::uint64_t end) {
        for (std::uint64_t count = 4096;; count *= 2) {
            const std::uint64_t begin = end - std::min(end, count);
            const std::string bytes = file.peek(begin, static_cast<std::size_t>(end - begin));
            if (bytes.size() < 2) return std::nullopt;
            const std::size_t lf = bytes.rfind('\n', bytes.size() - 2);
            if (lf != std::string::npos) return begin + lf + 1;
            if (begin == 0) return 0;
        }
    }

    /// Where the first row of a source begins.
    static std::optional<std::uint64_t> first_source_row(const file_reader& file,
                                                         std::uint64_t end) {
        const std::string wanted = '\n' + std::string(source_row);
        if (file.peek(0, source_row.size()) == source_row) return 0;
        for (std::uint64_t begin = 0; begin < end; begin += block_bytes) {
            const std::string bytes = file.peek(begin, block_bytes + wanted.size() - 1);
            const std::size_t at = bytes.find(wanted);
            if (at != std::string::npos) return begin + at + 1;
        }
        return std::nullopt;
    }

    const std::function<bool(std::string_view)>& m_write;
    std::string m_block;
    std::optional<counted_row> m_held; // of a source that goes on in the next shard
    std::uint64_t m_joined = 0;
    bool m_goes_on = true;
};

} // namespace

std::optional<shard_fault> merge_shards(const std::vector<shard_file>& shards,
                                        const std::function<bool(std::string_view)>& write,
                                        scan_totals& totals) {
    shard_merge merge(write);
    for (const shard_file& each : shards) {
        if (const std::optional<std::string> what = merge.add(each))
            return shard_fault{each.m_name, *what};
        if (!merge.goes_on()) break;
        const shard_row& row = each.m_row;
        totals.m_sources += row.m_sources;
        totals.m_messages += row.m_messages;
        totals.m_entities += row.m_entities;
        totals.m_row_bytes += row.m_bytes;
        totals.m_errors += row.m_errors;
        for (const auto& [code, count] : row.m_faults) totals.m_faults[code] += count;
    }
    totals.m_sources -= merge.joined();
    return std::nullopt;
}
