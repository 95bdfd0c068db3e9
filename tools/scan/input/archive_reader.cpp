// Lets libarchive read through a file_reader; see the header.

#include "scan/input/archive_reader.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace {

bool begins_with(std::string_view text, std::string_view with) {
    return text.substr(0, with.size()) == with;
}

/// The first bytes of all that is unpacked. NUL is among them, hence the views.
constexpr std::array<std::string_view, 8> signatures = {{
    {"\x1f\x8b", 2},           // gzip
    {"\xfd\x37zXZ\0", 6},      // xz
    {"\x28\xb5\x2f\xfd", 4},   // zstd
    {"\x04\x22\x4d\x18", 4},   // lz4
    {"PK\x03\x04", 4},         // zip
    {"PK\x05\x06", 4},         // zip without files
    {"7z\xbc\xaf\x27\x1c", 6}, // 7-Zip
    {"\x50\x2a\x4d\x18", 4},   // zstd and lz4: a frame to be skipped
}};

bool is_bzip2(std::string_view beginning) {
    constexpr std::string_view block = "1AY&SY"; // digits of pi, in BCD
    constexpr std::string_view end{"\x17rE8P\x90", 6};
    if (!begins_with(beginning, "BZh") || beginning.size() < 10) return false;
    return begins_with(beginning.substr(4), block) || begins_with(beginning.substr(4), end);
}

bool is_tar(std::string_view beginning) {
    constexpr std::size_t magic = 257;
    if (beginning.size() < magic) return false;
    return begins_with(beginning.substr(magic), {"ustar\0", 6})
           || begins_with(beginning.substr(magic), {"ustar  \0", 8});
}

} // namespace

bool is_packed(std::string_view beginning) {
    return std::any_of(signatures.begin(), signatures.end(),
                       [beginning](std::string_view each) { return begins_with(beginning, each); })
           || is_bzip2(beginning) || is_tar(beginning);
}

archive_reader::archive_reader(file_reader& file, archive_limits limits)
    : m_file(file), m_limits(limits) {
    if (!m_library.m_error.empty()) {
        m_failure = {"cannot-read", m_library.m_error};
        m_is_over = true;
        return;
    }
    m_archive.reset(m_library.m_read_new());
    archive* const opened = m_archive.get();
    if (opened == nullptr) throw std::bad_alloc();
    for (const auto support : m_library.m_support) support(opened);
    m_library.m_read_set_callback_data(opened, this);
    m_library.m_read_set_read_callback(opened, on_read);
    if (m_file.size()) m_library.m_read_set_seek_callback(opened, on_seek);
    const int status = m_library.m_read_open1(opened);
    if (status < ARCHIVE_WARN) fail(status);
}

archive_reader::~archive_reader() = default;

la_ssize_t archive_reader::on_read(archive* opened, void* self, const void** bytes) {
    archive_reader& reader = *static_cast<archive_reader*>(self);
    *bytes = reader.m_block.data();
    const std::size_t count = reader.m_file.read(reader.m_block.data(), reader.m_block.size());
    const int error = reader.m_file.error();
    if (count != 0 || error == 0) return static_cast<la_ssize_t>(count);
    reader.m_library.m_set_error(opened, error, "cannot read the file");
    return -1;
}

la_int64_t archive_reader::on_seek(archive* /*opened*/, void* self, la_int64_t offset, int whence) {
    file_reader& file = static_cast<archive_reader*>(self)->m_file;
    std::int64_t target = offset;
    if (whence == SEEK_CUR) target += static_cast<std::int64_t>(file.position());
    if (whence == SEEK_END) target += static_cast<std::int64_t>(file.size().value());
    if (target < 0 || !file.seek(static_cast<std::uint64_t>(target))) return ARCHIVE_FATAL;
    return target;
}

bool archive_reader::next(archive_member& member) {
    if (!m_is_over) m_failure.reset();
    m_data = {};
    m_hole = m_member_bytes = 0;
    while (!m_is_over) {
        archive_entry* entry = nullptr;
        const int status = m_library.m_read_next_header(m_archive.get(), &entry);
        if (status == ARCHIVE_EOF || status < ARCHIVE_WARN) {
            m_is_over = true;
            if (status != ARCHIVE_EOF) fail(status);
            return false;
        }
        if (status == ARCHIVE_RETRY) continue;
        if (m_library.m_format(m_archive.get()) == ARCHIVE_FORMAT_RAW) {
            member = archive_member();
            return true;
        }
        if (m_library.m_entry_filetype(entry) != AE_IFREG
            || m_library.m_entry_hardlink(entry) != nullptr)
            continue;
        const char* name = m_library.m_entry_pathname_utf8(entry);
        if (name == nullptr) name = m_library.m_entry_pathname(entry);
        member.m_name = name == nullptr ? "" : name;
        member.m_modified = std::int64_t{m_library.m_entry_mtime(entry)} * 1'000'000'000
                            + m_library.m_entry_mtime_nsec(entry);
        return true;
    }
    return false;
}

/// Reads by blocks: archive_read_data would lose what it has where the archive breaks off.
std::size_t archive_reader::read(char* to, std::size_t count) {
    if (m_data.empty() && m_hole == 0 && !read_block()) return 0;
    const bool is_in_hole = m_hole != 0;
    count = static_cast<std::size_t>(
        std::min<std::uint64_t>(count, is_in_hole ? m_hole : m_data.size()));
    if (is_in_hole) {
        std::fill_n(to, count, '\0');
        m_hole -= count;
    } else {
        m_data.copy(to, count);
        m_data.remove_prefix(count);
    }
    m_unpacked += count;
    m_member_bytes += count;
    return is_within_limits() ? count : 0;
}

/// False at the end of the file in the archive, or after a failure.
bool archive_reader::read_block() {
    while (!m_failure) {
        const void* bytes = nullptr;
        std::size_t count = 0;
        la_int64_t offset = 0;
        const int status = m_library.m_read_data_block(m_archive.get(), &bytes, &count, &offset);
        if (status == ARCHIVE_EOF) return false;
        if (status == ARCHIVE_RETRY) continue;
        if (status < ARCHIVE_WARN) {
            fail(status);
            return false;
        }
        const auto begin = static_cast<std::uint64_t>(std::max<la_int64_t>(offset, 0));
        m_hole = begin > m_member_bytes ? begin - m_member_bytes : 0;
        m_data = {static_cast<const char*>(bytes), count};
        if (count != 0 || m_hole != 0) return true;
    }
    return false;
}

bool archive_reader::is_within_limits() {
    if (m_unpacked <= m_limits.m_free_bytes || m_unpacked / m_limits.m_ratio <= m_file.position())
        return true;
    m_is_over = true;
    m_failure = {"archive-limit", "unpacking gives more than " + std::to_string(m_limits.m_ratio)
                                      + " times the bytes of the file"};
    return false;
}

void archive_reader::fail(int status) {
    if (status == ARCHIVE_FATAL) m_is_over = true;
    if (const std::optional<read_failure> of_file = m_file.failure()) {
        m_failure = of_file;
        return;
    }
    const char* const why = m_library.m_error_string(m_archive.get());
    m_failure = {"archive-damaged", why == nullptr ? "the archive is damaged" : why};
}
