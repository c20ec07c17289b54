#pragma once

#include <util/filter/KufISampleFilter.h>
#include <util/utils/KuuAMementoOriginator.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QSharedPointer>
#include <QtCore/QVector>

/// A sample filter with a name: what an application edits and a project keeps
/// (KufSampleFilterDirectory). It owns its rules; a copy is deep and has the same identity.
class KELVANE_UTIL_EXPORT KufSampleFilter : public KufISampleFilter, public KuuAMementoOriginator
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilter)

public:
    /// The relation under which filters are stored in mementos: "SampleFilter".
    static QString getMementoRelation();

    explicit KufSampleFilter(const QString& name = QString());
    KufSampleFilter(const KufSampleFilter& other);
    KufSampleFilter& operator=(const KufSampleFilter& other);
    ~KufSampleFilter() override;

    const QString& getName() const { return m_name; }
    void setName(const QString& name) { m_name = name; }

    int getRuleCount() const override { return m_rules.size(); }
    const KufISampleFilterRule* getRule(int index) const override;
    KudDatasetVariable getVariable(int index) const override;
    QString getCombination() const override { return m_combination; }

    /// Any text is kept, so that a user may go on editing it; the validators judge it.
    void setCombination(const QString& combination) { m_combination = combination; }

    /// The variables of all rules, in rule order: what the visitors take.
    QList<KudDatasetVariable> getVariables() const;

    /// A copy of the rule becomes the last one.
    void addRule(const KudDatasetVariable& variable, const KufISampleFilterRule& rule);

    /// A copy of the rule takes the place of one; an index that has no rule is refused.
    bool setRule(int index, const KudDatasetVariable& variable, const KufISampleFilterRule& rule);

    /// The rules behind it move up, so that a combination would speak of others: it becomes empty.
    bool removeRule(int index);

    /// Removes the rules and the combination.
    void clear();

    /// The filter as a map, and back; docs/formats/sample-filter.md lists the keys. What cannot be
    /// read exactly as it was meant (a kind, a version or a value that is not known or missing, no
    /// rules at all) is a user error that names the rule and the key, and the filter stays as it
    /// was: a damaged filter must not select other samples. setMemento raises the same error.
    QVariantMap toQVariantMap() const;
    void fromQVariantMap(const QVariantMap& map);

    /// Same name, rules, variables and combination.
    bool isEqual(const KufSampleFilter& other) const;

protected:
    int _getMementoVersion() const override;
    void _buildMemento(KuuMemento& memento) const override;
    void _setMemento(const KuuMemento& memento, bool adoptId) override;

private:
    struct Entry {
        KudDatasetVariable variable;
        QSharedPointer<KufISampleFilterRule> rule;
    };
    static Entry readEntry(const QVariant& stored, int index);

    QString m_name;
    QString m_combination;
    QVector<Entry> m_rules;
};
