#pragma once

#include <QtCore/QString>

/// Texts as a terminal shows them.
namespace ToolText
{
/// The columns that a text takes: two for a wide character, none for what combines with the one
/// before it.
int getWidth(const QString& text);

/// What a terminal would obey instead of showing it (line feeds, escapes, changes of direction),
/// as "\n" or "\u001b".
QString makeVisible(const QString& text);

/// The text, or its beginning and "…", in at most `width` columns.
QString cut(const QString& text, int width);

/// The text with blanks behind it, or before it, up to `width` columns.
QString padded(const QString& text, int width, bool right);
} // namespace ToolText
