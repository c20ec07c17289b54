#pragma once

#include <util/filter/KufISampleFilterRule.h>

#include <QtCore/QCoreApplication>

// clang-format off
#define KUF_ALPHA_MODE(ROW, Class)                                                                 \
    ROW(Class, CONTAINS, 0, QT_TRANSLATE_NOOP("KufSampleFilterRuleAlpha::Mode", "V Contains"))     \
    ROW(Class, EQUAL_TO, 1, QT_TRANSLATE_NOOP("KufSampleFilterRuleAlpha::Mode", "V is Equal"))     \
    ROW(Class, NOT_EQUAL_TO, 2, QT_TRANSLATE_NOOP("KufSampleFilterRuleAlpha::Mode", "V is not Equal"))
// clang-format on

/// A condition on texts, compared character by character: case matters. Each mode keeps its own
/// text, so that switching the mode loses nothing. Every defined text contains the empty one.
class KELVANE_UTIL_EXPORT KufSampleFilterRuleAlpha final : public KufISampleFilterRule
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterRuleAlpha)

public:
    class KELVANE_UTIL_EXPORT Mode : public HbbAEnum
    {
        HBB_ENUM(Mode, KUF_ALPHA_MODE)
    };

    KufSampleFilterRuleAlpha();
    KufSampleFilterRuleAlpha(const Mode& mode, const QString& text);
    ~KufSampleFilterRuleAlpha() override;

    const Mode& getMode() const { return m_mode; }
    void setMode(const Mode& mode) { m_mode = mode; }

    const QString& getContainedText() const { return m_contains; }
    void setContainedText(const QString& text) { m_contains = text; }
    const QString& getEqualToText() const { return m_equalTo; }
    void setEqualToText(const QString& text) { m_equalTo = text; }
    const QString& getNotEqualToText() const { return m_notEqualTo; }
    void setNotEqualToText(const QString& text) { m_notEqualTo = text; }

    /// The text of the mode in use.
    const QString& getText() const;

    QSharedPointer<KufISampleFilterRule> duplicate() const override;
    KufFilterRuleType getType() const override;
    QString getDescription(const HbdVariableDetails& details) const override;
    QString getShortDescription(const HbdVariableDetails& details,
                                bool withVariableName) const override;
    QVariantMap toQVariantMap() const override;
    void fromQVariantMap(const QVariantMap& map, int version) override;
    QStringList findInvalidFields(const QVariantMap& map, int version) const override;
    bool isEqual(const KufISampleFilterRule& other) const override;

    bool operator==(const KufSampleFilterRuleAlpha& other) const;

private:
    struct Fields;

    Mode m_mode;
    QString m_contains;
    QString m_equalTo;
    QString m_notEqualTo;
};
