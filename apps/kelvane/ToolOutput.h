#pragma once

#include <QtCore/QString>

/// Where the tool's texts go, in UTF-8: facts to stdout, everything else to stderr.
namespace ToolOutput
{
/// Facts. A stdout that takes them no longer (a full disk) is a HbeDiskError.
void print(const QString& text);
void print(const QByteArray& utf8);

/// The columns of the terminal that stdout is; 0 where it is none.
int getTerminalWidth();

/// Lines beginning with "kelvane: ", "warning: " or "note: ".
void printError(const QString& message);
void printWarning(const QString& message);
void printNote(const QString& message);

/// A number as tables for people show it, in six digits, or nine for large coordinates; empty
/// where it is undefined.
QString toText(double value);
} // namespace ToolOutput
