// Finds the messages of an mbox: where each separator line begins and ends. Looks at the file
// through a window that moves on, and does no reading of its own.

#ifndef TOOLS_SCAN_MBOX_MBOX_SPLITTER_H
#define TOOLS_SCAN_MBOX_MBOX_SPLITTER_H

#include "scan/mbox/from_line.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Something that the splitter has found. All offsets are 64-bit and count bytes from the beginning
/// of the file.
struct mbox_finding {
    enum class kind : std::uint8_t {
        separator,
        doubtful_separator,   // a separator without an empty line before it
        doubtful_text,        // a "From " line that is no separator
        wrong_content_length, // no message ends where the field of the message says
        end                   // of the file
    };
    kind m_kind = kind::end;
    std::uint64_t m_offset = 0; ///< Of the line, or of the end; of the message with a wrong length.
    std::uint64_t m_next = 0; ///< Just past the line end of a separator: the message begins there.
    /// Bytes of the empty line before a separator or the end, which belongs to no message: 0 to 2.
    unsigned m_bytes_between = 0;
};

struct mbox_options {
    mbox_rules m_rules = mbox_rules::automatic;
    /// Believe a Content-Length field if a separator, or the end of the file, stands where it says.
    /// The lines before that place are then text, whatever they look like.
    bool m_verify_content_length = true;
};

class mbox_splitter {
public:
    /// Gives bytes of the file by their offset: as many as asked for, or all up to its end.
    using peek_function = std::function<std::string(std::uint64_t offset, std::size_t count)>;

    /// @param first  separators that begin before this offset are not looked for
    /// @param peek   may be empty, where a file can only be read from its beginning to its end. A
    ///               Content-Length field then counts only if the place that it tells lies in the
    ///               window
    explicit mbox_splitter(mbox_options options, std::uint64_t first = 0, peek_function peek = {});

    /// Looks as far as the window allows, and adds what it finds. Time is linear in the bytes that
    /// it has not looked at before.
    /// @param bytes    a window of the file, which ends farther on than the last one
    /// @param offset   where the window begins, at or before needed_from()
    /// @param is_last  the window ends where the file ends
    void look(std::string_view bytes, std::uint64_t offset, bool is_last,
              std::vector<mbox_finding>& found);

    /// The offset of the first byte that the next window must have.
    std::uint64_t needed_from() const;

    /// Whether a Content-Length field has been believed.
    bool has_believed_length() const { return m_has_believed_length; }

private:
    struct window_view;

    bool judge(const window_view& window, std::uint64_t line, std::vector<mbox_finding>& found);
    bool believe_content_length(const window_view& window, std::vector<mbox_finding>& found);
    std::optional<std::uint64_t> message_end_at(const window_view& window, std::uint64_t end) const;

    mbox_options m_options;
    peek_function m_peek;
    std::uint64_t
        m_next;         // of the LF before the line that may be the next separator, or of that line
    bool m_is_at_start; // m_next is the first line of the file
    bool m_patch_lines_count = false;
    bool m_has_believed_length = false;
    std::optional<std::uint64_t> m_header; // of a message whose Content-Length is not read yet
};

#endif
