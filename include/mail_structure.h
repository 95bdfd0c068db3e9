// The public interface of mailstructure: finds the structure of one Internet mail message.
// Strict C++17 and later; link with libmailstructure.

#ifndef MAIL_STRUCTURE_H
#define MAIL_STRUCTURE_H

/// @file
/// The public interface of mailstructure.

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#if defined(__GNUC__)
#define MAIL_STRUCTURE_API __attribute__((visibility("default")))
#else
#define MAIL_STRUCTURE_API
#endif

namespace mail_structure_detail {
class chunk_parse;
class record_store;
class spare_storage;
} // namespace mail_structure_detail

/// The parser, and the tree that it leaves.
///
/// @code
///     std::ifstream file("message.eml", std::ios::binary);
///     MailStructure message;
///     message.Fill(file, MailStructure::rules::standard); // one pass over the lines
///     for (const MailStructure::MimeObj& part : message.m_root.m_children)
///         use(part.m_type, part.m_contents_beg, part.m_contents_len);
/// @endcode
///
/// A plain aggregate: a host sets the flags that it wants, calls Fill, and reads m_root, a tree of
/// MIME entities. Each entity tells where its pieces lie in the input. The text stays with the
/// host, which cuts the pieces out of its own copy of the message. A parser object may be filled
/// any number of times, with one message after another.
///
/// **Ranges.** A range is one stretch of the input: an offset, counted from the first byte that
/// Fill read, and a length, both in bytes and unsigned 32-bit. Line terminators count as the bytes
/// that they are. A length of 0 means that there is no such range. An input of 4 GiB or more is
/// read to its end, but its offsets wrap modulo 2^32.
///
/// A range begins with the first line that extends it and ends with the last one. Lines between
/// them lie in the range, even those that do not extend it themselves: here the separator and the
/// child's header block extend only the contents of the root, but lie in its mime and body ranges.
/// The ranges that each line extends:
///
/// @verbatim
///     line of the message                             of the root            of the child
///     Content-Type: multipart/mixed; boundary=XY      header mime
///                                                     header mime
///     preamble                                        mime body contents
///     --XY                                            contents
///     Content-Type: text/plain                        contents               header mime
///                                                     contents               header mime
///     hello                                           mime body contents     mime body contents
///     --XY--                                          mime body contents
///     goodbye                                         epilogue
/// @endverbatim
///
/// **Threads.** Any number of threads may each use parser objects and trees of their own; one
/// object is for one thread at a time. All objects share m_memlimit. The library starts no thread,
/// and no parser waits for another.
///
/// **Trust.** Names and values in a tree are bytes of the message, as hostile as their sender:
/// escape them before they reach a terminal, a shell or a database. They hold no LF, and under
/// rules::classic no CR. Under rules::standard a CR may stand in them, and under both any other
/// control character.
struct MAIL_STRUCTURE_API MailStructure {
    struct MimeObj;

    /// Which rules take a message apart. The classic rules are the library's first ones: they never
    /// change, since hosts have stored ranges that were computed by them. The standard rules read
    /// mail as today's mail readers do. In some places a range covers other lines under one set of
    /// rules than under the other; see doc/behaviour.md and doc/standard.md.
    enum class rules : std::uint8_t { classic, standard };

    /// One header field (RFC 5322 section 2.2).
    ///
    /// Unlike the ranges of entities, the place of a field is a begin and an end.
    struct header {
        /// The field name before the colon, in the letter case of the message.
        std::string m_name;
        /// The field body, of a Content-Type field only what stands before its first ';'. Classic
        /// rules: the text after the colon, trimmed at both ends, and then of each folded line the
        /// last blank before its text and all that follows; folded lines of a Content-Type field
        /// are not part of it. Standard rules: all lines joined, trimmed at both ends; a ';' in a
        /// comment does not count.
        std::string m_value;
        /// Offset of the first byte of the field's first line; 0xFFFFFFFF in a field without lines.
        std::uint32_t m_beg = 0xFFFFFFFF;
        /// Offset just past the terminator of the field's last line.
        std::uint32_t m_end = 0;
        /// The parameters of a Content-Type field (RFC 2045 section 5.1) as pairs of name and
        /// value, in the order of the input, without the quotes around a value. Empty for every
        /// other field.
        std::vector<std::pair<std::string, std::string>> m_params;
    };

