// Asks stat() about each source of the walk; see the header.

#include "scan/shards/source_list.h"

#include "scan/input/source_walk.h"

#include <algorithm>
#include <functional>
#include <sys/stat.h>

source_list::source_list(const std::vector<std::string>& names) {
    source_walk walk(names);
    found_source source;
    while (walk.next(source)) add(source.m_name, source.m_error);
}

void source_list::add(const std::string& name, int error) {
    struct stat file = {};
    const bool is_there = error == 0 && ::stat(name.c_str(), &file) == 0;
    if (name == "-" || (is_there && !S_ISREG(file.st_mode))) {
        if (!m_endless) m_endless = name;
    }
    const auto size = is_there ? static_cast<std::uint64_t>(file.st_size) : 0;
    m_ends.push_back(bytes() + size);
    m_names.push_back(std::hash<std::string>()(name));
    m_digest.add(name);
    std::string facts(1, '\0'); // which no name has
    if (is_there)
        facts += std::to_string(size) + ' ' + std::to_string(file.st_mtim.tv_sec) + ' '
                 + std::to_string(file.st_mtim.tv_nsec);
    m_digest.add(facts + '\n');
}

std::uint64_t source_list::bytes_before(const scan_position& position) const {
    return (position.m_source == 0 ? 0 : m_ends[position.m_source - 1]) + position.m_offset;
}

std::uint64_t source_list::bytes_in(const scan_range& range) const {
    const std::uint64_t end = range.m_end ? bytes_before(*range.m_end) : bytes();
    return end - bytes_before(range.m_begin);
}

bool source_list::has(std::uint64_t source, const std::string& name) const {
    return source < count() && m_names[source] == std::hash<std::string>()(name);
}

std::string source_list::fingerprint(std::string_view text) const {
    digest all = m_digest;
    all.add(text);
    return all.text();
}

scan_position source_list::at(std::uint64_t bytes) const {
    if (bytes == 0) return {};
    const auto end = std::lower_bound(m_ends.begin(), m_ends.end(), bytes);
    const auto source = static_cast<std::uint64_t>(end - m_ends.begin());
    if (end == m_ends.end()) return {source, 0, 0};
    if (*end == bytes) return {source + 1, 0, 0};
    return {source, 0, bytes - bytes_before({source, 0, 0})};
}
