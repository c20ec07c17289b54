#pragma once

#include <util/KuExport.h>
#include <util/filter/KufFilterRuleType.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

struct HbdVariableDetails;

/// One rule of a sample filter: a condition on the values of one variable. The rule does not know
/// its variable; the filter pairs them (KufISampleFilter). The kinds of rules are values.
///
/// An undefined value fails the condition of every rule, whatever it asks, "is not equal" included,
/// as NaN does in every comparison. Only a negation in the combination turns that around: "not R1"
/// selects the samples whose value is undefined, too.
class KELVANE_UTIL_EXPORT KufISampleFilterRule
{
public:
    /// The version of the maps that toQVariantMap writes. Version 1 is read, too.
    static constexpr int MAP_VERSION = 2;

    virtual ~KufISampleFilterRule();

    /// A deep copy.
    virtual QSharedPointer<KufISampleFilterRule> duplicate() const = 0;
    virtual KufFilterRuleType getType() const = 0;

    /// The rule in words for the user, in the user's language, with the variable's name. Numbers
    /// are in the variable's storage unit, in the shortest form that reads back exactly.
    virtual QString getDescription(const HbdVariableDetails& details) const = 0;

    /// The same in a compact form, with the variable's name or without.
    virtual QString getShortDescription(const HbdVariableDetails& details,
                                        bool withVariableName) const = 0;

    /// The fields of the rule, under the keys that docs/formats/sample-filter.md lists.
    virtual QVariantMap toQVariantMap() const = 0;

    /// Takes the fields over from a map of that version. A missing key reads as its default, and
    /// so does a value that does not decode, with a warning that names the key; keys that are not
    /// known are passed over. A version other than 1 and 2 is a programming error. Whoever reads
    /// what may be damaged asks findInvalidFields before.
    virtual void fromQVariantMap(const QVariantMap& map, int version) = 0;

    /// The keys whose values this kind of rule cannot read, and those that are missing though every
    /// stored rule of that version has them. Changes nothing.
    virtual QStringList findInvalidFields(const QVariantMap& map, int version) const = 0;

    /// Same kind and same fields, those that are not in use included.
    virtual bool isEqual(const KufISampleFilterRule& other) const = 0;

protected:
    KufISampleFilterRule() = default;
    KufISampleFilterRule(const KufISampleFilterRule&) = default;
    KufISampleFilterRule& operator=(const KufISampleFilterRule&) = default;
};