    /// One MIME entity: the message itself, a body part, or an encapsulated message.
    ///
    /// Entities own their children and fields by value. A pointer or reference to a child or a
    /// field is valid until another one is added beside it, or until the tree that contains it is
    /// cleared, assigned to, filled again or destroyed.
    ///
    /// Do not follow m_parent in a finished tree: walk from the root down through m_children. An
    /// m_parent is valid only until another entity is added beside the one that it points to.
    /// Copies are deep and memberwise: every m_parent in a copy is the one that its original had,
    /// so the children inside a copy still point at the original.
    ///
    /// No operation recurses on the depth of the tree: an entity nested a million deep is copied,
    /// assigned, cleared, dumped and destroyed on a small stack. Destruction, clear and moves
    /// allocate nothing. Walk a tree with a loop as well, for mail is nested as deep as its sender
    /// wants.
    struct MAIL_STRUCTURE_API MimeObj {
        /// The header block of this entity gave the boundary of a multipart (RFC 2046 section 5.1).
        bool m_multipart = false;
        /// The body is itself a message (message/rfc822, RFC 2046 section 5.2.1).
        bool m_message = false;
        /// The header block, including the empty line that ends it.
        std::uint32_t m_header_beg = 0;
        std::uint32_t m_header_len = 0; ///< Bytes of the header block.
        /// The whole entity: header block and body, without the epilogue.
        std::uint32_t m_mime_beg = 0;
        std::uint32_t m_mime_len = 0; ///< Bytes of the whole entity.
        /// The body. That of a multipart begins with the preamble and ends with the closing line.
        /// Under the classic rules, a body that begins at offset 0 loses its first line from this
        /// range when a second line comes.
        std::uint32_t m_body_beg = 0;
        std::uint32_t m_body_len = 0; ///< Bytes of the body.
        /// The lines after the closing line of a multipart; under the classic rules, from the first
        /// to the last such line of the multipart and its descendants.
        std::uint32_t m_epilogue_beg = 0;
        std::uint32_t m_epilogue_len = 0; ///< Bytes of the epilogue.
        /// The lines after the header block that belong to this entity or to its descendants,
        /// including separators and the header blocks of descendants, without epilogue lines.
        std::uint32_t m_contents_beg = 0;
        std::uint32_t m_contents_len = 0; ///< Bytes of the contents.
        /// Body parts, or the one encapsulated message, in the order of the input.
        std::vector<MimeObj> m_children;
        /// Header fields in the order of the input.
        std::vector<header> m_headers;
        /// The enclosing entity, null for the root. Not to be followed in a finished tree; see
        /// MimeObj.
        MimeObj* m_parent = nullptr;
        /// Media type, in the letter case of the message.
        std::string m_type = "text";
        std::string m_subtype = "plain"; ///< Media subtype, in the letter case of the message.
        /// Content transfer encoding. Under the classic rules the usual Content-Transfer-Encoding
        /// field does not set it; look for that field with find_header.
        std::string m_encoding = "7bit";
        /// Number of body lines of this entity and of all its descendants.
        std::uint32_t m_lines = 0;
        /// The text of the body lines, each followed by CR LF; empty unless m_keep_text is set.
        std::string m_body_text;
        /// The text of the epilogue lines, each followed by CR LF; empty unless m_keep_text is set.
        std::string m_epilogue_text;
        /// The body line that was added last is empty.
        bool m_body_last_empty = false;
        /// The epilogue line that was added last is empty.
        bool m_epilogue_last_empty = false;

        /// A text/plain entity without ranges, fields and children.
        MimeObj();
        /// Deep copy; every m_parent is that of the original. Linear in the size of the tree.
        /// @throws std::bad_alloc
        MimeObj(const MimeObj& other);
        /// Takes the members of other, whose vectors are then empty. m_parent is copied.
        MimeObj(MimeObj&& other) noexcept;
        /// Copies as the constructor does; other may lie anywhere in this entity's own tree.
        /// @throws std::bad_alloc  and then this entity is unchanged
        MimeObj& operator=(const MimeObj& other);
        /// Takes the members of other, which may lie anywhere in this entity's own tree.
        MimeObj& operator=(MimeObj&& other) noexcept;
        /// Allocates nothing, and does not recurse on the depth of the tree.
        ~MimeObj();

        /// Empties the entity for reuse. Flags, ranges, counts and kept text become those of a new
        /// entity, and there are no children and no fields. m_type, m_subtype and m_encoding become
        /// empty, unlike those of a new entity, and m_parent stays as it is.
        ///
        /// Both vectors and the strings keep their storage; assigning MimeObj() gives it back.
        /// Allocates nothing. Linear in the size of the tree.
        void clear();

