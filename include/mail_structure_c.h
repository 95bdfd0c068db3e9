/* The interface of mailstructure for C, and for languages that call C: finds the structure of one
 * Internet mail message. C99 and later, and C++; link with libmailstructure. */

#ifndef MAIL_STRUCTURE_C_H
#define MAIL_STRUCTURE_C_H

/** @file
 * The interface of mailstructure for C.
 *
 * A parser object reads one message after another. The tree of the last message is then there as
 * three flat arrays of records, in the order of the message, and one area of text. A binding for
 * another language can give its users these arrays as they are.
 *
 * @code
 *     mail_structure_parser *parser = mail_structure_new();
 *     mail_structure_tree tree;
 *     tree.struct_bytes = sizeof tree;
 *     if (mail_structure_parse(parser, bytes, count, MAIL_STRUCTURE_STANDARD) == MAIL_STRUCTURE_OK
 *         && mail_structure_get_tree(parser, &tree) == MAIL_STRUCTURE_OK)
 *         for (size_t i = 0; i < tree.entity_count; ++i)
 *             use(bytes + mail_structure_entity_at(&tree, i)->body.offset);
 *     mail_structure_free(parser);
 * @endcode
 *
 * What the ranges cover and what the rules are is the same as in C++; see mail_structure.h.
 *
 * **Errors.** Every function that can fail returns a code. No exception leaves a function, lack of
 * memory is a code like any other, and nothing ends the program. A null parser is a wrong call.
 *
 * **Threads.** Any number of threads may each use parsers of their own; one parser is for one
 * thread at a time.
 *
 * **Growth.** Later versions may add members at the ends of the records. A program finds records by
 * mail_structure_entity_at() and its siblings, which count in the sizes that the library gives, and
 * tells the library by mail_structure_tree::struct_bytes which members it knows itself.
 *
 * **Trust.** The text area holds bytes of the message, as hostile as their sender. */

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define MAIL_STRUCTURE_C_API __attribute__((visibility("default")))
#else
#define MAIL_STRUCTURE_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A parser and the tree of its last message. */
typedef struct mail_structure_parser mail_structure_parser;

/** Which rules take a message apart; see MailStructure::rules. Functions take them, and codes, as
 * plain numbers, so that any number may be given: one without a meaning is a wrong call. */
typedef enum mail_structure_rules {
    MAIL_STRUCTURE_CLASSIC = 0,
    MAIL_STRUCTURE_STANDARD = 1
} mail_structure_rules;

/** What became of a call. Later versions may add codes. */
typedef enum mail_structure_code {
    /** All is well. */
    MAIL_STRUCTURE_OK = 0,
    /** Memory has run out. */
    MAIL_STRUCTURE_NO_MEMORY = 1,
    /** Classic rules: a CR, LF or NUL stands inside a line. */
    MAIL_STRUCTURE_STRAY_BYTE = 2,
    /** Classic rules: a header line that ends with CR LF is a name without a colon. */
    MAIL_STRUCTURE_NO_COLON = 3,
    /** The tree does not fit: it has more than 4294967295 records of a kind, or more text. */
    MAIL_STRUCTURE_TOO_LARGE = 4,
    /** A parameter is null or has no meaning, or the function may not be called now. */
    MAIL_STRUCTURE_WRONG_CALL = 5,
    /** Something failed that no other code names. */
    MAIL_STRUCTURE_FAILED = 6,
    /** The message has no such section, or the text is not the name of a section. */
    MAIL_STRUCTURE_NO_SECTION = 7
} mail_structure_code;

/** Stands for "no such record" in an index, and for "no such place" in an offset. */
#define MAIL_STRUCTURE_NONE UINT32_MAX

/** A stretch of the message. Both numbers count bytes; the offset is that from the first byte of
 * the message, and wraps modulo 2^32 in a message of 4 GiB or more. Length 0: there is no such
 * range. */
typedef struct mail_structure_range {
    uint32_t offset; /**< Of the first byte. */
    uint32_t length; /**< In bytes. */
} mail_structure_range;

/** A text: where it lies in mail_structure_tree::text. No NUL ends it, and it may hold some. */
typedef struct mail_structure_text {
    uint32_t offset; /**< Of the first byte in the text area. */
    uint32_t length; /**< In bytes. */
} mail_structure_text;

