// The table of charset names, and the search in it; see the header.

#include "common/charset_names.h"

#include "common/ascii_case.h"
#include "common/character_class.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace {

struct charset_names {
    std::string_view m_of_converter;
    std::string_view m_in_mail; // letters and digits alone, in lower case; blanks between names
};

constexpr std::array charsets = {
    // Unicode. Text in "utf-16" without a byte order mark is in practice little-endian.
    charset_names{"UTF-8",
                  "utf8 csutf8 unicode11utf8 unicode20utf8 xunicode20utf8 cp65001 utf8mb4"},
    charset_names{"UTF-16", "utf16 csutf16 ucs2 csunicode unicode iso10646ucs2"},
    charset_names{"UTF-16LE", "utf16le csutf16le unicodefeff"},
    charset_names{"UTF-16BE", "utf16be csutf16be unicodefffe"},
    charset_names{"UTF-32", "utf32 csutf32 ucs4 csucs4 iso10646ucs4"},
    charset_names{"UTF-32LE", "utf32le csutf32le"},
    charset_names{"UTF-32BE", "utf32be csutf32be"},

    // ISO 646 and ISO 8859
    charset_names{"US-ASCII", "usascii ascii csascii us ansix341968 ansix341986 iso646irv1991 "
                              "iso646us isoir6 ibm367 cp367 646"},
    charset_names{"ISO-8859-1",
                  "iso88591 iso885911987 latin1 l1 csisolatin1 isoir100 ibm819 cp819 88591"},
    charset_names{"ISO-8859-2", "iso88592 iso885921987 latin2 l2 csisolatin2 isoir101 88592"},
    charset_names{"ISO-8859-3", "iso88593 iso885931988 latin3 l3 csisolatin3 isoir109 88593"},
    charset_names{"ISO-8859-4", "iso88594 iso885941988 latin4 l4 csisolatin4 isoir110 88594"},
    charset_names{"ISO-8859-5", "iso88595 iso885951988 cyrillic csisolatincyrillic isoir144 88595"},
    charset_names{"ISO-8859-6",
                  "iso88596 iso885961987 arabic csisolatinarabic isoir127 asmo708 ecma114 "
                  "iso88596e csiso88596e iso88596i csiso88596i 88596"},
    charset_names{"ISO-8859-7", "iso88597 iso885971987 greek greek8 csisolatingreek isoir126 "
                                "elot928 ecma118 suneugreek 88597"},
    charset_names{"ISO-8859-8",
                  "iso88598 iso885981988 hebrew csisolatinhebrew isoir138 iso88598e csiso88598e "
                  "iso88598i csiso88598i logical visual 88598"},
    charset_names{"ISO-8859-9", "iso88599 iso885991989 latin5 l5 csisolatin5 isoir148 88599"},
    charset_names{"ISO-8859-10", "iso885910 iso8859101992 latin6 l6 csisolatin6 isoir157 885910"},
    charset_names{"ISO-8859-11", "iso885911 csiso885911 isoir166 885911"},
    charset_names{"ISO-8859-13", "iso885913 csiso885913 latin7 l7 isoir179 885913"},
    charset_names{"ISO-8859-14",
                  "iso885914 iso8859141998 csiso885914 latin8 l8 isoceltic isoir199 885914"},
    charset_names{"ISO-8859-15", "iso885915 csiso885915 latin9 l9 csisolatin9 isoir203 885915"},
    charset_names{"ISO-8859-16", "iso885916 iso8859162001 csiso885916 latin10 l10 isoir226 885916"},

    // Windows
    charset_names{"CP874", "windows874 cswindows874 cp874 dos874 xwindows874"},
    charset_names{"CP1250", "windows1250 cswindows1250 cp1250 xcp1250 win1250"},
    charset_names{"CP1251", "windows1251 cswindows1251 cp1251 xcp1251 win1251"},
    charset_names{"CP1252", "windows1252 cswindows1252 cp1252 xcp1252 win1252 ansi xansi"},
    charset_names{"CP1253", "windows1253 cswindows1253 cp1253 xcp1253 win1253"},
    charset_names{"CP1254", "windows1254 cswindows1254 cp1254 xcp1254 win1254"},
    charset_names{"CP1255", "windows1255 cswindows1255 cp1255 xcp1255 win1255"},
    charset_names{"CP1256", "windows1256 cswindows1256 cp1256 xcp1256 win1256"},
    charset_names{"CP1257", "windows1257 cswindows1257 cp1257 xcp1257 win1257"},
    charset_names{"CP1258", "windows1258 cswindows1258 cp1258 xcp1258 win1258"},

    // DOS
    charset_names{"CP437", "ibm437 cp437 437 cspc8codepage437"},
    charset_names{"CP737", "ibm737 cp737 737"},
    charset_names{"CP775", "ibm775 cp775 775 cspc775baltic"},
    charset_names{"CP850", "ibm850 cp850 850 cspc850multilingual"},
    charset_names{"CP852", "ibm852 cp852 852 cspcp852"},
    charset_names{"CP855", "ibm855 cp855 855 csibm855"},
    charset_names{"CP857", "ibm857 cp857 857 csibm857"},
    charset_names{"CP858", "ibm858 cp858 858 ibm00858 cp00858 ccsid00858 csibm00858 "
                           "pcmultilingual850euro"},
    charset_names{"CP860", "ibm860 cp860 860 csibm860"},
    charset_names{"CP861", "ibm861 cp861 861 cpis csibm861"},
    charset_names{"CP862", "ibm862 cp862 862 cspc862latinhebrew"},
    charset_names{"CP863", "ibm863 cp863 863 csibm863"},
    charset_names{"CP864", "ibm864 cp864 864 csibm864"},
    charset_names{"CP865", "ibm865 cp865 865 csibm865"},
    charset_names{"CP866", "ibm866 cp866 866 csibm866"},
    charset_names{"CP869", "ibm869 cp869 869 cpgr csibm869"},

    // Chinese, Japanese, Korean. Senders write the name of the smaller charset for the larger one.
    charset_names{"GBK", "gbk csgbk xgbk gb2312 csgb2312 gb231280 csiso58gb231280 isoir58 chinese "
                         "euccn xeuccn cngb cp936 ms936 windows936"},
    charset_names{"GB18030", "gb18030 csgb18030 gb180302000"},
    charset_names{"BIG5", "big5 csbig5 cnbig5 xxbig5 xbig5 big5tw"},
    charset_names{"CP950", "cp950 ms950 windows950"},
    charset_names{"BIG5-HKSCS", "big5hkscs csbig5hkscs"},
    charset_names{"EUC-TW", "euctw xeuctw"},
    charset_names{"ISO-2022-CN", "iso2022cn csiso2022cn"},
    charset_names{"EUC-JP", "eucjp cseucpkdfmtjapanese xeucjp ujis "
                            "extendedunixcodepackedformatforjapanese"},
    charset_names{"ISO-2022-JP", "iso2022jp csiso2022jp jis"},
    charset_names{"ISO-2022-JP-2", "iso2022jp2 csiso2022jp2 iso2022jp1"},
    charset_names{"CP932", "shiftjis csshiftjis mskanji sjis xsjis xshiftjis ms932 cp932 "
                           "windows31j cswindows31j windows932"},
    charset_names{"CP949", "euckr cseuckr ksc56011987 ksc56011989 ksc5601 csksc56011987 isoir149 "
                           "korean cp949 ms949 windows949 uhc kscx5601"},
    charset_names{"JOHAB", "johab cp1361 ms1361"},
    charset_names{"ISO-2022-KR", "iso2022kr csiso2022kr"},

    // Cyrillic
    charset_names{"KOI8-R", "koi8r cskoi8r koi koi8"},
    charset_names{"KOI8-U", "koi8u cskoi8u koi8ru"},
    charset_names{"KOI8-T", "koi8t"},
    charset_names{"PT154", "pt154"},
    charset_names{"RK1048", "rk1048 kz1048 strk10482002 cskz1048"},
    charset_names{"CP1125", "cp1125 ibm1125"},
    charset_names{"MAC-CYRILLIC", "maccyrillic xmaccyrillic"},
    charset_names{"MAC-UK", "macukraine xmacukraine macukrainian xmacukrainian"},

    // Others
    charset_names{"MACINTOSH", "macintosh csmacintosh mac macroman xmacroman"},
    charset_names{"MAC-CENTRALEUROPE", "maccentraleurope macce xmacce xmaccentraleurroman"},
    charset_names{"TIS-620", "tis620 cstis620"},
    charset_names{"VISCII", "viscii csviscii"},
    charset_names{"TCVN5712-1", "tcvn tcvn5712 tcvn57121"},
    charset_names{"ARMSCII-8", "armscii8"},
    charset_names{"GEORGIAN-PS", "georgianps"},
    charset_names{"TSCII", "tscii cstscii"},
    charset_names{"HP-ROMAN8", "hproman8 cshproman8 roman8 r8"},
    charset_names{"DEC-MCS", "decmcs csdecmcs dec"},
};