        /// The first field whose name begins with the given one, ASCII letters in either case, or
        /// null. So "subject" also finds a field "Subject-Line", and "" finds the first field.
        /// Linear in the number of fields.
        const header* find_header_full(const std::string& name) const;
        /// The value of the field that find_header_full finds, or dflt where it finds none.
        const std::string* find_header(const std::string& name, const std::string* dflt) const;

        /// Extends the whole-entity range by one line.
        /// @param start  offset of the line's first byte
        /// @param end    offset just past its terminator, or past the last byte of the input
        ///
        /// This function and the next two take constant time, allocate nothing and cannot fail. The
        /// caller gives lines in rising order; this is not checked, and all arithmetic wraps modulo
        /// 2^32.
        void add_mime_line(std::uint32_t start, std::uint32_t end);
        /// Extends the whole-entity range and the header-block range by one line.
        void add_header(std::uint32_t start, std::uint32_t end);
        /// Extends the contents range by one line.
        void add_contents_line(std::uint32_t start, std::uint32_t end);
        /// Adds one line to the body, or to the epilogue, of this entity and of all its ancestors,
        /// which are found by m_parent. A body line extends the body and whole-entity ranges and
        /// counts in m_lines; an epilogue line extends the epilogue range only.
        /// @param save      whether to append the line and CR LF to the kept text as well
        /// @param line      the line without its terminator; it is not changed
        /// @param start     offset of the line's first byte
        /// @param end       offset just past its terminator, or past the last byte of the input
        /// @param epilogue  whether the line is an epilogue line
        /// @throws std::bad_alloc  only when save is true
        ///
        /// Takes one step for each ancestor.
        void add_body_line(bool save, std::string& line, std::uint32_t start, std::uint32_t end,
                           bool epilogue);

        /// Appends a child with default values, whose m_parent is this entity, and returns it.
        /// The pointer is valid until the next child is added. Amortised constant time; earlier
        /// children are moved when the vector grows.
        /// @throws std::bad_alloc  and then nothing has changed
        MimeObj* get_obj();
        /// Appends a field with empty name and value, and returns it. The pointer is valid until
        /// the next field is added.
        /// @throws std::bad_alloc  and then nothing has changed
        header* get_header();
        /// Is called for an entity when the parser closes it. Does nothing.
        void finalize();

        /// Prints this entity and all its descendants; see MailStructure::Dump.
        /// @param ifs   is not read
        /// @param path  the numbers of the entities from the root down to this one, whose own
        ///              number is the last. On return the last number is greater by one, and the
        ///              others are as before.
        void Dump(std::ifstream& ifs, std::vector<int>& path) const;
    };

    /// Fill sets this when it has read the input to its end. The library never sets it back.
    bool m_done = false;
    /// Whether Fill keeps the text of body and epilogue lines in the tree. Each line is kept once
    /// in its entity and once in every ancestor, so the text grows with the nesting depth: leave
    /// this off for mail from strangers. Fill reads the flag once, at its start.
    bool m_keep_text = false;
    /// The message.
    MimeObj m_root;

    /// Records that the tree has no use for at present, up to 64 KiB of them. They are no part of
    /// the message, and a copy has none of them.
    class MAIL_STRUCTURE_API spare_records {
    public:
        spare_records() noexcept = default;
        /// Copies nothing.
        spare_records(const spare_records& /*other*/) noexcept {}
        /// Takes over the records; the other object has none then.
        spare_records(spare_records&& other) noexcept { std::swap(m_held, other.m_held); }
        /// Copies nothing, and leaves the records of this object as they are. (So nothing can go
        /// wrong where an object is assigned to itself.)
        // cppcheck-suppress operatorEqVarError
        // NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp)
        spare_records& operator=(const spare_records& /*other*/) noexcept { return *this; }
        /// Exchanges the records.
        spare_records& operator=(spare_records&& other) noexcept {
            std::swap(m_held, other.m_held);
            return *this;
        }
        ~spare_records();

    private:
        friend class mail_structure_detail::spare_storage;
        mail_structure_detail::record_store* m_held = nullptr;
    };
    /// What Fill keeps for the next message. There is nothing in it for the host.
    spare_records m_spare = {};

