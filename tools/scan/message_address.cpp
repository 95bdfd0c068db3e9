// Divides the file around the message, and copies the message; see the header.

#include "scan/message_address.h"

#include "common/complaint.h"
#include "common/descriptor_io.h"
#include "common/file_bytes.h"
#include "scan/input/archive_reader.h"
#include "scan/input/file_reader.h"
#include "scan/pipeline/byte_buffer.h"
#include "scan/pipeline/pile_reader.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t block_bytes = std::size_t{1} << 20;

struct message_address {
    std::string m_source;
    std::optional<std::string> m_member;
    std::uint64_t m_offset = 0;
};

bool is_there(const std::string& name) {
    struct stat file = {};
    return ::stat(name.c_str(), &file) == 0 && !S_ISDIR(file.st_mode);
}

std::optional<message_address> address_in(const std::string& name) {
    const std::size_t at = name.rfind('@');
    if (at == std::string::npos || is_there(name)) return std::nullopt;
    message_address address;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + at + 1, end, address.m_offset);
    if (error != std::errc() || stop != end || address.m_offset >> 62 != 0) return std::nullopt;
    address.m_source = name.substr(0, at);
    if (is_there(address.m_source)) return address;
    // Both names may hold "::".
    const std::string both = address.m_source;
    for (std::size_t colons = both.find("::"); colons != std::string::npos;
         colons = both.find("::", colons + 1)) {
        address.m_source = both.substr(0, colons);
        address.m_member = both.substr(colons + 2);
        if (is_there(address.m_source)) return address;
    }
    return std::nullopt;
}

/// Copies one message of a file to another one.
class message_copier {
public:
    message_copier(byte_source& file, std::uint64_t offset, int copy)
        : m_file(file), m_offset(offset), m_copy(copy) {}

    /// Looks for the message from a place on where the splitter can begin, which is the file's
    /// position.
    /// @return whether the message is there, and was written
    bool copy(mbox_splitter splitter) {
        m_begin = splitter.needed_from();
        for (;;) {
            const bool is_last = !read_block();
            std::vector<mbox_finding> found;
            splitter.look(m_bytes.view(), m_begin, is_last, found);
            for (const mbox_finding& finding : found) take(finding);
            const std::uint64_t sure = std::min(splitter.needed_from(), end());
            if (m_is_found && !write_up_to(m_has_ended ? m_message_end : sure)) return false;
            if (m_has_ended || m_is_missing || is_last) return m_has_ended;
            m_bytes.erase_front(static_cast<std::size_t>(sure - m_begin));
            m_begin = sure;
        }
    }

    /// The file is one message. @return whether all of it was written
    bool copy_all() {
        m_is_found = m_offset == 0;
        while (m_is_found && read_block()) {
            if (!write_up_to(end())) return false;
            m_begin = end();
            m_bytes.clear();
        }
        return m_is_found;
    }

    /// The system's number for the failure to write; 0 if there was none.
    int error() const { return m_error; }
    /// The offset of the first byte that was not read.
    std::uint64_t end() const { return m_begin + m_bytes.size(); }

private:
    bool read_block() {
        const std::size_t count = m_file.read(m_bytes.room_for(block_bytes), block_bytes);
        m_bytes.add(count);
        return count != 0;
    }

    void take(const mbox_finding& finding) {
        using kind = mbox_finding::kind;
        const bool separates =
            finding.m_kind == kind::separator || finding.m_kind == kind::doubtful_separator;
        if (m_has_ended || (!separates && finding.m_kind != kind::end)) return;
        if (m_is_found) {
            m_has_ended = true;
            m_message_end = std::max(m_offset, finding.m_offset - finding.m_bytes_between);
        } else if (separates && finding.m_next == m_offset) {
            m_is_found = true;
        } else {
            m_is_missing = finding.m_offset >= m_offset;
        }
    }

    /// Writes what was not written of the message, up to that offset.
    bool write_up_to(std::uint64_t offset) {
        const std::uint64_t from = m_offset + m_written;
        if (offset <= from) return true;
        const auto count = static_cast<std::size_t>(offset - from);
        m_written += count;
        if (m_written > file_bytes::most_bytes)
            m_error = EFBIG;
        else if (!write_all(m_copy,
                            m_bytes.view().substr(static_cast<std::size_t>(from - m_begin), count)))
            m_error = errno;
        return m_error == 0;
    }

    byte_source& m_file;
    const std::uint64_t m_offset;
    const int m_copy;
    byte_buffer m_bytes;
    std::uint64_t m_begin = 0; // offset of m_bytes in the file
    bool m_is_found = false;
    bool m_is_missing = false;
    bool m_has_ended = false;
    std::uint64_t m_message_end = 0; // once it has
    std::uint64_t m_written = 0;
    int m_error = 0;
};

