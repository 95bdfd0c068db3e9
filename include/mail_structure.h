// The public interface of mailstructure: finds the structure of one Internet mail message.
//
//     std::ifstream file("message.eml", std::ios::binary);
//     MailStructure message;
//     message.Fill(file);                          // one pass over the lines of the message
//     for (const MailStructure::MimeObj& part : message.m_root.m_children)
//         use(part.m_type, part.m_body_beg, part.m_body_len);
//
// What Fill leaves behind is a tree of MIME entities. Each one tells where its pieces lie in the
// input; the text itself stays with the host, which cuts the pieces out of its own copy:
//
//     Subject: two parts                     <-- m_header begins
//     Content-Type: multipart/mixed; boundary=XY
//                                            <-- the empty line belongs to the header block
//     preamble                               <-- m_body begins, and m_contents
//     --XY                                   (a separator is in the contents range only)
//     Content-Type: text/plain               <-- the first child's m_header and m_mime begin
//
//     hello                                  <-- the first child's m_body and m_contents
//     --XY--                                 <-- m_body, m_contents and m_mime end
//     goodbye                                <-- m_epilogue
//
// Every range is an offset and a length in bytes, both unsigned 32-bit. Offsets count from the
// first byte that Fill read, and line terminators count as the bytes they are. An input of 4 GiB or
// more is read to its end, but its offsets wrap modulo 2^32.
//
// Threads: any number of threads may each use parser objects and trees of their own. The library
// starts no thread and locks nothing.
//
// Written for strict C++17 and later. Link with libmailstructure.

#ifndef MAIL_STRUCTURE_H
#define MAIL_STRUCTURE_H

/// @file
/// The public interface of mailstructure.

#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#if defined(__GNUC__)
#define MAIL_STRUCTURE_API __attribute__((visibility("default")))
#else
#define MAIL_STRUCTURE_API
#endif

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wunknown-warning-option"
#pragma clang diagnostic ignored "-Wreserved-identifier" // a published name; it stays
#endif
/// The version of this interface: 1.
extern MAIL_STRUCTURE_API const std::uint32_t _lib_version;
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

/// Compares the first n characters of s and of the NUL-terminated string p. ASCII letters match in
/// either case; every other byte matches only itself, whatever the locale.
///
/// - n = 0xFFFFFFFF stands for the length of s: the test is then whether s is a prefix of p, and
///   an empty s is a prefix of everything.
/// - Any other n that is greater than the length of s gives false; a p that ends before n
///   characters gives false; n = 0 gives true.
///
/// An overload beside the platform's function of the same name. A std::string as first argument
/// selects this one, which answers true for "equal", where the platform's answers 0. With a C
/// string first, the platform's wants its count as a std::size_t; an unsigned count fits both, and
/// the call is ambiguous.
/// @param s  the text that may be longer than what is compared
/// @param p  must not be null
/// @param n  how many characters to compare
/// Allocates nothing and throws nothing; reads at most n characters of each.
MAIL_STRUCTURE_API bool strncasecmp(const std::string& s, const char* p, std::uint32_t n);

/// The parser and the tree that it fills. A plain aggregate: a host sets the flags it wants, calls
/// Fill, and then reads m_root. A parser object may be filled any number of times, one message
/// after another.
struct MAIL_STRUCTURE_API MailStructure {
    struct MimeObj;

    /// Which rules take a message apart. classic is the rules that the library began with, whose
    /// ranges hosts have stored. standard reads mail as today's mail readers do.
    enum class rules : std::uint8_t { classic, standard };

    /// One header field (RFC 5322 section 2.2).
    ///
    /// A field's position is kept as begin and end, not as offset and length.
    struct header {
        /// The field name as written before the colon; no case folding.
        std::string m_name;
        /// The field body: trimmed at both ends, then each folded line appended from the one blank
        /// before its text on. Of a Content-Type field only what stands before the first ';'.
        std::string m_value;
        /// Offset of the first byte of the field's first line; 0xFFFFFFFF while there is none.
        std::uint32_t m_beg = 0xFFFFFFFF;
        /// Offset just past the terminator of the field's last line.
        std::uint32_t m_end = 0;
        /// The parameters of a Content-Type field as (name, value), in the order found (RFC 2045
        /// section 5.1), surrounding quotes removed. Empty for every other field.
        std::vector<std::pair<std::string, std::string>> m_params;
    };

