#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVector>

/// The data of a pax extended header: lines "LENGTH KEY=VALUE", as in POSIX.1-2001. Stateless.
namespace KusTarPax
{
struct Entry {
    QByteArray key;
    QByteArray value;
};

/// One line; its length counts its own digits.
QByteArray encode(const Entry& entry);

/// The entries in their order; NUL bytes behind them are padding. False when a line is malformed,
/// which is logged; `entries` then holds those before it.
bool decode(const QByteArray& data, QVector<Entry>& entries);
} // namespace KusTarPax