    /// A limit, in bytes, on the memory that the header fields and parameters of one message take,
    /// as Fill estimates it: 64 and the length of the first line for each field, and 64 and the
    /// text length for each parameter. Fields and parameters past the limit are left out of the
    /// tree; their bytes stay in the ranges. 0xFFFFFFFF, the default, sets no practical limit.
    ///
    /// This is no strict bound on memory: folded lines are not counted, fields are not limited
    /// while m_keep_text is set, and the estimate is 32-bit and wraps; doc/behaviour.md lists what
    /// the limit leaves out. Fill reads the limit once, at its start. All parser objects share it
    /// without a lock: set it before any Fill runs.
    static std::uint32_t m_memlimit;

    /// Reads one message (RFC 5322, with MIME as of RFC 2045 and RFC 2046) from the stream's
    /// present position to its end, and builds its tree in m_root. Lines end with LF or CR LF, so
    /// open files in binary mode. No structure is an error: missing or mismatched boundaries yield
    /// a tree too. Time is linear in the size of the input, whatever the nesting; kept text is
    /// linear in its own size. m_keep_text and m_memlimit are read once, before the first line.
    ///
    /// The separator line of an mbox ("From " and what follows) is no part of a message, and Fill
    /// cuts no input at such lines: it reads an mbox of several messages as one message. Under the
    /// classic rules such a line at the beginning ends the header block, and the message then has
    /// no fields and no parts. So a host passes over that line before it calls Fill, and adds its
    /// length to the offsets, which count from the line after it. Under rules::standard the line
    /// may stay: it is in the header block, and is passed over there.
    ///
    /// References into the old tree of m_root are invalid as soon as Fill starts. The records of
    /// that tree and their storage are used again for the new message. Those that it does not need
    /// are kept for later messages if they take 64 KiB or less, and are freed if they take more.
    /// While Fill runs, the object may take as much memory as both trees together; call
    /// m_root.clear() before Fill where that matters. m_root itself keeps its storage as clear
    /// leaves it; assign MailStructure() to free everything. No other code, not even that of the
    /// stream's buffer, may look at the tree while Fill runs.
    ///
    /// @throws std::runtime_error  "error in io input data": a CR or NUL stands inside a line, or
    ///                             an LF where the stream's locale widens LF to another byte
    /// @throws std::length_error   a header line begins with a letter, consists of letters and
    ///                             hyphens without a colon, and ends with CR LF, or with CR and the
    ///                             end of the input
    /// @throws std::bad_alloc      memory has run out. Where the stream's buffer has no get area,
    ///                             or its locale widens LF to another byte, std::getline reads the
    ///                             lines, and turns lack of memory into a read error
    /// @throws std::bad_cast       the stream's locale has no std::ctype<char>, or the global
    ///                             locale has none when the first field comes
    ///
    /// The stream itself throws what the host has set in its exception mask. Without a mask, a read
    /// error ends the input as the end of the data does; ask in.bad() afterwards. After an
    /// exception the tree holds all lines before the one at fault. After std::length_error it also
    /// holds the record of the field that the line begins, with its name and no range; where memory
    /// ran out, it holds what was recorded of the line until then. m_done is unchanged, and the
    /// object may be filled again. The stream is left as std::getline leaves it.
    /// @param in  the message; a buffer that holds all of it, over a mapped file for instance, is
    ///            scanned in place
    void Fill(std::istream& in);
    /// Does what Fill(in) does, by the given rules; Fill(in) is Fill(in, rules::classic). Under
    /// rules::standard nothing in the input is an error: only lack of memory and the stream make
    /// Fill throw. Where the stream throws, the tree is that of the lines read before.
    void Fill(std::istream& in, rules by);
    /// Parses a message that is in memory, where its bytes lie. The tree, m_done and the exceptions
    /// are those of a stream over the same bytes in the classic locale. Nothing is copied or
    /// written, and no byte past the end is read. This is the fastest form of Fill, for small
    /// messages above all.
    /// @param bytes  the whole message. The bytes must stay unchanged until Fill returns, and must
    ///               not lie in the tree of this object; the tree does not point to them. A C
    ///               string ends at its first NUL, so hand in a view where a NUL may occur.
    /// @param by     the rules
    void Fill(std::string_view bytes, rules by = rules::classic);

