// Prints the drawn trees: aligns the columns and colours them.

#include "mailstructure/tree_command.h"

#include "common/entity_fields.h"
#include "common/message_reader.h"
#include "mailstructure/command_line.h"
#include "mailstructure/output_text.h"
#include "mailstructure/tree_drawing.h"
#include "scan/message_address.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

/// How a text looks. The values are the numbers by which terminals know the looks.
enum class look : std::uint8_t {
    plain = 0,
    bold = 1,
    faint = 2,
    green = 32,
    yellow = 33,
    cyan = 36
};

/// The greatest width of a column. A longer text pushes the rest of its line to the right.
constexpr std::size_t widest_left = 60;
constexpr std::size_t widest_column = 24;

/// How many columns of a terminal the text takes, counting one for each character.
std::size_t width_of(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80;
    }));
}

struct column_widths {
    std::size_t m_left = 0; // strokes, section and type
    std::size_t m_encoding = 0;
    std::size_t m_charset = 0;
    std::size_t m_size = 0;
    std::size_t m_decoded_size = 0;
    std::size_t m_lines = 0;
    std::size_t m_place = 0;
};

void widen(std::size_t& width, std::size_t to, std::size_t widest) {
    width = std::max(width, std::min(to, widest));
}

std::size_t left_width(const tree_line& line) {
    const std::size_t section =
        line.m_row.m_section.empty() ? 0 : width_of(line.m_row.m_section) + 1;
    return width_of(line.m_strokes) + section + width_of(line.m_row.m_type);
}

/// A column that would hold nothing but dashes is left out.
void widen_for_value(std::size_t& width, const std::string& text) {
    if (text != "-") widen(width, width_of(text), widest_column);
}

void widen_for(column_widths& widths, const tree_line& line) {
    widen(widths.m_left, left_width(line), widest_left);
    widen_for_value(widths.m_encoding, line.m_row.m_encoding);
    widen_for_value(widths.m_charset, line.m_row.m_charset);
    widen(widths.m_size, width_of(line.m_row.m_size), widest_column);
    widen(widths.m_decoded_size, width_of(line.m_row.m_decoded_size), widest_column);
    widen(widths.m_lines, width_of(line.m_row.m_lines), widest_column);
    widen(widths.m_place, width_of(line.m_row.m_place), widest_column);
}

/// Gathers coloured and aligned texts and writes them to standard output in large pieces.
class page {
public:
    explicit page(bool color) : m_color(color) {}

    void add(std::string_view text, look as = look::plain) {
        const bool colored = m_color && as != look::plain && !text.empty();
        std::string& to = m_output.text();
        if (colored) to.append("\x1b[").append(std::to_string(static_cast<int>(as))).append("m");
        to += text;
        if (colored) to += "\x1b[0m";
    }

    void add_blanks(std::size_t count) { m_output.text().append(count, ' '); }

    void end_line() {
        std::string& text = m_output.text();
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
        m_output.write_if_large();
    }

    void print() { m_output.write(); }
    /// The system's number for the first failure to print; 0 if there was none.
    int error() const { return m_output.error(); }

private:
    bool m_color;
    output_text m_output;
};

std::size_t missing(std::size_t width, std::size_t present) {
    return width > present ? width - present : 0;
}

void add_left_column(page& to, std::string_view text, std::size_t width, look as = look::plain) {
    if (width == 0) return;
    to.add_blanks(2);
    to.add(text, as);
    to.add_blanks(missing(width, width_of(text)));
}

void add_right_column(page& to, std::string_view text, std::size_t width) {
    to.add_blanks(2 + missing(width, width_of(text)));
    to.add(text);
}

void add_line(page& to, const tree_line& line, const column_widths& widths) {
    const tree_row& row = line.m_row;
    to.add(line.m_strokes, look::faint);
    to.add(row.m_section, look::yellow);
    if (!row.m_section.empty()) to.add(" ");
    to.add(row.m_type, row.m_section.empty() ? look::faint
                       : row.m_holds_others  ? look::cyan
                                             : look::bold);
    to.add_blanks(missing(widths.m_left, left_width(line)));
    add_left_column(to, row.m_encoding, widths.m_encoding);
    add_left_column(to, row.m_charset, widths.m_charset);
    add_right_column(to, row.m_size, widths.m_size);
    if (widths.m_decoded_size != 0) add_right_column(to, row.m_decoded_size, widths.m_decoded_size);
    add_right_column(to, row.m_lines, widths.m_lines);
    add_left_column(to, row.m_place, widths.m_place, look::faint);
    if (!row.m_disposition.empty()) to.add("  ");
    to.add(row.m_disposition);
    if (!row.m_file_name.empty()) to.add(row.m_disposition.empty() ? "  " : " ");
    to.add(row.m_file_name, look::green);
    if (!row.m_subject.empty()) to.add("  ");
    to.add(row.m_subject);
    to.end_line();
}

