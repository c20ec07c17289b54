#include <util/utils/KuuAMementoOriginator.h>
#include <util/utils/KuuMementoFields.h>

#include "CapturedLog.h"

#include <QtGui/QColor>

#include <limits>

#define KUU_TEST_SHAPE(ROW, Class)                                                                 \
    ROW(Class, ROUND, 0, "Round")                                                                  \
    ROW(Class, SQUARE, 1, "Square")

class KuuTestShape : public HbbAEnum
{
    HBB_ENUM(KuuTestShape, KUU_TEST_SHAPE)
};
HBB_ENUM_DEFINE(KuuTestShape, KUU_TEST_SHAPE, ROUND, "utils/KuuMementoTest")

namespace
{
const QString UUID = "6f0f9b52-9a5b-4a1e-9c3f-0a4f6b1c2d3e";

class Marker : public KuuAMementoOriginator
{
public:
    Marker()
        : KuuAMementoOriginator("Marker")
    {
    }

    bool visible = true;
    int size = 5;
    qint64 count = 7;
    double ratio = 0.1;
    QString name = QStringLiteral("none");
    QStringList tags;
    KuuTestShape shape;
    QColor color = Qt::red;
    QVector<double> bounds;
    int factor = 1;

private:
    static const KuuMementoFields<Marker>& fields();