/// The beginning of the line before that offset.
std::uint64_t line_before(const file_reader& file, std::uint64_t offset) {
    const std::uint64_t far = offset - std::min<std::uint64_t>(offset, longest_from_line + 3);
    const std::string bytes = file.peek(far, static_cast<std::size_t>(offset - far));
    const std::size_t lf =
        bytes.size() < 2 ? std::string::npos : bytes.rfind('\n', bytes.size() - 2);
    return lf == std::string::npos ? far : far + lf + 1;
}

/// A source of which the beginning was read already, to see what it is.
class source_with_beginning final : public byte_source {
public:
    explicit source_with_beginning(byte_source& rest) : m_rest(rest) {
        m_beginning.resize(farthest_look);
        std::size_t filled = 0;
        while (filled < m_beginning.size()) {
            const std::size_t count =
                rest.read(m_beginning.data() + filled, m_beginning.size() - filled);
            if (count == 0) break;
            filled += count;
        }
        m_is_all = filled < m_beginning.size();
        m_beginning.resize(filled);
    }

    source_kind kind() const { return kind_of(m_beginning, m_is_all, {}); }
    std::size_t read(char* to, std::size_t count) override {
        const std::size_t given = m_beginning.copy(to, count, m_given);
        m_given += given;
        return given != 0 ? given : m_rest.read(to, count);
    }
    std::optional<read_failure> failure() const override { return m_rest.failure(); }

private:
    byte_source& m_rest;
    std::string m_beginning;
    std::size_t m_given = 0;
    bool m_is_all = false;
};

bool copy_from_file(file_reader& file, std::uint64_t offset, message_copier& copier) {
    const std::string beginning = file.peek(0, farthest_look);
    if (kind_of(beginning, beginning.size() < farthest_look, {}) != source_kind::mbox)
        return copier.copy_all();
    mbox_splitter splitter(
        {}, offset == 0 ? 0 : line_before(file, offset),
        [&file](std::uint64_t at, std::size_t count) { return file.peek(at, count); });
    return file.seek(splitter.needed_from()) && copier.copy(std::move(splitter));
}

opened_message fault(const std::string& text) { return {-1, text}; }

/// The copy, or what is wrong. Where the source breaks off, its end does not end the message.
opened_message copied(const byte_source& source, const message_copier& copier, bool is_copied,
                      int copy) {
    if (copier.error() != 0) return fault("cannot copy: " + system_error_text(copier.error()));
    if (const std::optional<read_failure> failure = source.failure())
        return fault("cannot read: " + failure->m_text + " at byte "
                     + std::to_string(copier.end()));
    return is_copied ? opened_message{copy, ""}
                     : fault("no message begins at that byte of the source");
}

opened_message open_in_archive(file_reader& file, const message_address& address, int copy) {
    archive_reader archive(file);
    archive_member member;
    while (archive.next(member)) {
        if (member.m_name != address.m_member) continue;
        source_with_beginning source(archive);
        message_copier copier(source, address.m_offset, copy);
        const bool is_copied =
            source.kind() == source_kind::mbox ? copier.copy(mbox_splitter({})) : copier.copy_all();
        return copied(source, copier, is_copied, copy);
    }
    if (archive.failure()) return fault("cannot read: " + archive.failure()->m_text);
    return fault("the archive has no file of that name");
}

opened_message open_in_file(file_reader& file, const message_address& address, int copy) {
    if (address.m_member) return fault("the source is no archive");
    message_copier copier(file, address.m_offset, copy);
    const bool is_copied = copy_from_file(file, address.m_offset, copier);
    return copied(file, copier, is_copied, copy);
}

} // namespace

std::optional<opened_message> open_addressed_message(const std::string& name) {
    struct close_file {
        void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
    };
    const std::optional<message_address> address = address_in(name);
    if (!address) return std::nullopt;
    file_reader file(address->m_source, [](std::uint64_t) {});
    if (file.error() != 0) return fault("cannot open: " + system_error_text(file.error()));
    if (!file.size()) return fault("the source is no regular file");
    const std::unique_ptr<std::FILE, close_file> unnamed(std::tmpfile());
    const int copy = unnamed ? ::fcntl(::fileno(unnamed.get()), F_DUPFD_CLOEXEC, 0) : -1;
    if (copy < 0) return fault("cannot copy: " + system_error_text(errno));
    opened_message opened = is_packed(file.beginning(packed_beginning))
                                ? open_in_archive(file, *address, copy)
                                : open_in_file(file, *address, copy);
    if (opened.m_descriptor < 0)
        ::close(copy);
    else
        ::lseek(copy, 0, SEEK_SET);
    return opened;
}
