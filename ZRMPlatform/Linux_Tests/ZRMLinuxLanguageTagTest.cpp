#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxLanguageTag.h"

TEST(ZRMLinuxLanguageTag, HasLanguageAndTerritory) {
    EXPECT_EQ(zrm_languageTag("de"), "de");
    EXPECT_EQ(zrm_languageTag("de_AT"), "de-AT");
    EXPECT_EQ(zrm_languageTag("DE_at"), "de-AT");
    EXPECT_EQ(zrm_languageTag("es_419"), "es-419");
    EXPECT_EQ(zrm_languageTag("fil_PH.UTF-8"), "fil-PH");
}

TEST(ZRMLinuxLanguageTag, TheModifierCountsWhereItIsOfTheLanguage) {
    EXPECT_EQ(zrm_languageTag("de_AT.UTF-8@euro"), "de-AT");
    EXPECT_EQ(zrm_languageTag("sr_RS@latin"), "sr-Latn-RS");
    EXPECT_EQ(zrm_languageTag("uz_UZ.UTF-8@cyrillic"), "uz-Cyrl-UZ");
    EXPECT_EQ(zrm_languageTag("ks_IN@devanagari"), "ks-Deva-IN");
    EXPECT_EQ(zrm_languageTag("ca_ES.UTF-8@valencia"), "ca-ES-valencia");
    EXPECT_EQ(zrm_languageTag("sr@latin"), "sr-Latn");
    EXPECT_EQ(zrm_languageTag("de_AT@"), "de-AT");
}

TEST(ZRMLinuxLanguageTag, ATerritoryThatIsNoneIsLeftOut) {
    EXPECT_EQ(zrm_languageTag("de_"), "de");
    EXPECT_EQ(zrm_languageTag("de_AUSTRIA"), "de");
    EXPECT_EQ(zrm_languageTag("de_4T"), "de");
    EXPECT_EQ(zrm_languageTag("de_\xC3\x84"), "de");
}

TEST(ZRMLinuxLanguageTag, WhatIsNoLanguageHasNoTag) {
    for (const char* const name : {"", "C", "POSIX", "C.UTF-8", "_AT", "d1_AT", "german", "@latin",
                                   "\xC3\xA4_AT", "d\xFF", "de-AT"}) {
        EXPECT_EQ(zrm_languageTag(name), std::nullopt) << name;
    }
}