    int _getMementoVersion() const override { return 102; }
    void _buildMemento(KuuMemento& memento) const override { fields().build(*this, memento); }
    void _setMemento(const KuuMemento& memento, bool) override { fields().restore(*this, memento); }
};

const KuuMementoFields<Marker>& Marker::fields()
{
    static const KuuMementoFields<Marker> rows = {
        {"visible", &Marker::visible},
        {"size", &Marker::size, "oldSize"},
        {"count", &Marker::count},
        {"ratio", &Marker::ratio},
        {"name", &Marker::name},
        {"tags", &Marker::tags},
        {"shape", &Marker::shape},
        {"color", &Marker::color},
        {"bounds", &Marker::bounds},
        KuuMementoField<Marker>("factor", &Marker::factor).when([](const Marker& m) {
            return m.visible;
        }),
    };
    return rows;
}

class KuuMementoTest : public testing::Test
{
protected:
    CapturedLog m_log;
    QStringList& m_warnings = m_log.texts;
};

KuuMemento mementoOf(const QString& relation, int version = 100)
{
    KuuMemento memento(KuuId::generate(relation));
    memento.setVersion(version);
    return memento;
}

TEST_F(KuuMementoTest, IdsCompareByBothPartsAndSortByUuidAlone)
{
    const KuuId a("A", UUID);
    const KuuId b("B", QLatin1Char('{') + UUID.toUpper() + QLatin1Char('}'));
    EXPECT_EQ(b.getUuid(), UUID);
    EXPECT_NE(a, b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(a > b);

    EXPECT_FALSE(KuuId().isValid());
    EXPECT_FALSE(KuuId("A").isValid());
    EXPECT_FALSE(KuuId("A", "1234").isValid());
    EXPECT_FALSE(KuuId(QString(), UUID).isValid());
    EXPECT_TRUE(KuuId::generate("A").isValid());
    EXPECT_NE(KuuId::generate("A"), KuuId::generate("A"));
}

TEST_F(KuuMementoTest, AnAssociationSetAgainKeepsItsPlace)
{
    KuuMemento owner = mementoOf("Scene");
    KuuMemento first = mementoOf("Item");
    const KuuMemento second = mementoOf("Item");
    owner.setAssociation(first, false);
    owner.setAssociation(second, true);
    first.setField("name", 3);
    owner.setAssociation(first, true);
    owner.setAssociation(first, true);
    owner.setAssociation(second, false);

    const QList<KuuMemento> items = owner.getAssociations("Item");
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items.at(0), first);
    EXPECT_EQ(owner.getAssociation("Item"), first);
    EXPECT_EQ(owner.getSharedIds(), (QList<KuuId>{second.getId(), first.getId()}));
    EXPECT_TRUE(owner.isShared(second.getId()));
    EXPECT_EQ(owner.getRelations(), QStringList{"Item"});
    owner.removeAssociations("Item");
    EXPECT_FALSE(owner.hasRelation("Item"));
}

TEST_F(KuuMementoTest, CopiesAreIndependentAndAMementoMayHoldItself)
{
    KuuMemento memento = mementoOf("Item", 7);
    const KuuMemento copy = memento;
    memento.setField("a", 1);
    memento.setAssociation(memento, true);
    EXPECT_TRUE(copy.getFields().isEmpty());
    EXPECT_EQ(memento.getAssociation("Item").getField("a"), 1);

    const KuuMemento renamed(KuuId::generate("Other"), memento);
    EXPECT_EQ(renamed.getFields(), memento.getFields());
    EXPECT_EQ(renamed.getVersion(), 7);
    EXPECT_TRUE(renamed.isShared(memento.getId()));
    EXPECT_NE(renamed.getId(), memento.getId());
    EXPECT_FALSE(KuuMemento(KuuId()).isValid());
    EXPECT_EQ(KuuMemento().getVersion(), 100);
}

TEST_F(KuuMementoTest, AnOriginatorTakesStateAndOnRequestTheIdentity)
{
    Marker source;
    source.size = 42;
    source.shape = KuuTestShape::SQUARE;
    const KuuMemento memento = source.getMemento();
    EXPECT_EQ(memento.getVersion(), 102);

    Marker target;
    const KuuId own = target.getId();
    target.setMemento(KuuMemento(KuuId("Other", UUID), memento), true);
    EXPECT_EQ(target.getId(), own);
    EXPECT_EQ(target.size, 5);

    target.setMemento(memento, false);
    EXPECT_EQ(target.getId(), own);
    EXPECT_EQ(target.size, 42);
    EXPECT_EQ(target.shape, KuuTestShape::SQUARE);

    target.setMemento(memento, true);
    EXPECT_TRUE(target == source);
    EXPECT_TRUE(m_warnings.isEmpty());

    KuuMemento newer = memento;
    newer.setVersion(103);
    newer.setField("size", 8);
    target.setMemento(newer, false);
    EXPECT_EQ(target.size, 8);
    EXPECT_EQ(m_warnings.filter("version 103").size(), 1);
}

TEST_F(KuuMementoTest, EveryFieldRestoresFromItsTextAsFromItsValue)
{
    Marker source;
    source.visible = false;
    source.size = std::numeric_limits<int>::min();
    source.count = std::numeric_limits<qint64>::max();
    source.ratio = 0.1 + 0.2;
    source.name = QStringLiteral("Zinc é");
    source.tags = QStringList{"a", QString()};
    source.shape = KuuTestShape::SQUARE;
    source.color = QColor(1, 2, 3, 4);
    source.bounds = {-1.0 / 3, 1e300, std::numeric_limits<double>::denorm_min()};

    KuuMemento asText = source.getMemento();
    for (const char* scalar : {"visible", "size", "count", "ratio", "shape"}) {
        const QString key = QString::fromLatin1(scalar);
        asText.setField(key, asText.getField(key).toString());
    }
    QVariantList bounds = asText.getField("bounds").toList();
    for (QVariant& bound : bounds)
        bound = bound.toString();
    asText.setField("bounds", bounds);

    for (const KuuMemento& memento : {source.getMemento(), asText}) {
        Marker target;
        target.setMemento(memento, false);
        EXPECT_EQ(target.getMemento().getFields(), source.getMemento().getFields());
        EXPECT_EQ(target.bounds, source.bounds);
        EXPECT_EQ(target.ratio, source.ratio);
    }
    EXPECT_TRUE(m_warnings.isEmpty());
}

TEST_F(KuuMementoTest, AFieldThatDoesNotDecodeKeepsItsValueAndWarns)
{
    const std::pair<const char*, QVariantList> refused[] = {
        {"visible", {"abc", "1"}},
        {"size", {"3.7", 3.7, "2147483648", "", "0x10", 2147483648LL}},
        {"count", {"9223372036854775808"}},
        {"ratio", {"abc", "1,5", QVariant()}},
        {"shape", {"HEXAGON"}},
        {"tags", {"a"}},
        {"color", {"no colour"}},
        {"name", {QVariant(QVariantList())}},
        {"bounds", {QVariant(QVariantList{"1", "x"})}},
    };
    for (const auto& [key, values] : refused) {
        for (const QVariant& value : values) {
            SCOPED_TRACE(key);
            Marker marker;
            const QVariantMap before = marker.getMemento().getFields();
            KuuMemento memento(KuuId::generate("Marker"));
            memento.setField(QLatin1String(key), value);
            m_warnings.clear();
            marker.setMemento(memento, false);
            EXPECT_EQ(marker.getMemento().getFields(), before);
            ASSERT_EQ(m_warnings.size(), 1);
            EXPECT_TRUE(m_warnings.at(0).contains(QLatin1String(key)));
        }
    }
}

TEST_F(KuuMementoTest, LegacyKeysServeAndConditionsHold)
{
    KuuMemento memento(KuuId::generate("Marker"));
    memento.setField("oldSize", " 9 ");
    memento.setField("visible", "NO");
    memento.setField("factor", 6);
    Marker marker;
    marker.setMemento(memento, false);
    EXPECT_EQ(marker.size, 9);
    EXPECT_FALSE(marker.visible);
    EXPECT_EQ(marker.factor, 1);
    EXPECT_FALSE(marker.getMemento().hasField("factor"));

    memento.setField("size", 10);
    memento.setField("visible", true);
    marker.setMemento(memento, false);
    EXPECT_EQ(marker.size, 10);
    EXPECT_EQ(marker.factor, 6);
}
} // namespace