    /// One MIME entity: the message itself, a body part, or an encapsulated message.
    ///
    /// Entities own their children by value. Copies are deep and memberwise: the m_parent of the
    /// copy and of every entity inside it is the one its original had, so the children inside a
    /// copy still point at the original. A pointer to a child, and the m_parent of entities below
    /// it, are valid until the next child is added to the same parent. Walk a finished tree from
    /// its root down through m_children; do not follow m_parent.
    ///
    /// No operation recurses on the depth of the tree: an entity nested a million deep is copied,
    /// assigned, cleared, dumped and destroyed on a small stack. Destruction, clear and moves
    /// allocate nothing.
    struct MAIL_STRUCTURE_API MimeObj {
        /// A multipart boundary was registered for this entity (RFC 2046 section 5.1).
        bool m_multipart = false;
        /// The body is itself a message (message/rfc822, RFC 2046 section 5.2.1).
        bool m_message = false;
        /// The header block, the blank line that ends it included.
        std::uint32_t m_header_beg = 0;
        std::uint32_t m_header_len = 0; ///< Bytes of the header block.
        /// The whole entity: header block and body, without the epilogue.
        std::uint32_t m_mime_beg = 0;
        std::uint32_t m_mime_len = 0; ///< Bytes of the whole entity.
        /// The body. Of a multipart it begins with the preamble and ends with the closing line. A
        /// body that begins at offset 0 loses its first line from this range when a second one
        /// comes.
        std::uint32_t m_body_beg = 0;
        std::uint32_t m_body_len = 0; ///< Bytes of the body.
        /// The lines after the closing line of a multipart, those of its descendants included.
        std::uint32_t m_epilogue_beg = 0;
        std::uint32_t m_epilogue_len = 0; ///< Bytes of the epilogue.
        /// The lines after this entity's header block that belong to it or to its descendants,
        /// separator lines and descendants' header blocks included, epilogue lines not.
        std::uint32_t m_contents_beg = 0;
        std::uint32_t m_contents_len = 0; ///< Bytes of the contents.
        /// Body parts, or the one encapsulated message, in the order of the input.
        std::vector<MimeObj> m_children;
        /// Header fields in the order of the input.
        std::vector<header> m_headers;
        /// The enclosing entity, null for the root. Not owning; see above for how long it is valid.
        MimeObj* m_parent = nullptr;
        /// Media type, subtype and content transfer encoding as written, no case folding.
        std::string m_type = "text";
        std::string m_subtype = "plain"; ///< Media subtype; see m_type.
        std::string m_encoding = "7bit"; ///< Content transfer encoding; see m_type.
        /// Number of body lines of this entity and all its descendants.
        std::uint32_t m_lines = 0;
        /// The text of the body lines, each followed by CR LF; empty unless text is kept.
        std::string m_body_text;
        /// The text of the epilogue lines, each followed by CR LF; empty unless text is kept.
        std::string m_epilogue_text;
        /// The last body line added was empty.
        bool m_body_last_empty = false;
        /// The last epilogue line added was empty.
        bool m_epilogue_last_empty = false;

        /// A text/plain entity without ranges, fields and children.
        MimeObj();
        /// Deep copy; every m_parent as it stands in the original. Linear in the size of the tree.
        /// @throws std::bad_alloc
        MimeObj(const MimeObj& other);
        /// Takes the contents and leaves other with empty containers. m_parent is copied.
        MimeObj(MimeObj&& other) noexcept;
        /// As the copy constructor; other may lie anywhere in this entity's own tree.
        /// @throws std::bad_alloc, and then this entity is unchanged
        MimeObj& operator=(const MimeObj& other);
        /// Takes the contents of other, which may lie anywhere in this entity's own tree.
        MimeObj& operator=(MimeObj&& other) noexcept;
        /// Allocates nothing, and does not recurse on the depth of the tree.
        ~MimeObj();

        /// Resets the entity for reuse: flags, ranges, counts and texts as in a new one, no
        /// children, no fields, storage of both vectors kept. The three type strings become empty,
        /// unlike those of a new entity, and m_parent stays. Allocates nothing; linear in the size
        /// of the tree. The storage of both vectors and of the strings is given back by assigning
        /// MimeObj().
        void clear();

        /// The first field whose name begins with the given one, ASCII case ignored, or null. So
        /// "subject" also finds a field "Subject-Line", and "" the first field.
        /// The pointer is valid until a field is added to this entity. Linear in the number of
        /// fields.
        const header* find_header_full(const std::string& name) const;
        /// The value of the field that find_header_full finds, or dflt itself where there is none.
        const std::string* find_header(const std::string& name, const std::string* dflt) const;

        /// Extends the whole-entity range by one line.
        /// @param start  offset of the line's first byte
        /// @param end    offset just past its terminator, or past the last byte of the input
        /// As for the next two: constant time, no allocation, cannot fail. Lines arrive in rising
        /// order; this is not checked, and all arithmetic wraps modulo 2^32.
        void add_mime_line(std::uint32_t start, std::uint32_t end);
        /// Extends the whole-entity range and the header-block range by one line.
        void add_header(std::uint32_t start, std::uint32_t end);
        /// Extends the contents range by one line.
        void add_contents_line(std::uint32_t start, std::uint32_t end);
        /// Adds one line to the body, or to the epilogue, of this entity and of all its ancestors
        /// as m_parent gives them. A body line extends the body and whole-entity ranges and counts
        /// in m_lines; an epilogue line extends the epilogue range only.
        /// @param save      append the line and CR LF to the kept text as well
        /// @param line      the line without its terminator; it is not changed
        /// @param start     offset of the line's first byte
        /// @param end       offset just past its terminator, or past the last byte of the input
        /// @param epilogue  the line is an epilogue line
        /// @throws std::bad_alloc  only when save is true
        /// One step for each ancestor.
        void add_body_line(bool save, std::string& line, std::uint32_t start, std::uint32_t end,
                           bool epilogue);