/** In mail_structure_entity::flags: the header block gave the boundary of a multipart. */
#define MAIL_STRUCTURE_MULTIPART UINT32_C(1)
/** In mail_structure_entity::flags: the body is itself a message. */
#define MAIL_STRUCTURE_MESSAGE UINT32_C(2)

/** One MIME entity; the ranges are those of MailStructure::MimeObj. Every member is made of 32-bit
 * unsigned numbers, so that the whole array can also be read as a table of them. */
typedef struct mail_structure_entity {
    uint32_t parent;      /**< Index of the enclosing entity; MAIL_STRUCTURE_NONE for the root. */
    uint32_t depth;       /**< 0 for the root, 1 for its children, and so on. */
    uint32_t number;      /**< Among the children of its parent, from 1 on; 1 for the root. */
    uint32_t child_count; /**< Number of children; the first one is the next record. */
    uint32_t subtree_end; /**< Index just past the last descendant: the next sibling, if any. */
    uint32_t flags;       /**< MAIL_STRUCTURE_MULTIPART and MAIL_STRUCTURE_MESSAGE, or'ed. */
    uint32_t lines;       /**< Body lines of this entity and all its descendants. */
    uint32_t first_field; /**< Index of its first header field. */
    uint32_t field_count; /**< Number of its header fields, which are consecutive records. */
    mail_structure_range header;   /**< The header block with the empty line that ends it. */
    mail_structure_range mime;     /**< The whole entity, without the epilogue. */
    mail_structure_range body;     /**< The body. */
    mail_structure_range epilogue; /**< The lines after the closing line of a multipart. */
    mail_structure_range contents; /**< All lines after the header block but epilogue lines. */
    mail_structure_text type;      /**< Media type, in the letter case of the message. */
    mail_structure_text subtype;   /**< Media subtype, in the letter case of the message. */
    mail_structure_text encoding;  /**< Content transfer encoding; see MimeObj::m_encoding. */
} mail_structure_entity;

/** One header field; see MailStructure::header. */
typedef struct mail_structure_field {
    uint32_t entity;           /**< Index of the entity that it belongs to. */
    uint32_t begin;            /**< Offset in the message; MAIL_STRUCTURE_NONE without lines. */
    uint32_t end;              /**< Offset just past the terminator of the field's last line. */
    uint32_t first_parameter;  /**< Index of its first parameter. */
    uint32_t parameter_count;  /**< Number of its parameters, which are consecutive records. */
    mail_structure_text name;  /**< Before the colon, in the letter case of the message. */
    mail_structure_text value; /**< The field body; of Content-Type what precedes its first ';'. */
} mail_structure_field;

/** One parameter of a Content-Type field. */
typedef struct mail_structure_parameter {
    uint32_t field;            /**< Index of the field that it belongs to. */
    mail_structure_text name;  /**< Before the '='. */
    mail_structure_text value; /**< Without the quotes around it. */
} mail_structure_parameter;

/** The tree of a message. All arrays belong to the parser; they stay as they are until the parser
 * is given another message, or is freed. */
typedef struct mail_structure_tree {
    size_t struct_bytes; /**< sizeof(mail_structure_tree), set by the caller before the call. */
    const mail_structure_entity* entities; /**< In the order of the message; the root is first. */
    size_t entity_count;                   /**< Number of entities, at least 1. */
    size_t entity_bytes;                   /**< From one record to the next. */
    const mail_structure_field* fields;    /**< In the order of the entities. */
    size_t field_count;                    /**< Number of fields. */
    size_t field_bytes;                    /**< From one record to the next. */
    const mail_structure_parameter* parameters; /**< In the order of the fields. */
    size_t parameter_count;                     /**< Number of parameters. */
    size_t parameter_bytes;                     /**< From one record to the next. */
    const char* text;                           /**< The text area, which may hold any byte. */
    size_t text_bytes;                          /**< Bytes in the text area. */
} mail_structure_tree;

/** The names of all entities, as mail_sections::walk gives them: "1", "2.1", "TEXT". */
typedef struct mail_structure_names {
    size_t struct_bytes; /**< sizeof(mail_structure_names), set by the caller before the call. */
    const mail_structure_text* names; /**< Where each name lies in mail_structure_names::text, in
                                           the order of the entities. A name of more than 100
                                           numbers is left empty. */
    size_t name_count;                /**< The number of entities. */
    const char* text;                 /**< The names. No NUL stands between them. */
    size_t text_bytes;                /**< Bytes in all names. */
} mail_structure_names;

