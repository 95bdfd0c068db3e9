// The shape of the public interface: names, types, order and size of the members. A change here
// changes the binary interface and needs a new SOVERSION.

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <istream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using header = MailStructure::header;
using parameter_list = std::vector<std::pair<std::string, std::string>>;

// The parser is set up member by member.
static_assert(std::is_aggregate_v<MailStructure>);
static_assert(std::is_same_v<decltype(MailStructure::m_done), bool>);
static_assert(std::is_same_v<decltype(MailStructure::m_keep_text), bool>);
static_assert(std::is_same_v<decltype(MailStructure::m_root), MimeObj>);
static_assert(std::is_same_v<decltype(MailStructure::m_memlimit), std::uint32_t>);
static_assert(
    std::is_same_v<decltype(&MailStructure::m_memlimit), std::uint32_t*>); // a static member
static_assert(std::is_same_v<decltype(_lib_version), const std::uint32_t>);

// Each overload of Fill has the type that it is taken for here.
[[maybe_unused]] constexpr void (MailStructure::*fill)(std::istream&) = &MailStructure::Fill;
[[maybe_unused]] constexpr void (MailStructure::*fill_by_rules)(
    std::istream&, MailStructure::rules) = &MailStructure::Fill;
[[maybe_unused]] constexpr void (MailStructure::*fill_from_memory)(
    std::string_view, MailStructure::rules) = &MailStructure::Fill;
static_assert(sizeof(MailStructure::rules) == 1);
static_assert(static_cast<int>(MailStructure::rules::classic) == 0);
static_assert(static_cast<int>(MailStructure::rules::standard) == 1);
static_assert(
    std::is_same_v<decltype(&MailStructure::Dump), void (MailStructure::*)(std::ifstream&) const>);
static_assert(std::is_same_v<decltype(&MailStructure::push),
                             MimeObj* (MailStructure::*)(std::vector<MimeObj*>&)>);
static_assert(std::is_same_v<decltype(&MailStructure::pop),
                             MimeObj* (MailStructure::*)(std::vector<MimeObj*>&)>);
static_assert(std::is_same_v<decltype(&MailStructure::add_contents_line_to_all),
                             void (MailStructure::*)(const std::vector<MimeObj*>&, std::uint32_t,
                                                     std::uint32_t, std::uint32_t)>);

static_assert(std::is_same_v<decltype(&MimeObj::clear), void (MimeObj::*)()>);
static_assert(std::is_same_v<decltype(&MimeObj::find_header_full),
                             const header* (MimeObj::*)(const std::string&) const>);
static_assert(
    std::is_same_v<decltype(&MimeObj::find_header),
                   const std::string* (MimeObj::*)(const std::string&, const std::string*) const>);
static_assert(std::is_same_v<decltype(&MimeObj::add_mime_line),
                             void (MimeObj::*)(std::uint32_t, std::uint32_t)>);
static_assert(std::is_same_v<decltype(&MimeObj::add_header),
                             void (MimeObj::*)(std::uint32_t, std::uint32_t)>);
static_assert(std::is_same_v<decltype(&MimeObj::add_contents_line),
                             void (MimeObj::*)(std::uint32_t, std::uint32_t)>);
static_assert(
    std::is_same_v<decltype(&MimeObj::add_body_line),
                   void (MimeObj::*)(bool, std::string&, std::uint32_t, std::uint32_t, bool)>);
static_assert(std::is_same_v<decltype(&MimeObj::get_obj), MimeObj* (MimeObj::*)()>);
static_assert(std::is_same_v<decltype(&MimeObj::get_header), header* (MimeObj::*)()>);
static_assert(std::is_same_v<decltype(&MimeObj::finalize), void (MimeObj::*)()>);
static_assert(std::is_same_v<decltype(&MimeObj::Dump),
                             void (MimeObj::*)(std::ifstream&, std::vector<int>&) const>);
static_assert(std::is_same_v<decltype(static_cast<bool (*)(const std::string&, const char*,
                                                           std::uint32_t)>(&strncasecmp)),
                             bool (*)(const std::string&, const char*, std::uint32_t)>);

static_assert(std::is_same_v<decltype(MimeObj::m_children), std::vector<MimeObj>>);
static_assert(std::is_same_v<decltype(MimeObj::m_headers), std::vector<header>>);
static_assert(std::is_same_v<decltype(MimeObj::m_parent), MimeObj*>);
static_assert(std::is_same_v<decltype(header::m_params), parameter_list>);

// Growing vectors must move entities: a copy would copy whole subtrees.
static_assert(std::is_nothrow_default_constructible_v<header>);
static_assert(
    std::is_nothrow_move_constructible_v<MimeObj> && std::is_nothrow_move_assignable_v<MimeObj>);