/// The fields of the message that tell a person which one it is.
void add_heading(page& to, const MailStructure::MimeObj& root, const row_style& style) {
    constexpr std::pair<known_field, std::string_view> shown[] = {{known_field::subject, "Subject"},
                                                                  {known_field::from, "From"},
                                                                  {known_field::date, "Date"}};
    const entity_fields fields(root);
    for (const auto& [name, label] : shown) {
        const MailStructure::header* const field = fields.first(name);
        if (field == nullptr) continue;
        to.add(label, look::bold);
        to.add(":");
        to.add_blanks(sizeof("Subject") - label.size());
        to.add(shown_value(field->m_value, style));
        to.end_line();
    }
}

void print_tree(const MailStructure::MimeObj& root, const tree_source& source,
                const row_style& style, page& to) {
    constexpr std::size_t most_lines_kept = 1000;
    add_heading(to, root, style);
    column_widths widths;
    std::vector<tree_line> kept;
    std::size_t lines = 0;
    draw_tree(root, source, style, [&](const tree_line& line) {
        widen_for(widths, line);
        if (++lines <= most_lines_kept) kept.push_back(line);
    });
    if (lines == kept.size()) {
        for (const tree_line& line : kept) add_line(to, line, widths);
    } else { // the lines of a large tree are not kept, but made again
        draw_tree(root, source, style, [&](const tree_line& line) { add_line(to, line, widths); });
    }
}

character_set characters_for(const tree_options& options) {
    if (options.m_ascii) return character_set::ascii;
    return options.m_utf8 ? character_set::utf8 : locale_character_set();
}

/// Draws one file after the other; if there are several, each one's name stands before its tree.
class tree_printer {
public:
    explicit tree_printer(const tree_options& options)
        : m_reader(options.m_rules), m_style{characters_for(options), options.m_exact_sizes,
                                             options.m_decoded, options.m_all},
          m_page(wants_color(options.m_color)), m_several(options.m_files.size() > 1) {
        m_reader.limit_files(options.m_max_size);
        m_reader.open_by(open_addressed_message);
    }

    /// False, and nothing printed, if the file is no message.
    bool print(const std::string& file_name) {
        if (!m_reader.read(file_name)) return false;
        if (m_several) add_name(file_name);
        print_tree(m_reader.message().m_root, m_reader.source(), m_style, m_page);
        m_page.print();
        return true;
    }
    int write_error() const { return m_page.error(); }

private:
    void add_name(const std::string& file_name) {
        if (m_printed_one) m_page.end_line();
        m_printed_one = true;
        m_page.add(file_name == "-" ? "standard input" : printable(file_name, m_style.m_characters),
                   look::bold);
        m_page.add(":");
        m_page.end_line();
    }

    message_reader m_reader;
    row_style m_style;
    page m_page;
    bool m_several;
    bool m_printed_one = false;
};

} // namespace

void describe_tree(CLI::App& command, tree_options& options) {
    command.add_flag("--all", options.m_all,
                     "Draw preambles and epilogues of nothing but line ends too");
    CLI::Option* const ascii = command.add_flag(
        "--ascii", options.m_ascii, "Draw with ASCII characters alone, whatever the locale");
    command
        .add_flag("--utf8", options.m_utf8,
                  "Draw with the characters of UTF-8, whatever the locale")
        ->excludes(ascii);
    command.add_flag("--bytes", options.m_exact_sizes, "Give sizes in bytes, not in KiB or MiB");
    command.add_flag("--decoded", options.m_decoded,
                     "Show the size that each part has when it is decoded");
    describe_choice(
        command, "--color,--colour", {"auto", "always", "never"}, "WHEN",
        [&options](std::size_t choice) { options.m_color = static_cast<color_choice>(choice); },
        "Colour the tree: auto (on a terminal, unless NO_COLOR is set), always or never")
        ->take_last();
    describe_max_size(command, options.m_max_size);
    describe_rules(command, options.m_rules);
    describe_files(command, options.m_files);
}

exit_status run_tree(const tree_options& options) {
    tree_printer printer(options);
    exit_status status = all_well;
    for (const std::string& file_name : options.m_files) {
        if (!printer.print(file_name)) status = some_input_failed;
        errno = printer.write_error();
        if (!output_got_out()) return some_input_failed;
    }
    return status;
}
