#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class KufISampleFilter;

/// The combination of a filter, parsed: its tree with the operands before their operator, or the
/// first error. Any text takes time in proportion to its length.
class KufCombination
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterCombinationValidator)

public:
    enum class Kind { RULE, NOT, AND, OR };
    struct Node {
        Kind kind;
        int rule; ///< index, of a RULE
    };

    /// Null is a filter without rules.
    explicit KufCombination(const KufISampleFilter* filter);

    bool isValid() const { return m_error.isEmpty(); }
    const QString& getError() const { return m_error; }
    int getErrorPosition() const { return m_errorPosition; }

    /// The words before the error, or all, in their normal form.
    const QStringList& getWords() const { return m_words; }

    /// Of a valid text.
    const QVector<Node>& getNodes() const { return m_nodes; }

private:
    struct Pending {
        enum Operator { OPEN, OR, AND, NOT } op; // from weak to strong
        int position;
    };
    struct Word {
        QString text;
        int position;
    };
    static QVector<Word> split(const QString& text);
    void parse(const QString& text);
    void takeWord(const Word& word);
    void takeOperand(const Word& word, const QString& lower);
    void takeOperator(const Word& word, const QString& lower);
    void takeRule(const Word& word);
    void takeClosing(const Word& word);
    void push(Pending::Operator op, const Word& word, const QString& normal);
    void emitDownTo(Pending::Operator op);
    void finish(int length);
    void fail(int position, const QString& reason);

    int m_ruleCount;
    bool m_expectsOperand = true;
    int m_depth = 0; // of the parentheses and negations that are open
    QVector<Pending> m_pending;
    QVector<Node> m_nodes;
    QStringList m_words;
    QString m_error;
    int m_errorPosition = -1;
};