static_assert(std::is_nothrow_move_constructible_v<header>);
static_assert(std::is_nothrow_move_constructible_v<MailStructure>);
static_assert(std::is_nothrow_destructible_v<MimeObj>);
static_assert(std::is_copy_constructible_v<MimeObj> && std::is_copy_assignable_v<MimeObj>);
static_assert(
    std::is_copy_constructible_v<MailStructure> && std::is_copy_assignable_v<MailStructure>);
static_assert(!std::is_polymorphic_v<MimeObj> && !std::is_polymorphic_v<MailStructure>);

/// Where the members of an object lie, in the order given.
template <class Object, class... Members>
std::vector<std::ptrdiff_t> places(const Object& object, Members... members) {
    const auto* begin = reinterpret_cast<const char*>(&object);
    return {reinterpret_cast<const char*>(&(object.*members)) - begin...};
}

#if defined(__x86_64__) && defined(__GLIBCXX__) && _GLIBCXX_USE_CXX11_ABI

TEST(interface, entity_has_its_members_in_order) {
    EXPECT_EQ(places(MimeObj(), &MimeObj::m_multipart, &MimeObj::m_message, &MimeObj::m_header_beg,
                     &MimeObj::m_header_len, &MimeObj::m_mime_beg, &MimeObj::m_mime_len,
                     &MimeObj::m_body_beg, &MimeObj::m_body_len, &MimeObj::m_epilogue_beg,
                     &MimeObj::m_epilogue_len, &MimeObj::m_contents_beg, &MimeObj::m_contents_len,
                     &MimeObj::m_children, &MimeObj::m_headers, &MimeObj::m_parent,
                     &MimeObj::m_type, &MimeObj::m_subtype, &MimeObj::m_encoding, &MimeObj::m_lines,
                     &MimeObj::m_body_text, &MimeObj::m_epilogue_text, &MimeObj::m_body_last_empty,
                     &MimeObj::m_epilogue_last_empty),
              (std::vector<std::ptrdiff_t>{0,  1,  4,  8,   12,  16,  20,  24,  28,  32,  36, 40,
                                           48, 72, 96, 104, 136, 168, 200, 208, 240, 272, 273}));
    EXPECT_EQ(sizeof(MimeObj), 280U);
}

TEST(interface, field_has_its_members_in_order) {
    EXPECT_EQ(places(header(), &header::m_name, &header::m_value, &header::m_beg, &header::m_end,
                     &header::m_params),
              (std::vector<std::ptrdiff_t>{0, 32, 64, 68, 72}));
    EXPECT_EQ(sizeof(header), 96U);
}

TEST(interface, parser_has_its_members_in_order) {
    EXPECT_EQ(places(MailStructure(), &MailStructure::m_done, &MailStructure::m_keep_text,
                     &MailStructure::m_root, &MailStructure::m_spare),
              (std::vector<std::ptrdiff_t>{0, 1, 8, 288}));
    EXPECT_EQ(sizeof(MailStructure), 296U);
}

#endif

TEST(interface, ranges_and_counts_are_32_bit_words) {
    const std::vector<std::uint32_t MimeObj::*> words{
        &MimeObj::m_header_beg,   &MimeObj::m_header_len,   &MimeObj::m_mime_beg,
        &MimeObj::m_mime_len,     &MimeObj::m_body_beg,     &MimeObj::m_body_len,
        &MimeObj::m_epilogue_beg, &MimeObj::m_epilogue_len, &MimeObj::m_contents_beg,
        &MimeObj::m_contents_len, &MimeObj::m_lines};
    MimeObj entity;
    for (std::uint32_t MimeObj::*word : words) EXPECT_EQ((entity.*word)++, 0U);
    for (std::uint32_t MimeObj::*word : words) EXPECT_EQ(entity.*word, 1U);
}

TEST(interface, library_tells_its_version) { EXPECT_EQ(_lib_version, 1U); }

TEST(interface, parser_is_set_up_member_by_member) {
    const MailStructure message{false, true, {}};
    EXPECT_FALSE(message.m_done);
    EXPECT_TRUE(message.m_keep_text);
    EXPECT_EQ(message.m_root.m_type, "text");
}

TEST(interface, memory_limit_is_shared_and_writable) {
    const std::uint32_t before = MailStructure::m_memlimit;
    MailStructure::m_memlimit = 5;
    EXPECT_EQ(MailStructure().m_memlimit, 5U);
    MailStructure::m_memlimit = before;
    EXPECT_EQ(before, 0xFFFFFFFFU);
}

} // namespace
