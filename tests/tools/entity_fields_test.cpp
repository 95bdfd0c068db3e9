// The fields that the tools read: each is found by its whole name, in any case, and no other is.

#include "common/entity_fields.h"

#include <cctype>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>

namespace {

constexpr std::pair<known_field, const char*> all_names[] = {
    {known_field::to, "To"},
    {known_field::cc, "Cc"},
    {known_field::from, "From"},
    {known_field::date, "Date"},
    {known_field::subject, "Subject"},
    {known_field::message_id, "Message-ID"},
    {known_field::content_id, "Content-ID"},
    {known_field::content_type, "Content-Type"},
    {known_field::content_disposition, "Content-Disposition"},
    {known_field::content_transfer_encoding, "Content-Transfer-Encoding"},
};

void add_field(MailStructure::MimeObj& entity, const std::string& name, const std::string& value) {
    MailStructure::header& field = *entity.get_header();
    field.m_name = name;
    field.m_value = value;
}

TEST(entity_fields, are_none_of_an_entity_without_fields) {
    const MailStructure::MimeObj entity;
    const entity_fields fields(entity);
    for (const auto& [field, name] : all_names) {
        EXPECT_EQ(fields.first(field), nullptr) << name;
        EXPECT_EQ(fields.last(field), nullptr) << name;
        EXPECT_EQ(fields.first_value(field), "") << name;
    }
    EXPECT_EQ(&fields.entity(), &entity);
}

TEST(entity_fields, are_found_by_their_whole_names_in_any_case) {
    const auto with_case = [](std::string name, int (*change)(int)) {
        for (char& letter : name) letter = static_cast<char>(change(letter));
        return name;
    };
    MailStructure::MimeObj entity;
    for (const auto& [field, name] : all_names) {
        const std::string usual = name;
        for (const std::string& other :
             {usual + 'x', 'x' + usual, usual.substr(1), usual + std::string(32, 'x'),
              std::string(usual.size(), 'x'), usual.substr(1) + 'x'})
            add_field(entity, other, "not " + usual);
        add_field(entity, with_case(name, std::tolower), "first " + usual);
        add_field(entity, name, "second " + usual);
        add_field(entity, with_case(name, std::toupper), "last " + usual);
    }
    add_field(entity, "", "no name");
    const entity_fields fields(entity);
    for (const auto& [field, name] : all_names) {
        ASSERT_NE(fields.first(field), nullptr) << name;
        EXPECT_EQ(fields.first(field)->m_value, std::string("first ") + name);
        EXPECT_EQ(fields.first_value(field), std::string("first ") + name);
        EXPECT_EQ(fields.last(field)->m_value, std::string("last ") + name);
    }
}

using entity = MailStructure::MimeObj;
static_assert(std::is_convertible_v<const entity&, entity_fields>);
static_assert(!std::is_constructible_v<entity_fields, entity>, "its fields would be gone");

} // namespace
