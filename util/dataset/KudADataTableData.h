#pragma once

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <optional>

/// The state of a table; private to KudADataTable's two source files.
struct KudADataTable::Data {
    explicit Data(KudADataTable& table)
        : model(table)
    {
        mask.setTable(&table);
        highlight.setTable(&table);
        QObject::connect(&mask, &KudSelector::bitsChanged, &model, &KudTableModel::maskChanged);
    }

    KudDataTableHeader header; // not valid: to be rebuilt when it is asked for
    mutable KudTableModel model;
    KudSelector mask{KudTableModif::MaskChanged};
    KudSelector highlight{KudTableModif::HighlightChanged};
    HbdVarRoleFlags readonlyRoles = HbdVarRoleFlags::IDENTIFIERS | HbdVarRoleFlags::INDICES |
                                    HbdVarRoleFlags(HbdEVarRole::FILE_LINE_NUMBER);
    QStringList readonlyTags;
    HbdVarRoleFlags hiddenRoles;
    HbbTags supportTags;
    std::optional<HbiIntervalIntSmallO64Disjoint> interval;
    Ku::DatasetFlags flags;
};