struct known_name {
    std::string_view m_name;
    std::string_view m_of_converter;
};

constexpr std::size_t count_names() {
    std::size_t count = 0;
    for (const charset_names& each : charsets)
        count += 1
                 + static_cast<std::size_t>(
                     std::count(each.m_in_mail.begin(), each.m_in_mail.end(), ' '));
    return count;
}

/// Every name with its charset, sorted by the names.
constexpr std::array<known_name, count_names()> known_names = [] {
    std::array<known_name, count_names()> result{};
    std::size_t at = 0;
    for (const charset_names& each : charsets) {
        for (std::string_view names = each.m_in_mail; !names.empty(); ++at) {
            const std::string_view name = names.substr(0, names.find(' '));
            result[at] = {name, each.m_of_converter};
            names.remove_prefix(std::min(name.size() + 1, names.size()));
        }
    }
    std::sort(result.begin(), result.end(), [](const known_name& one, const known_name& other) {
        return one.m_name < other.m_name;
    });
    return result;
}();

constexpr std::size_t longest_name = [] {
    std::size_t longest = 0;
    for (const known_name& each : known_names) longest = std::max(longest, each.m_name.size());
    return longest;
}();

bool is_passed_over(char c) {
    return std::string_view("-_ .:+()").find(c) != std::string_view::npos;
}

} // namespace

std::string_view converter_name(std::string_view charset) {
    std::string name;
    for (const char byte : charset) {
        const char c = lower_case(byte);
        if (is_passed_over(c)) continue;
        if (!(is_letter(c) || is_digit(c)) || name.size() == longest_name) return "";
        name += c;
    }
    const auto* const found = std::lower_bound(
        known_names.begin(), known_names.end(), name,
        [](const known_name& one, const std::string& other) { return one.m_name < other; });
    return found != known_names.end() && found->m_name == name ? found->m_of_converter : "";
}
