// Walks over a tree and finds the strokes of each line; see the header.

#include "mailstructure/tree_drawing.h"

#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;

/// The strokes before a line; each takes three columns.
struct stroke_set {
    const char* m_past;   // past the line, to a later sibling of an ancestor
    const char* m_branch; // to the line, and on to a later sibling
    const char* m_last;   // to the line, the last of its siblings
    const char* m_blank;
};

const stroke_set& strokes_in(character_set characters) {
    static const stroke_set boxes = {"\u2502  ", "\u251c\u2500 ", "\u2514\u2500 ", "   "};
    static const stroke_set plain = {"|  ", "|- ", "`- ", "   "};
    return characters == character_set::utf8 ? boxes : plain;
}

/// An entity whose line is drawn while the lines of its descendants are not all drawn yet.
struct open_entity {
    const MimeObj* m_entity = nullptr;
    mail_sections::byte_range m_epilogue;
    bool m_last = true; // nothing of its parent is drawn after it
};

class drawer {
public:
    drawer(const MimeObj& root, const tree_source& source, const row_style& style,
           const std::function<void(const tree_line&)>& take)
        : m_root(root), m_ranges(root, source), m_source(source), m_style(style),
          m_strokes(strokes_in(style.m_characters)), m_take(take) {}

    void draw() {
        mail_sections::walk walk(m_root);
        while (const mail_sections::visited* const numbered = walk.next()) {
            close_down_to(numbered->m_depth);
            open(*numbered);
        }
        close_down_to(0);
    }

private:
    void open(const mail_sections::visited& numbered) {
        const MimeObj& entity = *numbered.m_entity;
        const bool last = is_last(entity);
        m_take({strokes_to(last), row_of(numbered, m_ranges, m_source, m_style)});
        m_open.push_back({&entity, drawn(epilogue_of(entity, m_source)), last});
        const mail_sections::byte_range preamble = drawn(preamble_of(entity, m_source));
        if (preamble.m_length == 0) return;
        const bool alone = entity.m_children.empty() && m_open.back().m_epilogue.m_length == 0;
        m_take({strokes_to(alone), row_of("(preamble)", preamble, m_style)});
    }

    /// Ends the innermost entities until the number of open ones is the given depth.
    void close_down_to(std::size_t depth) {
        while (m_open.size() > depth) {
            const mail_sections::byte_range epilogue = m_open.back().m_epilogue;
            if (epilogue.m_length != 0)
                m_take({strokes_to(true), row_of("(epilogue)", epilogue, m_style)});
            m_open.pop_back();
        }
    }

    /// The range if it is to be drawn, else an empty one. Nearly every multipart within another has
    /// an epilogue of one line end, which is of no use to the user.
    mail_sections::byte_range drawn(const mail_sections::byte_range& outer_text) const {
        const std::string_view bytes =
            m_source.m_bytes.substr(outer_text.m_offset, outer_text.m_length);
        const bool holds_text = bytes.find_first_not_of("\r\n") != std::string_view::npos;
        return holds_text || m_style.m_empty_lines ? outer_text : mail_sections::byte_range{};
    }

    bool is_last(const MimeObj& entity) const {
        if (m_open.empty()) return true;
        const open_entity& parent = m_open.back();
        return &entity == &parent.m_entity->m_children.back() && parent.m_epilogue.m_length == 0;
    }

    /// The strokes to a line that belongs to the innermost open entity.
    std::string strokes_to(bool last) const {
        const std::size_t depth = m_open.size();
        std::string strokes;
        if (depth == 0) return strokes;
        for (std::size_t level = 1; level < depth && level < deepest_level_drawn; ++level) {
            strokes += m_open[level].m_last ? m_strokes.m_blank : m_strokes.m_past;
        }
        if (depth > deepest_level_drawn) return strokes + "level " + std::to_string(depth) + ": ";
        return strokes + (last ? m_strokes.m_last : m_strokes.m_branch);
    }

    const MimeObj& m_root;
    mail_sections::ranges m_ranges;
    const tree_source& m_source;
    const row_style& m_style;
    const stroke_set& m_strokes;
    const std::function<void(const tree_line&)>& m_take;
    std::vector<open_entity> m_open; // from the root to the innermost
};

} // namespace

void draw_tree(const MimeObj& root, const tree_source& source, const row_style& style,
               const std::function<void(const tree_line&)>& take) {
    drawer(root, source, style, take).draw();
}
