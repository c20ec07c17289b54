#include <util/system/KusSerializer.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QDate>
#include <QtCore/QRect>
#include <QtCore/QUuid>
#include <QtGui/QColor>

#include <cmath>
#include <limits>

struct KusUnstreamable {
};
Q_DECLARE_METATYPE(KusUnstreamable)

namespace
{
TEST(KusSerializerTest, CommonValuesReadPlainly)
{
    const std::pair<QVariant, const char*> rows[] = {{"Zinc", "Zinc"},
                                                     {"", ""},
                                                     {"two words ", "two words "},
                                                     {"007", "007"},
                                                     {"1e5", "1e5"},
                                                     {"12", "@text:12"},
                                                     {"5.0", "@text:5.0"},
                                                     {"true", "@text:true"},
                                                     {"@x", "@text:@x"},
                                                     {" \n", "@text: \n"},
                                                     {true, "true"},
                                                     {false, "false"},
                                                     {12, "12"},
                                                     {-2147483647, "-2147483647"},
                                                     {5.0, "5.0"},
                                                     {0.1, "0.1"},
                                                     {1e300, "1e+300"},
                                                     {-0.0, "-0.0"},
                                                     {12u, "@uint:12"},
                                                     {12LL, "@int64:12"},
                                                     {12ULL, "@uint64:12"},
                                                     {0.1f, "@float:0.10000000149011612"},
                                                     {QVariant(), "@invalid"}};
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(KusSerializer::serialize(value), QString::fromUtf8(text));
        const QVariant back = KusSerializer::unserialize(QString::fromUtf8(text));
        EXPECT_EQ(back.userType(), value.userType()) << text;
        EXPECT_EQ(back, value) << text;
    }
}

TEST(KusSerializerTest, AnyStreamableValueComesBackInValueAndType)
{
    const QVariantMap map{{"a b", 1}, {"list", QVariantList{1.5, "x", QVariant()}}};
    const QVariantList values{map,
                              QVariantList{map, QByteArray("\0\xff", 2)},
                              QDateTime(QDate(2026, 2, 28), QTime(1, 2, 3, 4), Qt::UTC),
                              QStringList{"a", ""},
                              QByteArray(),
                              QPoint(),
                              QChar('x'),
                              QString("\x01 control"),
                              QColor(1, 2, 3, 4),
                              QRectF(0.1, 0.2, 0.3, 0.4),
                              QDate(2026, 2, 28),
                              QUuid::createUuid(),
                              QVariant(QVariant::Int),
                              QString(QChar(0xD800)),
                              std::numeric_limits<double>::infinity(),
                              std::numeric_limits<qint64>::min()};
    for (const QVariant& value : values) {
        const QString text = KusSerializer::serialize(value);
        const QVariant back = KusSerializer::unserialize(text);
        EXPECT_EQ(back.userType(), value.userType()) << text.toStdString();
        EXPECT_EQ(back, value) << text.toStdString();
        EXPECT_EQ(back.isNull(), value.isNull()) << text.toStdString();
    }
    EXPECT_TRUE(std::isnan(KusSerializer::unserialize(KusSerializer::serialize(NAN)).toDouble()));
}

TEST(KusSerializerTest, DamagedTextsAndUnstreamableValuesAreRefused)
{
    for (const char* text : {"@uint:-1", "@int64:x", "@variant:", "@variant:AAAA", "@float:"}) {
        EXPECT_FALSE(KusSerializer::unserialize(QString::fromUtf8(text)).isValid()) << text;
    }
    EXPECT_EQ(KusSerializer::unserialize("@home"), "@home");
    const QVariant unstreamable = QVariant::fromValue(KusUnstreamable());
    EXPECT_THROW(KusSerializer::serialize(unstreamable), HbeProgrammingError);
    EXPECT_THROW(KusSerializer::serialize(QVariantList{unstreamable}), HbeProgrammingError);
}
} // namespace
