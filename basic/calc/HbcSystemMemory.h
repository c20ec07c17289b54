#pragma once

#include <QtCore/QtGlobal>

/// What the operating system tells of the memory of the machine.
class HbcSystemMemory
{
public:
    /// The bytes that a program may take now without pushing others out; at least 1.
    static qint64 getAvailable();
};
