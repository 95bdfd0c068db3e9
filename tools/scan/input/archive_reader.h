// Compressed files, and archives with files in them, by libarchive.

#ifndef TOOLS_SCAN_INPUT_ARCHIVE_READER_H
#define TOOLS_SCAN_INPUT_ARCHIVE_READER_H

#include "scan/input/archive_library.h"
#include "scan/input/byte_source.h"
#include "scan/input/file_reader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// As many bytes of a file as is_packed() looks at.
constexpr std::size_t packed_beginning = 512;

/// Whether a file that begins so is compressed by gzip, bzip2, xz, zstd or lz4, or is a tar, zip or
/// 7-Zip archive. No mail begins like that.
bool is_packed(std::string_view beginning);

/// What unpacking may give, so that a small file made by an enemy is not unpacked for ever.
struct archive_limits {
    std::uint64_t m_free_bytes = std::uint64_t{1} << 30; ///< So many are always allowed;
    std::uint64_t m_ratio = 1000; ///< beyond them, so many times what was read of the file.
};

/// A file in an archive.
struct archive_member {
    std::optional<std::string> m_name; ///< Nothing for a file that is compressed by itself.
    std::int64_t m_modified = 0;       ///< Nanoseconds since 1970; 0 if it is not known.
};

/// Gives the files in an archive one after another, in the archive's order. As a byte_source it is
/// the one that next() has given last; next() passes over what was not read of it.
class archive_reader final : public byte_source {
public:
    /// @param file  from its beginning; must outlive the reader
    /// @throws std::bad_alloc
    explicit archive_reader(file_reader& file, archive_limits limits = {});
    ~archive_reader() override;
    archive_reader(const archive_reader&) = delete;
    archive_reader& operator=(const archive_reader&) = delete;

    /// Goes on to the next regular file, also after a failure that concerns the last one alone.
    /// False at the end of the archive, and where nothing more can be read.
    bool next(archive_member& member);

    std::size_t read(char* to, std::size_t count) override;
    std::optional<read_failure> failure() const override { return m_failure; }

private:
    struct free_archive {
        void operator()(archive* opened) const { archive_library::loaded().m_read_free(opened); }
    };

    static la_ssize_t on_read(archive* opened, void* self, const void** bytes);
    static la_int64_t on_seek(archive* opened, void* self, la_int64_t offset, int whence);
    void fail(int status);
    bool read_block();
    bool is_within_limits();

    const archive_library& m_library = archive_library::loaded();
    file_reader& m_file;
    const archive_limits m_limits;
    std::array<char, 65536> m_block{};
    std::unique_ptr<archive, free_archive> m_archive;
    std::uint64_t m_unpacked = 0;
    std::string_view m_data;               // of the last block: what was not given yet
    std::uint64_t m_hole = 0;              // zeros before m_data, which a sparse file leaves out
    std::uint64_t m_member_bytes = 0;      // given of the last file
    std::optional<read_failure> m_failure; // of the last file, or of the search for the next one
    bool m_is_over = false;                // nothing more can be read
};

#endif
