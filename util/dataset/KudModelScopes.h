#pragma once

#include <util/dataset/KudTableModel.h>

#include <QtCore/QPointer>

/// Ends an insertion of samples however its scope is left: a model must not be left inserting. The
/// table, and its model with it, may be gone by then.
class KudAppendScope
{
public:
    KudAppendScope(KudTableModel* model, int first, int count)
        : m_model(model)
    {
        m_model->beginInsertSamples(first, count);
    }
    KudAppendScope(const KudAppendScope&) = delete;
    KudAppendScope& operator=(const KudAppendScope&) = delete;
    ~KudAppendScope()
    {
        if (m_model)
            m_model->endInsertSamples();
    }

private:
    QPointer<KudTableModel> m_model;
};

/// The same for a reset through which samples stay, but for the removed ones.
class KudResetScope
{
public:
    explicit KudResetScope(KudTableModel* model, const HbiIntervalIntSmallDisjoint& removed = {})
        : m_model(model)
    {
        m_model->beginResetTable(removed);
    }
    KudResetScope(const KudResetScope&) = delete;
    KudResetScope& operator=(const KudResetScope&) = delete;
    ~KudResetScope() { m_model->endResetTable(); }

private:
    KudTableModel* m_model;
};
