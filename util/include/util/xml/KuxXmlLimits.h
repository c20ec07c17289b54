#pragma once

#include <QtCore/QtGlobal>

/// What an XML file may ask of us. Generous for every file that we or people write, small enough
/// that a hostile file ends in an error and not in a crash. A file beyond a limit is refused like a
/// file with a syntax error, at the line and column where it crosses the limit.
namespace KuxXmlLimits
{
/// Elements within elements. Trees are built and destroyed recursively.
constexpr int DEPTH = 1000;
/// UTF-16 units of one text, CDATA section, comment or attribute; and of all the texts of one
/// memento field together.
constexpr qint64 TEXT_LENGTH = qint64(512) * 1024 * 1024;
/// Elements, attributes, comments and declarations of one document.
constexpr qint64 NODES = 10 * 1000 * 1000;
/// Bytes of a document that is read into a DOM.
constexpr qint64 DOM_SIZE = qint64(512) * 1024 * 1024;
/// Bytes of a memento file that keeps to the form that we write: it is read without a DOM.
constexpr qint64 FILE_SIZE = qint64(2047) * 1024 * 1024;
/// Characters that all uses of the entities of a document type expand to, in all. An entity that
/// uses entities counts with all that it expands to.
constexpr qint64 ENTITY_EXPANSION = 1024 * 1024;
} // namespace KuxXmlLimits
