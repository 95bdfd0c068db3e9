// Names of charsets: the spellings of the registries and of senders, and names that are unsafe.

#include "common/charset_conversion.h"
#include "common/charset_names.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct name_case {
    const char* m_written;
    const char* m_converter;
};

const name_case name_cases[] = {
    {"utf-8", "UTF-8"},
    {"UTF8", "UTF-8"},
    {"us-ascii", "US-ASCII"},
    {"ascii", "US-ASCII"},
    {"ANSI_X3.4-1968", "US-ASCII"},
    {"iso-ir-6", "US-ASCII"},
    {"ISO_646.irv:1991", "US-ASCII"},
    {"latin1", "ISO-8859-1"},
    {"Latin-1", "ISO-8859-1"},
    {"iso8859-1", "ISO-8859-1"},
    {"ISO_8859-1", "ISO-8859-1"},
    {"ISO_8859-1:1987", "ISO-8859-1"},
    {"iso-8859-8-i", "ISO-8859-8"},
    {"iso-8859-11", "ISO-8859-11"},
    {"latin-9", "ISO-8859-15"},
    {"cp1252", "CP1252"},
    {"cp-1252", "CP1252"},
    {"windows-1252", "CP1252"},
    {"x-cp1251", "CP1251"},
    {"win-1251", "CP1251"},
    {"sjis", "CP932"},
    {"shift-jis", "CP932"},
    {"Shift_JIS", "CP932"},
    {"cp932", "CP932"},
    {"Windows-31J", "CP932"},
    {"koi8_r", "KOI8-R"},
    {"koi8-ru", "KOI8-U"},
    {"macintosh", "MACINTOSH"},
    {"x-mac-roman", "MACINTOSH"},
    {"gb_2312-80", "GBK"},
    {"ks_c_5601-1987", "CP949"},
    {"Extended_UNIX_Code_Packed_Format_for_Japanese", "EUC-JP"},
    {"PC-Multilingual-850+euro", "CP858"},
    {"utf-16", "UTF-16"},
    {"unicode", "UTF-16"},
    {"utf-16be", "UTF-16BE"},
    {"IBM437", "CP437"},
    {"866", "CP866"},

    {"", ""},
    {"-", ""},
    {"utf-7", ""},
    {"UTF7", ""},
    {"csUTF7", ""},
    {"unicode-1-1-utf-7", ""},
    {"utf-7-imap", ""},
    {"ibm037", ""},
    {"latin1//TRANSLIT", ""},
    {"utf-8//IGNORE", ""},
    {"utf-8,ccs=utf-16", ""},
    {"../../gconv", ""},
    {"INTERNAL", ""},
    {"WCHAR_T", ""},
    {"iso-8859-12", ""},
    {"lat\xEFn1", ""},
    {"x-unknown", ""},
};

TEST(charset_names, are_those_of_the_registries_and_of_senders) {
    for (const name_case& row : name_cases) {
        EXPECT_EQ(converter_name(row.m_written), row.m_converter) << row.m_written;
    }
    EXPECT_EQ(converter_name(std::string("utf-8\0", 6)), "");
    EXPECT_EQ(converter_name(std::string(1000000, 'u')), "");
}

TEST(charset_names, lead_to_converters_that_the_system_has) {
    for (const name_case& row : name_cases) {
        if (*row.m_converter == '\0') continue;
        EXPECT_TRUE(utf8_conversion(row.m_written, strictness::strict).is_known()) << row.m_written;
        EXPECT_EQ(to_utf8("", row.m_written), "") << row.m_written;
    }
}

} // namespace