        /// Appends a child with default values, its m_parent pointing here, and returns it.
        /// The pointer is valid until the next child is added. Amortised constant time; earlier
        /// children are moved when the vector grows. @throws std::bad_alloc, and then nothing has
        /// changed
        MimeObj* get_obj();
        /// Appends a field with empty name and value, and returns it. The pointer is valid until
        /// the next field is added. @throws std::bad_alloc, and then nothing has changed
        header* get_header();
        /// Called for an entity when the parser closes it. Does nothing.
        void finalize();

        /// Prints this entity and all below it; see MailStructure::Dump.
        /// @param ifs   not read
        /// @param path  numbers of the entities from the root down to this one, its own last. On
        ///              return as long as before, its last element greater by one.
        void Dump(std::ifstream& ifs, std::vector<int>& path) const;
    };

    /// Set by Fill when it has read the input to its end; never set back by the library.
    bool m_done = false;
    /// Set by the host before Fill: keep the text of body and epilogue lines in the tree. Each line
    /// is kept once in its entity and once in every ancestor, so the text grows with the nesting
    /// depth. While this is set, m_memlimit does not bound the header fields.
    bool m_keep_text = false;
    /// The message.
    MimeObj m_root;

    /// An upper bound, in bytes, for what the header fields of one message may take, as Fill
    /// estimates it: 64 and the line length for each field line, 64 and the text length for each
    /// parameter. Fields past the bound are left out of the tree, their bytes stay in the ranges.
    /// 0xFFFFFFFF, the default, sets no practical bound. Shared by all parser objects and read
    /// without a lock: set it before any Fill runs.
    static std::uint32_t m_memlimit;

    /// Clears m_root and fills it from the stream, which is read from its present position to its
    /// end. What m_root held before is gone, references to it included: its records and their
    /// storage are used again for the new message, and what that does not need is freed by the end,
    /// so that at its peak the object may take what the old tree and the new one take together;
    /// call m_root.clear() first where that matters. Of m_root itself storage stays as clear leaves
    /// it; assign MailStructure() to free everything. Until Fill returns or throws, the tree is in
    /// no state that a stream's buffer, say, could look at. The input is one message (RFC 5322,
    /// with MIME as of RFC 2045 and RFC 2046), its lines ended by LF or by CR LF. No structure is
    /// an error: missing or mismatched boundaries yield a tree too.
    ///
    /// @throws std::runtime_error   "error in io input data": a CR, LF or NUL stands inside a line
    /// @throws std::length_error    a header line ended by CR LF holds a field name and no colon
    /// @throws std::bad_alloc       out of memory; while std::getline reads a line, which is where
    ///                              the stream's buffer has no get area or its locale widens LF to
    ///                              another byte, it is a read error instead
    /// @throws std::bad_cast        the stream's locale has no std::ctype<char>
    /// and what the stream itself throws where the host has given it an exception mask. A read
    /// error without a mask ends the input, as the end of the data does.
    ///
    /// After an exception the tree holds everything up to the line before, or as much of the line
    /// at fault as its place tells; m_done is unchanged; the object may be filled again.
    /// The stream is left as std::getline leaves it. Linear in the size of the input, whatever the
    /// nesting; kept text is linear in its own size.
    void Fill(std::istream& in);
    /// The same by the given rules; Fill(in) is Fill(in, rules::classic). Under rules::standard no
    /// bytes of the input are an error: only memory and the stream make it throw.
    void Fill(std::istream& in, rules by);

    /// Prints the tree for diagnosis: the entities with their ranges and header fields to
    /// std::cerr, the kept text of the leaves, between rulers, to std::cout.
    /// @param ifs  not read
    void Dump(std::ifstream& ifs) const;

    /// Opens an entity: a new child of the one on top of the stack, or m_root on an empty stack.
    /// Returns it, now on top of the stack. @throws std::bad_alloc
    MimeObj* push(std::vector<MimeObj*>& stack);
    /// Closes the entity on top of the stack: finalizes and removes it. Returns the entity now on
    /// top, or null when the stack is then empty or was so before.
    MimeObj* pop(std::vector<MimeObj*>& stack);
    /// Extends the contents range of all entities on the stack but the topmost skip ones by one
    /// line.
    void add_contents_line_to_all(const std::vector<MimeObj*>& stack, std::uint32_t start,
                                  std::uint32_t end, std::uint32_t skip);
};

#endif
