// Shares by bytes, and a look at what is to be cut; see the header.

#include "scan/shards/division.h"

#include "scan/input/archive_reader.h"
#include "scan/input/file_reader.h"

#include <vector>

namespace {

constexpr std::size_t bytes_looked_at = std::size_t{1} << 20;

/// bytes * number / count, without leaving 64 bits.
std::uint64_t share(std::uint64_t bytes, std::uint64_t number, std::uint64_t count) {
    return bytes / count * number + bytes % count * number / count;
}

} // namespace

scan_range share_of(const shard_number& shard, const source_list& sources) {
    scan_range range;
    range.m_begin = sources.at(share(sources.bytes(), shard.m_number - 1, shard.m_count));
    range.m_end = {sources.count(), 0, 0};
    if (shard.m_number < shard.m_count)
        range.m_end = sources.at(share(sources.bytes(), shard.m_number, shard.m_count));
    return range;
}

divisibility divisibility_of(const std::string& name, const pile_options& options) {
    file_reader file(name, [](std::uint64_t) {});
    if (file.error() != 0 || !file.size()) return divisibility::none;
    const std::string beginning = file.peek(0, bytes_looked_at);
    const bool is_all = beginning.size() < bytes_looked_at;
    if (is_packed(beginning) || kind_of(beginning, is_all, options) != source_kind::mbox)
        return divisibility::none;
    mbox_splitter splitter(options.m_mbox, 0, [&file](std::uint64_t offset, std::size_t count) {
        return file.peek(offset, count);
    });
    std::vector<mbox_finding> found;
    splitter.look(beginning, 0, is_all, found);
    return splitter.has_believed_length() ? divisibility::by_plan : divisibility::anywhere;
}
