#pragma once

#include <QtCore/QFlags>

namespace Ku
{
/// Permissions of tables and datasets. The bits without a meaning of their own are carried along
/// unchanged, for applications.
enum DatasetFlag {
    DatasetFlag1 = 0x1,
    DatasetFlag2 = 0x2,
    ReadOnlyValues = 0x4, ///< no value may be changed
    CanCreateSamples = 0x8,
    CanDeleteSamples = 0x10,
    CanCreateVariables = 0x20,
    CanDeleteVariables = 0x40,
    DatasetFlag80 = 0x80,
    DatasetFlag100 = 0x100,
    DatasetFlag200 = 0x200,
    DatasetFlag400 = 0x400
};
Q_DECLARE_FLAGS(DatasetFlags, DatasetFlag)

/// What an in-memory dataset permits: everything.
constexpr int MEMORY_DATASET_FLAGS = 0x7FA;

/// What a dataset read from an external file or a vector source permits: reading.
constexpr int EXTERN_DATASET_FLAGS = 0x205;

/// How a selection is changed by the samples given; other values change nothing.
enum SelectionFlag {
    ClearSelection = 1,
    Select = 2,
    ClearAndSelect = 3,
    Deselect = 4,
    ToggleSelection = 8
};
} // namespace Ku

Q_DECLARE_OPERATORS_FOR_FLAGS(Ku::DatasetFlags)
