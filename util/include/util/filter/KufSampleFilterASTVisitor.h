#pragma once

#include <util/KuExport.h>

#include <memory>

class KufCombination;
class KufISampleFilter;

/// Walks the tree of a filter's combination, whose leaves are rules, and whose nodes are one
/// negation and two binary operators: operands before their operator, the left one first. So a
/// visitor keeps a stack of results; the last one that remains is that of the whole. Nothing
/// recurses, however long or deep the combination is.
class KELVANE_UTIL_EXPORT KufSampleFilterASTVisitor
{
public:
    /// How deep parentheses and negations may be nested, and how many words there may be.
    static constexpr int MAX_DEPTH = 100;
    static constexpr int MAX_WORDS = 10000;

    /// The filter is borrowed and outlives the visitor; null is a filter without rules. A user
    /// error when the combination is malformed: a damaged text must not select everything.
    explicit KufSampleFilterASTVisitor(const KufISampleFilter* filter);
    KufSampleFilterASTVisitor(const KufSampleFilterASTVisitor&) = delete;
    KufSampleFilterASTVisitor& operator=(const KufSampleFilterASTVisitor&) = delete;
    virtual ~KufSampleFilterASTVisitor();

protected:
    const KufISampleFilter* _getFilter() const { return m_filter; }

    /// Visits the whole tree, nothing for a filter without rules; for constructors of final
    /// classes.
    void _traverse();

private:
    virtual void _visitRule(int index) = 0;
    virtual void _visitNot() = 0;
    virtual void _visitAnd() = 0;
    virtual void _visitOr() = 0;

    const KufISampleFilter* m_filter;
    std::unique_ptr<KufCombination> m_combination;
};
