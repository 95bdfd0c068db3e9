// Creates the folder and the files in it; see the header. The folder is opened once, and each file
// is created relative to it, so that nobody can make a name in it lead elsewhere.

#include "mailstructure/attachment_saver.h"

#include "common/ascii_case.h"
#include "common/attachments.h"
#include "common/field_lookup.h"
#include "common/output_file.h"
#include "common/printable.h"
#include "common/safe_file_name.h"
#include "common/target_folder.h"
#include "common/terminal.h"
#include "mailstructure/attachment_choice.h"
#include "mailstructure/part_bytes.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

/// The last number of each name, so that a name that occurs a hundred thousand times is not tried
/// with every number again. Names that differ in the case of ASCII letters count as equal: so they
/// stay apart where the folder is copied to a file system that ignores case.
class number_series {
public:
    /// The number that was given to the name last. 0 if it has not occurred.
    std::uint64_t& last_number_of(const std::string& name) {
        std::string key = name;
        std::transform(key.begin(), key.end(), key.begin(), lower_case);
        return m_last_numbers[key];
    }

private:
    std::map<std::string, std::uint64_t> m_last_numbers; // a sender can slow down no search in it
};

/// The name itself has the number 1.
std::string name_of_number(const std::string& name, std::uint64_t number) {
    return number == 1 ? name : numbered_file_name(name, number);
}

/// A number after the given one with which the name is free in the folder. Takes steps of 1, 2, 4,
/// and so on, and then halves the last step: a folder with many files of the name costs few looks.
std::uint64_t free_number_after(std::uint64_t taken, const std::string& name,
                                const target_folder& folder) {
    std::uint64_t step = 1;
    for (; folder.has(name_of_number(name, taken + step)); step *= 2) taken += step;
    std::uint64_t free = taken + step;
    while (free - taken > 1) {
        const std::uint64_t middle = taken + (free - taken) / 2;
        (folder.has(name_of_number(name, middle)) ? taken : free) = middle;
    }
    return free;
}

enum class outcome : std::uint8_t {
    saved,
    not_saved, // or not whole
    give_up    // the next attachment would fare the same
};

class attachment_saver {
public:
    attachment_saver(const part_options& options, const message_reader& reader)
        : m_options(options), m_reader(reader), m_folder(options.m_output.value()),
          m_ranges(reader.message().m_root, reader.source()),
          m_characters(::isatty(STDOUT_FILENO) != 0 ? locale_character_set()
                                                    : character_set::utf8) {}

    outcome save(const attachment& each) {
        const chosen_piece piece = {each.m_body.m_entity, m_ranges.of(each.m_body)};
        const auto encoding = encoding_to_undo(m_options, piece);
        if (!encoding) return tell_of(each, "is not saved");
        if (!m_folder.open()) {
            complain(escaped(m_folder.name()) + ": cannot write: " + system_error_text(errno));
            return outcome::give_up;
        }
        output_file file(m_folder.descriptor());
        std::uint64_t size = 0;
        bool is_whole = true;
        if (file.error() == 0)
            is_whole = give_piece(m_options, m_reader.file(), piece, *encoding,
                                  [&](std::string_view bytes) {
                                      size += bytes.size();
                                      return file.write(bytes);
                                  });
        if (file.error() != 0) {
            complain_about(each.m_name, file);
            return outcome::give_up;
        }
        if (!is_whole && size == 0) return tell_of(each, "is not saved");
        const std::string name = keep(file, each.m_name);
        if (file.error() != 0) {
            complain_about(name, file);
            return outcome::not_saved;
        }
        print(each, size, name);
        if (is_whole) return outcome::saved;
        return tell_of(each, "is saved only in part, as " + escaped(m_folder.path_of(name)));
    }

    int print_error() const { return m_print_error; }

private:
    /// Complains about an attachment that cannot be decoded. Why was told before.
    outcome tell_of(const attachment& each, const std::string& what) const {
        complain(display_name(m_options.m_file) + ": section " + section_of(each) + ' ' + what);
        return outcome::not_saved;
    }

    static std::string section_of(const attachment& each) {
        return each.m_section.empty() ? "..." : each.m_section;
    }

    /// Gives the file a name that is free.
    /// @return the name, or the one with which this has failed
    std::string keep(output_file& file, const std::string& wanted) {
        std::uint64_t& number = m_series.last_number_of(wanted);
        std::string name = name_of_number(wanted, ++number);
        // Only somebody who takes each free name before this does can make this fail.
        for (int tries = 0; tries < 100 && !file.keep_as(name) && file.error() == EEXIST; ++tries) {
            number = free_number_after(number, wanted, m_folder);
            name = name_of_number(wanted, number);
        }
        return name;
    }

    void print(const attachment& each, std::uint64_t size, const std::string& name) {
        if (!std::cout) return;
        errno = 0;
        std::cout << section_of(each) << '\t'
                  << printable(media_type_of(*each.m_body.m_entity), character_set::ascii) << '\t'
                  << size << '\t' << printable(name, m_characters) << '\n'
                  << std::flush; // a complaint would flush it too, and hide why that failed
        m_print_error = errno;
    }

    void complain_about(const std::string& name, const output_file& file) const {
        complain(escaped(m_folder.path_of(name))
                 + ": cannot write: " + system_error_text(file.error()));
    }

    const part_options& m_options;
    const message_reader& m_reader;
    target_folder m_folder;
    mail_sections::ranges m_ranges;
    number_series m_series;
    /// A safe name holds nothing that is spelled out in UTF-8. So this only matters on a terminal,
    /// which may not be one for UTF-8; a program that reads the list gets the exact names.
    character_set m_characters;
    int m_print_error = 0; // the system's number for a failure to print
};

} // namespace

bool save_attachments(const part_options& options, const message_reader& reader) {
    std::optional<file_pattern> pattern;
    if (options.m_name_pattern) pattern.emplace(*options.m_name_pattern);
    attachment_walk walk(reader.message().m_root, reader.source(), pattern ? &*pattern : nullptr);
    attachment_saver saver(options, reader);
    bool all_saved = true;
    bool found_one = false;
    while (const std::optional<attachment> each = walk.next()) {
        found_one = true;
        const outcome done = saver.save(*each);
        all_saved = all_saved && done == outcome::saved;
        if (done == outcome::give_up) break;
    }
    if (pattern && !found_one) complain_about_no_match(options);
    errno = saver.print_error();
    return output_got_out() && all_saved && (found_one || !pattern);
}
