// Finds a section, cuts it out of the input, decodes it where asked to, and writes it.

#include "mailstructure/part_command.h"

#include "common/message_reader.h"
#include "common/output_file.h"
#include "common/terminal.h"
#include "mailstructure/attachment_choice.h"
#include "mailstructure/attachment_saver.h"
#include "mailstructure/command_line.h"
#include "mailstructure/part_bytes.h"
#include "mailstructure/section_list.h"
#include "scan/message_address.h"

#include <cerrno>
#include <iostream>
#include <memory>
#include <utility>

namespace {

using MimeObj = MailStructure::MimeObj;

mail_sections::byte_range range_of(const MimeObj& entity, recorded_range range) {
    switch (range) {
    case recorded_range::header: return {entity.m_header_beg, entity.m_header_len};
    case recorded_range::mime: return {entity.m_mime_beg, entity.m_mime_len};
    case recorded_range::body: return {entity.m_body_beg, entity.m_body_len};
    case recorded_range::contents: return {entity.m_contents_beg, entity.m_contents_len};
    case recorded_range::epilogue: break;
    }
    return {entity.m_epilogue_beg, entity.m_epilogue_len};
}

/// The piece that the options name. If there is none, this complains and returns nothing.
std::optional<chosen_piece> choose(const part_options& options, const message_reader& reader) {
    const MimeObj& root = reader.message().m_root;
    const mail_sections::found found = mail_sections::find(root, options.m_section);
    if (!found) {
        complain(display_name(options.m_file) + ": no section " + escaped(options.m_section_text)
                 + "; the nearest is " + mail_sections::text_of(found.m_error.m_nearest));
        return std::nullopt;
    }
    const mail_sections::place& place = found.m_place;
    chosen_piece piece{place.m_entity, {}, {}};
    if (options.m_range) {
        piece.m_bytes = range_of(*place.m_entity, *options.m_range);
        return piece;
    }
    mail_sections::ranges ranges(root, reader.source());
    piece.m_more = ranges.of_fields(place, options.m_section);
    if (piece.m_more.empty()) return piece; // no field of those names, and no empty line
    piece.m_bytes = piece.m_more.front();
    piece.m_more.erase(piece.m_more.begin());
    return piece;
}

bool write_to_standard_output(const part_options& options, const message_file& file,
                              const chosen_piece& piece, transfer_encoding encoding) {
    errno = 0;
    const bool sound = give_piece(options, file, piece, encoding, [](std::string_view bytes) {
        return !!std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
    return output_got_out() && sound;
}

bool write_to_file(const part_options& options, const message_file& file, const chosen_piece& piece,
                   transfer_encoding encoding) {
    const std::string& name = options.m_output.value();
    output_file output(name, options.m_force ? existing_file::is_replaced : existing_file::is_kept);
    const bool sound =
        output.error() != 0
        || give_piece(options, file, piece, encoding,
                      [&output](std::string_view bytes) { return output.write(bytes); });
    if (!sound) return false; // what could be decoded is not kept
    if (output.keep()) return true;
    const bool is_in_the_way = output.error() == EEXIST && !options.m_force;
    complain(escaped(name) + ": cannot write: " + output.reason()
             + (is_in_the_way ? "; --force replaces it" : ""));
    return false;
}

bool write_piece(const part_options& options, const message_reader& reader) {
    const message_file& file = reader.file();
    const std::optional<chosen_piece> piece =
        options.m_name_pattern ? choose_by_name(options, reader) : choose(options, reader);
    if (!piece) return false;
    const std::optional<transfer_encoding> encoding = encoding_to_undo(options, *piece);
    if (!encoding) return false;
    return options.m_output ? write_to_file(options, file, *piece, *encoding)
                            : write_to_standard_output(options, file, *piece, *encoding);
}

/// The option parser's help with usage lines of our own.
class part_help : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* /*line*/, std::string /*name*/) const override {
        return "Usage: mailstructure part [OPTIONS] SECTION [FILE]\n"
               "       mailstructure part [OPTIONS] --all -o DIR [FILE]\n"
               "       mailstructure part [OPTIONS] --name GLOB [FILE]\n"
               "       mailstructure part [OPTIONS] --list [FILE]\n";
    }

    /// An option that may have a value would be shown with its default in braces.
    std::string make_option_name(const CLI::Option* option, bool is_positional) const override {
        if (option->get_name() == "--decode") return "--decode[=HOW]";
        return CLI::Formatter::make_option_name(option, is_positional);
    }
};

/// Whether the options choose among the attachments, and no section is named.
bool chooses_attachments(const part_options& options) {
    return options.m_all || options.m_name_pattern;
}

/// What is wrong with the options of a call that chooses attachments; "" if nothing is.
std::string complaint_about_attachments(const part_options& options) {
    const std::string chosen_by = options.m_all ? "--all" : "--name";
    if (options.m_list) return chosen_by + " cannot be combined with --list";
    if (options.m_range)
        return chosen_by + " cannot be combined with --range; attachments are written decoded";
    if (options.m_all && options.m_force)
        return "--all cannot be combined with --force; it replaces no file";
    if (options.m_all && (!options.m_output || options.m_output == "-"))
        return "--all needs --output with a folder";
    return options.m_force && !options.m_output ? "--force is for use with --output" : "";
}

/// What is wrong with the text of a SECTION.
std::string complaint_about(const mail_sections::error& error, const std::string& text) {
    const std::string rest = text.substr(error.m_position);
    return "not a section: " + std::string(error.m_expected) + " is expected "
           + (rest.empty() ? "at the end" : "at \"" + rest + '"');
}

/// What is wrong with the combination of options; "" if nothing is.
std::string complaint_about(const part_options& options) {
    if (chooses_attachments(options)) return complaint_about_attachments(options);
    if (options.m_force && !options.m_output) return "--force is for use with --output";
    if (options.m_list) {
        if (options.m_range || options.m_decode)
            return "--list cannot be combined with --range, --decode or --charset";
        if (options.m_unquote) return "--list cannot be combined with --unquote";
        if (options.m_output)
            return "--list cannot be combined with --output; it prints to standard output";
        return "";
    }
    const bool is_block = options.m_section.m_word != mail_sections::word::none
                          && options.m_section.m_word != mail_sections::word::text;
    if (options.m_range && is_block)
        return "--range needs a section that names an entity: \"\", N, TEXT or N.TEXT";
    if (!options.m_decode) return "";
    const bool is_body = options.m_range ? options.m_range == recorded_range::body
                                               || options.m_range == recorded_range::contents
                                         : !is_block && !options.m_section_text.empty();
    const std::string option = options.m_decode_word.empty() ? "--charset" : "--decode";
    return is_body ? ""
                   : option
                         + " needs the body of a part: N, TEXT, N.TEXT, --range body or --range "
                           "contents";
}

/// How to decode; nothing where the bytes are written as they are.
std::optional<strictness> decoding_of(const part_options& options) {
    if (options.m_decode_word == "lenient") return strictness::lenient;
    const bool decodes =
        !options.m_decode_word.empty() || options.m_to_utf8 || chooses_attachments(options);
    return decodes ? std::optional(strictness::strict) : std::nullopt;
}

/// Assigns the arguments: SECTION [FILE], or [FILE] with an option that stands for SECTION.
void take_arguments(part_options& options, bool has_first, bool has_second) {
    bool has_file = has_second;
    if (options.m_list || chooses_attachments(options)) {
        const std::string option = options.m_list ? "--list" : options.m_all ? "--all" : "--name";
        if (has_second) throw CLI::ValidationError(option + " takes one FILE and no SECTION");
        options.m_file.swap(options.m_section_text);
        has_file = has_first;
    } else {
        if (!has_first) throw CLI::RequiredError("SECTION");
        mail_sections::parsed parsed = mail_sections::parse(options.m_section_text);
        if (!parsed && names_a_file(options.m_section_text))
            throw CLI::ValidationError("SECTION comes before FILE; \"\" is the whole message");
        if (!parsed)
            throw CLI::ValidationError(complaint_about(parsed.m_error, options.m_section_text));
        options.m_section = std::move(parsed.m_section);
    }
    options.m_decode = decoding_of(options);
    const std::string complaint = complaint_about(options);
    if (!complaint.empty()) throw CLI::ValidationError(complaint);
    if (options.m_output == "-") options.m_output.reset(); // standard output
    if (!has_file) options.m_file = standard_input();
}

} // namespace