/** In mail_structure_section::piece: the whole message. */
#define MAIL_STRUCTURE_WHOLE UINT32_C(0)
/** In mail_structure_section::piece: the header block, with the empty line that ends it. */
#define MAIL_STRUCTURE_HEADER_BLOCK UINT32_C(1)
/** In mail_structure_section::piece: all that follows the header block. */
#define MAIL_STRUCTURE_BODY UINT32_C(2)

/** A section of the message, or why there is none; see mail_sections.h. */
typedef struct mail_structure_section {
    size_t struct_bytes; /**< sizeof(mail_structure_section), set by the caller before the call. */
    uint32_t entity;     /**< Index of its entity; MAIL_STRUCTURE_NONE where there is none. */
    uint32_t piece;      /**< MAIL_STRUCTURE_WHOLE, _HEADER_BLOCK or _BODY. */
    uint32_t is_message; /**< 1 for the message itself or a message within, 0 for a part. */
    uint32_t part_count; /**< Where there is no such part: how many there are in its place. */
    const mail_structure_range* ranges; /**< Its bytes: one range, except of HEADER.FIELDS. */
    size_t range_count;                 /**< Number of ranges; 0 if no bytes were given. */
    size_t error_offset;   /**< Of a text that names no section: where the mistake is in it. */
    const char* expected;  /**< What is expected there, in words; no NUL ends them. */
    size_t expected_bytes; /**< Bytes in expected; 0 where the text does name a section. */
    const char* nearest;   /**< Where there is no such section: the existing one that comes closest;
                                no NUL ends it. */
    size_t nearest_bytes;  /**< Bytes in nearest. */
} mail_structure_section;

/** Makes a parser. Returns null where memory has run out. */
MAIL_STRUCTURE_C_API mail_structure_parser* mail_structure_new(void);

/** Frees a parser and all that it has handed out. Null is allowed. */
MAIL_STRUCTURE_C_API void mail_structure_free(mail_structure_parser* parser);

/** Reads one message, which is all in memory. Nothing is copied of it but field names, values and
 * types; no byte past the end is read. Time is linear in the size of the message.
 *
 * After MAIL_STRUCTURE_STRAY_BYTE, MAIL_STRUCTURE_NO_COLON and MAIL_STRUCTURE_NO_MEMORY the parser
 * has the tree of the lines before the one at fault. Under MAIL_STRUCTURE_STANDARD no byte is an
 * error. Whatever mail_structure_get_tree gave before is invalid, and an unfinished message of
 * mail_structure_feed is dropped.
 * @param parser  reads the message
 * @param bytes   the message; null only where count is 0
 * @param count   its bytes
 * @param rules   MAIL_STRUCTURE_CLASSIC or MAIL_STRUCTURE_STANDARD */
MAIL_STRUCTURE_C_API mail_structure_code mail_structure_parse(mail_structure_parser* parser,
                                                              const void* bytes, size_t count,
                                                              int rules);

/** Begins a message that comes in pieces. What mail_structure_get_tree gave before is invalid, and
 * a message that was begun and not finished is dropped. */
MAIL_STRUCTURE_C_API mail_structure_code mail_structure_begin(mail_structure_parser* parser,
                                                              int rules);

/** Takes the next bytes of the message, cut anywhere. They are not needed after the call. The codes
 * are those of mail_structure_parse; after any but MAIL_STRUCTURE_OK the message is at its end, and
 * more bytes are a wrong call. */
MAIL_STRUCTURE_C_API mail_structure_code mail_structure_feed(mail_structure_parser* parser,
                                                             const void* bytes, size_t count);

/** Ends the message. The tree is then that of mail_structure_parse over all bytes at once. */
MAIL_STRUCTURE_C_API mail_structure_code mail_structure_finish(mail_structure_parser* parser);

/** Gives the tree of the last message; of a parser that has read none, a root without ranges. May
 * not be called between mail_structure_begin and mail_structure_finish. The first call after a
 * message lays the records out, in time linear in the size of the tree; others cost nothing.
 * @param parser  has read the message
 * @param tree    its struct_bytes must be set; members that the library does not know stay as they
 *              are, and so does everything where the call fails */
