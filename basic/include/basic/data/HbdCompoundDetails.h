#pragma once

#include <basic/base/HbbExport.h>
#include <basic/data/HbdEComponentRole.h>

#include <QtCore/QString>
#include <QtCore/QVector>

/// The components of a compound variable, in order: each has a name and a role.
struct HbdCompoundDetails {
    struct Component {
        QString name;
        HbdEComponentRole role;

        bool operator==(const Component& other) const
        {
            return name == other.name && role == other.role;
        }
    };

    QVector<Component> components;

    bool isEmpty() const { return components.isEmpty(); }

    /// The name of the first component of that role, or a null text.
    QString getName(const HbdEComponentRole& role) const
    {
        for (const Component& component : components) {
            if (component.role == role)
                return component.name;
        }
        return QString();
    }

    bool operator==(const HbdCompoundDetails& other) const
    {
        return components == other.components;
    }
    bool operator!=(const HbdCompoundDetails& other) const { return !(*this == other); }
};