void describe_part(CLI::App& command, part_options& options) {
    command.formatter(std::make_shared<part_help>());
    command
        .add_option_function<std::string>(
            "--output,-o", [&options](const std::string& name) { options.m_output = name; },
            "Write to the file, which must not exist yet; - is standard output. With --all: save in"
            " the folder")
        ->type_name("FILE");
    command.add_flag("--force", options.m_force, "Replace the output file if it exists");
    command
        .add_flag("--decode{strict}", options.m_decode_word,
                  "Undo base64 or quoted-printable, as the part's header field says: strict, or "
                  "lenient, which passes over damage")
        ->check([](const std::string& word) {
            return word == "strict" || word == "lenient" ? ""
                                                         : "not one of strict, lenient: " + word;
        });
    describe_choice(
        command, "--charset", {"utf-8"}, "CHARSET",
        [&options](std::size_t /*only choice*/) { options.m_to_utf8 = true; },
        "Write text in this charset, utf-8; implies --decode");
    command.add_flag("--unquote", options.m_unquote,
                     "Take one > away from each line that begins with >From, >>From and so on, as "
                     "programs quote them in an mbox");
    describe_choice(
        command, "--range", {"header", "mime", "body", "contents", "epilogue"}, "NAME",
        [&options](std::size_t number) { options.m_range = static_cast<recorded_range>(number); },
        "Write a range that the library has recorded for the entity: header, mime, body, contents "
        "or epilogue");
    describe_max_size(command, options.m_max_size);
    describe_rules(command, options.m_rules);
    command.add_flag("--all", options.m_all,
                     "Save all attachments, decoded, under safe names in the folder that --output "
                     "names, and list them: section, type, size and name of each");
    command
        .add_option_function<std::string>(
            "--name", [&options](const std::string& glob) { options.m_name_pattern = glob; },
            "Write the attachment, decoded, whose file name matches the pattern; with --all, save "
            "only those that match")
        ->type_name("GLOB");
    command.add_flag(
        "--list", options.m_list,
        "List all sections: offset, length, type and name of each, and the disposition and file "
        "name of a part");
    const CLI::Option* const first =
        command
            .add_option(
                "SECTION", options.m_section_text,
                "What to write, as IMAP has it: 1.2, 1.2.MIME, 2.HEADER, 2.TEXT, HEADER, TEXT, "
                "'HEADER.FIELDS (From To)', or \"\" for the whole message")
            ->type_name("");
    const CLI::Option* const second = describe_file(command, options.m_file);
    command.final_callback([&options, first, second] {
        take_arguments(options, first->count() != 0, second->count() != 0);
    });
}

exit_status run_part(const part_options& options) {
    message_reader reader(options.m_rules);
    reader.open_by(open_addressed_message);
    reader.limit_files(options.m_max_size);
    if (!reader.read(options.m_file)) return some_input_failed;
    if (options.m_all) return save_attachments(options, reader) ? all_well : some_input_failed;
    if (!options.m_list) return write_piece(options, reader) ? all_well : some_input_failed;
    errno = 0;
    const std::size_t left_out =
        list_sections(std::cout, reader.message().m_root, reader.source(), locale_character_set());
    if (!output_got_out()) return some_input_failed;
    if (left_out != 0)
        complain(display_name(options.m_file) + ": " + std::to_string(left_out)
                 + (left_out == 1 ? " entity is" : " entities are")
                 + " not listed: nested too deep");
    return all_well;
}