    /// Parses a message while it arrives in pieces, from a network connection for instance:
    ///
    /// @code
    ///     MailStructure message;
    ///     MailStructure::feeder feeder(message, MailStructure::rules::standard);
    ///     while (receive(buffer)) feeder.feed(buffer); // any number of bytes at a time
    ///     feeder.finish();
    /// @endcode
    ///
    /// However the message is cut, the tree, m_done and the exceptions are those of one Fill over
    /// all of its bytes. Only lack of memory can show elsewhere.
    ///
    /// **Cost.** Time is linear in the bytes, even if a long line comes byte by byte. Lines are
    /// looked at in the caller's buffer. The feeder copies the beginning of a line whose end has
    /// not come yet, and nothing else.
    ///
    /// **Lifetime.** The parser object must outlive the feeder. From the constructor until the
    /// feeder has ended, the tree is in between: nothing may look at it, and the parser object must
    /// not be moved, assigned or filled. A feeder ends when finish returns, when feed or finish
    /// throws, and when it is destroyed or assigned to. After that the object may be filled again.
    ///
    /// **Broken off.** A feeder may be destroyed at any time. Where that ends it, the tree holds
    /// what had come: it is the tree that Fill over these bytes leaves, and the beginning of a last
    /// line counts as that line. But m_done is unchanged, and an exception that Fill would throw is
    /// not thrown.
    class MAIL_STRUCTURE_API feeder {
    public:
        /// Begins a message, as Fill does: the old tree of m_root is taken over, and m_keep_text
        /// and m_memlimit are read.
        /// @param message  gets the tree
        /// @param by       the rules
        /// @throws std::bad_alloc  and then m_root is as clear leaves it
        explicit feeder(MailStructure& message, rules by = rules::classic);
        /// Goes on with the other's message. The other feeder has then ended.
        feeder(feeder&& other) noexcept;
        /// Ends this feeder as its destructor does, and goes on with the other's message. The other
        /// feeder has then ended.
        feeder& operator=(feeder&& other) noexcept;
        /// Ends the feeder; see "Broken off". May be called at any time.
        ~feeder();

        /// Takes the next bytes of the message. They are not needed after the call.
        /// @throws what Fill throws, as soon as the line at fault is whole; the tree is then what
        ///         that exception of Fill leaves, and the feeder has ended
        /// @throws std::logic_error  the feeder has ended
        void feed(std::string_view bytes);
        /// Ends the message, and the feeder with it; sets m_done.
        /// @throws what Fill throws at the end of the input, and then the feeder has ended too
        /// @throws std::logic_error  the feeder has ended
        void finish();

    private:
        void break_off() noexcept;

        std::unique_ptr<mail_structure_detail::chunk_parse> m_parse; // null when ended
    };

    /// Prints the tree for diagnosis: the entities with their ranges and header fields to
    /// std::cerr, and the kept text of each entity without children, between two lines of dashes,
    /// to std::cout.
    /// @param ifs  is not read
    void Dump(std::ifstream& ifs) const;

    /// Opens an entity and puts it on the stack: m_root where the stack is empty, else a new child
    /// of the stack's last entity. Returns the entity.
    /// @throws std::bad_alloc
    MimeObj* push(std::vector<MimeObj*>& stack);
    /// Closes the stack's last entity: finalizes it and takes it off the stack. Returns the entity
    /// that is then the last, or null where the stack is then empty or was so before.
    MimeObj* pop(std::vector<MimeObj*>& stack);
    /// Extends the contents range of the entities on the stack, without the last `skip` ones, by
    /// the line from start to just before end.
    void add_contents_line_to_all(const std::vector<MimeObj*>& stack, std::uint32_t start,
                                  std::uint32_t end, std::uint32_t skip);
};

/// Whether the first n characters of s and of the NUL-terminated string p are the same. ASCII
/// letters match in either case; every other byte matches only itself, whatever the locale.
///
/// - n = 0xFFFFFFFF stands for the length of s: the question is then whether s is a prefix of p.
///   An empty s is a prefix of everything.
/// - Any other n that is greater than the length of s gives false, and so does a p that ends before
///   n characters. n = 0 gives true.
///
/// This overloads the platform's function of the same name, which answers 0 for equal texts. A
/// std::string as first argument selects this one. A C string selects the platform's if the count
/// is a std::size_t; with an unsigned count both fit, and the call is ambiguous.
///
/// Allocates nothing and throws nothing; reads at most n characters of each text.
/// @param s  may be longer than n
/// @param p  must not be null
/// @param n  how many characters to compare
MAIL_STRUCTURE_API bool strncasecmp(const std::string& s, const char* p, std::uint32_t n);

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

#endif
