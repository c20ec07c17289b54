#include "KufCombination.h"

#include <util/filter/KufISampleFilter.h>
#include <util/filter/KufSampleFilterASTVisitor.h>
#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterDefaultCombination.h>

#include <basic/error/HbeUserError.h>

// The combination of the rules: its default, its check, and the walk through its tree.

KufSampleFilterDefaultCombination::KufSampleFilterDefaultCombination(const KufISampleFilter* filter)
    : m_filter(filter)
{
}

QString KufSampleFilterDefaultCombination::_checkCombination() const
{
    QStringList names;
    for (int i = 0; m_filter != nullptr && i < m_filter->getRuleCount(); ++i)
        names.append(KufISampleFilter::getRuleName(i));
    return names.join(QStringLiteral(" and "));
}

KufSampleFilterCombinationValidator::KufSampleFilterCombinationValidator(
    const KufISampleFilter* filter)
{
    const KufCombination combination(filter);
    m_accepted = combination.getWords().join(QLatin1Char(' '));
    m_error = combination.getError();
    m_errorPosition = combination.getErrorPosition();
}

KufSampleFilterASTVisitor::KufSampleFilterASTVisitor(const KufISampleFilter* filter)
    : m_filter(filter)
    , m_combination(std::make_unique<KufCombination>(filter))
{
    if (!m_combination->isValid())
        throw HbeUserError(m_combination->getError());
}

KufSampleFilterASTVisitor::~KufSampleFilterASTVisitor() = default;

void KufSampleFilterASTVisitor::_traverse()
{
    for (const KufCombination::Node& node : m_combination->getNodes()) {
        switch (node.kind) {
        case KufCombination::Kind::RULE:
            _visitRule(node.rule);
            break;
        case KufCombination::Kind::NOT:
            _visitNot();
            break;
        case KufCombination::Kind::AND:
            _visitAnd();
            break;
        case KufCombination::Kind::OR:
            _visitOr();
            break;
        }
    }
}
