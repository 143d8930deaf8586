#include "platform/Locale.h"

#include "support/Environment.h"

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using Tags = std::vector<std::string>;

TEST(Locale, TheLanguagesOfTheSessionComeInTheUsersOrder) {
    const struct {
        const char* language;
        const char* all;
        const char* messages;
        const char* lang;
        Tags expected;
    } cases[]{
        {"fa_IR:de", nullptr, nullptr, "en_US.UTF-8", {"fa-IR", "fa", "de", "en-US", "en"}},
        {nullptr, "de_AT.UTF-8@euro", "fr_FR", "en_US", {"de-AT", "de"}},
        {nullptr, "", "ckb_IQ", "en_US", {"ckb-IQ", "ckb"}},
        {nullptr, nullptr, nullptr, "sr_RS@latin", {"sr-RS", "sr"}},
        {"zh_Hans_CN:es_419", nullptr, nullptr, nullptr, {"zh-Hans-CN", "zh", "es-419", "es"}},
        {"../../x:no such:e:", nullptr, nullptr, "pt_BR", {"pt-BR", "pt"}},
        {"\xFF\xFE:d\xE4_DE:nl", nullptr, nullptr, "\xC3_AT", {"nl"}},
        {nullptr, nullptr, nullptr, nullptr, {}},
        {nullptr, "C.UTF-8", nullptr, "en_US", {}},
        {nullptr, "POSIX", nullptr, nullptr, {}},
    };
    for (const auto& one : cases) {
        const Environment language("LANGUAGE", one.language);
        const Environment all("LC_ALL", one.all);
        const Environment messages("LC_MESSAGES", one.messages);
        const Environment lang("LANG", one.lang);
        EXPECT_EQ(platform::preferredLanguages(), one.expected) << testing::PrintToString(one.expected);
    }
}

}  // namespace

}  // namespace velmora::test