MAIL_STRUCTURE_C_API mail_structure_code mail_structure_get_tree(mail_structure_parser* parser,
                                                                 mail_structure_tree* tree);

/** Gives the names of all entities of the last message. May be called when mail_structure_get_tree
 * may. The first call for a message takes time n log n in the number of entities, and memory for
 * each name; others cost nothing.
 * @param parser  has read the message
 * @param names   its struct_bytes must be set, as in mail_structure_tree. What it is given belongs
 *                to the parser, and stays as it is as long as the tree does. */
MAIL_STRUCTURE_C_API mail_structure_code mail_structure_get_names(mail_structure_parser* parser,
                                                                  mail_structure_names* names);

/** Finds the section that a text such as "1.2", "1.2.MIME" or "HEADER.FIELDS (To Cc)" names; the
 * empty text names the whole message. May be called when mail_structure_get_tree may. Linear in
 * the length of the text and, for the ranges of a section, in what mail_sections::ranges states;
 * the first call for a message costs what that of mail_structure_get_names does.
 * @param parser      has read the message
 * @param text        the text; null only where text_bytes is 0
 * @param text_bytes  its bytes
 * @param bytes       the message once more; null where the ranges are not wanted
 * @param count       its bytes
 * @param section     its struct_bytes must be set, as in mail_structure_tree. What it is given
 *                    belongs to the parser, and is valid until the next call of this function, or
 *                    as long as the tree is.
 * @return MAIL_STRUCTURE_NO_SECTION where there is no such section; the members of the section then
 *         say why, and what there is instead */
MAIL_STRUCTURE_C_API mail_structure_code
mail_structure_find_section(mail_structure_parser* parser, const char* text, size_t text_bytes,
                            const void* bytes, size_t count, mail_structure_section* section);

/** For programs that are in C++ too: the address of the MailStructure object whose tree the parser
 * gives. The object must not be changed, and its tree is there as long as that of
 * mail_structure_get_tree. Null for a null parser. */
MAIL_STRUCTURE_C_API const void* mail_structure_object(const mail_structure_parser* parser);

/** A sentence without a full stop that says what a code means; of an unknown code, that it is
 * unknown. Never null, and valid for ever. */
MAIL_STRUCTURE_C_API const char* mail_structure_code_text(int code);

/** The version of the library's interface, as _lib_version in C++: 1. */
MAIL_STRUCTURE_C_API uint32_t mail_structure_interface_version(void);

/** The limit on the memory that fields and parameters of one message may take; see
 * MailStructure::m_memlimit. All parsers share it without a lock. */
MAIL_STRUCTURE_C_API void mail_structure_set_memory_limit(uint32_t bytes);

#ifdef __cplusplus
#define MAIL_STRUCTURE_CAST(type, value) static_cast<type>(value)
#else
#define MAIL_STRUCTURE_CAST(type, value) ((type)(value))
#endif

/** The record with that index in an array whose records are so many bytes apart. */
static inline const void* mail_structure_record_at(const void* first, size_t bytes, size_t index) {
    return MAIL_STRUCTURE_CAST(const char*, first) + bytes * index;
}

/** The entity with that index, which must be less than entity_count. */
static inline const mail_structure_entity* mail_structure_entity_at(const mail_structure_tree* tree,
                                                                    size_t index) {
    return MAIL_STRUCTURE_CAST(const mail_structure_entity*,
                               mail_structure_record_at(tree->entities, tree->entity_bytes, index));
}

/** The field with that index, which must be less than field_count. */
static inline const mail_structure_field* mail_structure_field_at(const mail_structure_tree* tree,
                                                                  size_t index) {
    return MAIL_STRUCTURE_CAST(const mail_structure_field*,
                               mail_structure_record_at(tree->fields, tree->field_bytes, index));
}

/** The parameter with that index, which must be less than parameter_count. */
static inline const mail_structure_parameter*
mail_structure_parameter_at(const mail_structure_tree* tree, size_t index) {
    return MAIL_STRUCTURE_CAST(
        const mail_structure_parameter*,
        mail_structure_record_at(tree->parameters, tree->parameter_bytes, index));
}

#ifdef __cplusplus
}
#endif

#endif
