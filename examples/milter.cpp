// A mail filter for a mail server that speaks the milter protocol, such as Sendmail or Postfix:
//
//     milter inet:8890@127.0.0.1 100 application/x-msdownload application/x-msdos-program
//
// It rejects messages of more than 100 parts, and messages with a part of one of the types, at any
// depth: in a forwarded message too. Other messages get a field X-Parts with the number of parts.
//
// Each piece of a message is fed to the parser as it arrives; the message is never held in memory.
// The tree grows with the number of parts and fields, so the server should limit the size of mail.

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <libmilter/mfapi.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

struct settings {
    std::size_t m_most_parts = 0;
    std::vector<std::string> m_forbidden; // such as "application/x-msdownload"
};
settings g_settings; // set before the filter starts

/// One connection of the server, over which message after message may come.
struct connection {
    MailStructure m_message; // its memory is used again from message to message
    std::optional<MailStructure::feeder> m_feeder; // of the message that is arriving
};

connection& connection_of(SMFICTX* context) {
    return *static_cast<connection*>(smfi_getpriv(context));
}

/// Does the work of a callback. No exception may pass through the functions of libmilter. The only
/// one to expect is lack of memory, after which the sender should try again later.
template <class Work>
sfsistat guarded(Work work) noexcept {
    try {
        return work();
    } catch (const std::exception&) {
        return SMFIS_TEMPFAIL;
    }
}

bool is_forbidden(const MailStructure::MimeObj& part) {
    const std::string type = part.m_type + '/' + part.m_subtype;
    for (const std::string& forbidden : g_settings.m_forbidden)
        if (type.size() == forbidden.size()
            && strncasecmp(type, forbidden.c_str(), static_cast<std::uint32_t>(type.size())))
            return true;
    return false;
}

struct findings {
    std::size_t m_parts = 0; // without those that only hold others
    bool m_has_forbidden_type = false;
};

/// A loop with its own stack, since mail may be nested deeper than a program can recurse.
findings examine(const MailStructure::MimeObj& message) {
    findings found;
    std::vector<const MailStructure::MimeObj*> pending{&message};
    while (!pending.empty()) {
        const MailStructure::MimeObj& part = *pending.back();
        pending.pop_back();
        if (part.m_children.empty()) ++found.m_parts;
        if (is_forbidden(part)) found.m_has_forbidden_type = true;
        for (const MailStructure::MimeObj& child : part.m_children) pending.push_back(&child);
    }
    return found;
}

sfsistat rejected(SMFICTX* context, const char* reason) {
    std::string code = "554";
    std::string status = "5.7.1";
    std::string text = reason;
    smfi_setreply(context, code.data(), status.data(), text.data());
    return SMFIS_REJECT;
}

sfsistat on_message_begins(SMFICTX* context, char** /*sender*/) {
    return guarded([&] {
        if (smfi_getpriv(context) == nullptr) {
            auto added = std::make_unique<connection>();
            if (smfi_setpriv(context, added.get()) != MI_SUCCESS) return SMFIS_TEMPFAIL;
            added.release(); // on_close deletes it
        }
        connection& own = connection_of(context);
        own.m_feeder.emplace(own.m_message, MailStructure::rules::standard);
        return SMFIS_CONTINUE;
    });
}

/// The server hands over a field as its name and its value, whose lines end with LF.
sfsistat on_field(SMFICTX* context, char* name, char* value) {
    return guarded([&] {
        MailStructure::feeder& feeder = *connection_of(context).m_feeder;
        feeder.feed(name);
        feeder.feed(": ");
        feeder.feed(value);
        feeder.feed("\r\n");
        return SMFIS_CONTINUE;
    });
}

sfsistat on_end_of_fields(SMFICTX* context) {
    return guarded([&] {
        connection_of(context).m_feeder->feed("\r\n");
        return SMFIS_CONTINUE;
    });
}

sfsistat on_piece_of_body(SMFICTX* context, unsigned char* bytes, std::size_t count) {
    return guarded([&] {
        connection_of(context).m_feeder->feed({reinterpret_cast<const char*>(bytes), count});
        return SMFIS_CONTINUE;
    });
}

sfsistat on_message_ends(SMFICTX* context) {
    return guarded([&] {
        connection& own = connection_of(context);
        own.m_feeder->finish();
        own.m_feeder.reset();
        const findings found = examine(own.m_message.m_root);
        if (found.m_parts > g_settings.m_most_parts) return rejected(context, "too many parts");
        if (found.m_has_forbidden_type) return rejected(context, "a part of a forbidden type");
        std::string field = "X-Parts";
        std::string value = std::to_string(found.m_parts);
        smfi_addheader(context, field.data(), value.data());
        return SMFIS_CONTINUE;
    });
}

/// The server gives up a message, perhaps in the middle of it. The connection may go on.
sfsistat on_abort(SMFICTX* context) {
    if (smfi_getpriv(context) != nullptr) connection_of(context).m_feeder.reset();
    return SMFIS_CONTINUE;
}

sfsistat on_close(SMFICTX* context) {
    delete static_cast<connection*>(smfi_getpriv(context));
    smfi_setpriv(context, nullptr);
    return SMFIS_CONTINUE;
}

bool starts(std::string& socket) {
    std::string name = "milter";
    smfiDesc filter{};
    filter.xxfi_name = name.data();
    filter.xxfi_version = SMFI_VERSION;
    filter.xxfi_flags = SMFIF_ADDHDRS;
    filter.xxfi_envfrom = on_message_begins;
    filter.xxfi_header = on_field;
    filter.xxfi_eoh = on_end_of_fields;
    filter.xxfi_body = on_piece_of_body;
    filter.xxfi_eom = on_message_ends;
    filter.xxfi_abort = on_abort;
    filter.xxfi_close = on_close;
    return smfi_setconn(socket.data()) == MI_SUCCESS && smfi_register(filter) == MI_SUCCESS
           && smfi_opensocket(false) == MI_SUCCESS;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3) return std::cerr << "usage: milter SOCKET MOST_PARTS [TYPE...]\n", 2;
    std::string socket = arguments[1];
    char* end = nullptr;
    g_settings.m_most_parts = std::strtoul(arguments[2], &end, 10);
    if (end == arguments[2] || *end != '\0')
        return std::cerr << "not a number: " << arguments[2] << '\n', 2;
    g_settings.m_forbidden.assign(arguments + 3, arguments + count);
    if (!starts(socket)) return std::cerr << "cannot listen at " << socket << '\n', 1;
    return smfi_main() == MI_SUCCESS ? 0 : 1; // returns when a signal ends the filter
}
