#pragma once

#include <basic/base/HbbEFormat.h>
#include <basic/base/HbbTags.h>
#include <basic/data/HbdESupport.h>
#include <basic/data/HbdEVarRole.h>
#include <basic/data/HbdEVarType.h>
#include <basic/unit/HbuUnit.h>

#include <QtCore/QString>

/// What is known of a variable beside its values. A plain value; compare two with `==`.
struct KELVANE_BASIC_EXPORT HbdVariableDetails {
    QString name;
    HbdEVarType type;    ///< REAL by default
    HbdEVarRole role;    ///< NONE by default
    HbdESupport support; ///< NONE by default
    HbbTags tags;
    HbuUnit unit;        ///< the unit that values are stored in; none by default
    HbuUnit displayUnit; ///< the unit that values are shown in; the storage unit when not valid
    HbbEFormat format = HbbEFormat::GENERAL; ///< how numbers become text
    bool automaticFormat = true; ///< the application may choose a format that suits the values
    int precision = 6;           ///< digits, see HbbStringFormat
    int width = 0;               ///< characters that a column of a view should show; 0 is automatic
    QString catalogId;           ///< identifies the catalogue of a category
    QString colorScaleId;        ///< the colour scale that shows the variable; may be empty
    bool temporary = false;      ///< never saved

    HbdVariableDetails() = default;
    explicit HbdVariableDetails(const QString& variableName,
                                const HbdEVarType& variableType = HbdEVarType::REAL,
                                const HbdEVarRole& variableRole = HbdEVarRole::NONE);

    /// The unit that values are shown in: the display unit, or the storage unit.
    const HbuUnit& getShownUnit() const { return displayUnit.isValid() ? displayUnit : unit; }

    /// The same variable shown in another unit, without losing digits: a DECIMAL format gets as
    /// many more decimals as the numbers become smaller by (25 ppm with no decimals is 0.0025 %),
    /// and an integer a DECIMAL one. Unchanged where the shown unit does not convert into `other`.
    HbdVariableDetails shownIn(const HbuUnit& other) const;

    bool operator==(const HbdVariableDetails& other) const;
    bool operator!=(const HbdVariableDetails& other) const { return !(*this == other); }
};
