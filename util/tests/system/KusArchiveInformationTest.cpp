#include <util/system/KusArchiveInformation.h>

#include "ErrorText.h"

#include <basic/error/HbeProgrammingError.h>

#include <gtest/gtest.h>

TEST(KusArchiveInformationTest, WritesLinesInTheOrderOfTheKeys)
{
    const QVariantMap information{{"size", qint64(1) << 40},
                                  {"name", "Öl"},
                                  {"a = none", QVariant()},
                                  {"picture", QByteArray("\0\xff", 2)},
                                  {"list", QVariantList{1}}};
    QVariantMap sound = information;
    sound.remove("a = none");
    const QByteArray data = KusArchiveInformation::encode(sound);
    EXPECT_EQ(data, "list = \nname = w5Zs\npicture = __bin__AP8=\nsize = MTA5OTUxMTYyNzc3Ng==\n");
    const QVariantMap expected{{"list", ""},
                               {"name", "Öl"},
                               {"picture", QByteArray("\0\xff", 2)},
                               {"size", "1099511627776"}};
    EXPECT_EQ(KusArchiveInformation::decode(data), expected);
}

TEST(KusArchiveInformationTest, RefusesKeysThatCouldNotBeRead)
{
    for (const char* key : {"", " a", "a ", "a = b", "a\nb"})
        EXPECT_TRUE(errorOf<HbeProgrammingError>([&] {
                        KusArchiveInformation::encode({{key, "value"}});
                    }).contains(QStringLiteral("'%1' is no key").arg(key)))
            << key;
    EXPECT_TRUE(errorOf<HbeProgrammingError>([] {
                    KusArchiveInformation::encode({{"a", QByteArray(3 << 20, 'x')}});
                }).contains("too long"));
}

TEST(KusArchiveInformationTest, ReadsWhatItCan)
{
    const QVariantMap expected{{"a", "Öl"}, {"b", QByteArray()}, {"c", ""}};
    EXPECT_EQ(KusArchiveInformation::decode("no line\n = w5Zs\na = w5Zs\nb = __bin__\nc = "),
              expected);
}
