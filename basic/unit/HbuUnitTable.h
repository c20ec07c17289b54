#pragma once

#include <basic/unit/HbuEUnitClass.h>
#include <basic/unit/HbuEUnitSystem.h>

/// One built-in unit.
struct HbuUnitRow {
    HbuEUnitClass::EValue unitClass;
    HbuEUnitSystem::EValue unitSystem;
    const char* key;    ///< ASCII, unique within the class; goes into files
    const char* symbol; ///< UTF-8
    const char* name;   ///< in the source language
    const char* source; ///< who publishes the factor
    /// reference = (value * numerator + offset) / denominator
    double numerator;
    double denominator;
    double offset = 0.;
};

/// The built-in units, in the order in which lists show them.
struct HbuUnitTable {
    static const HbuUnitRow NONE; ///< no row of the table
    static const HbuUnitRow* begin();
    static const HbuUnitRow* end();
};
