#include <util/utils/KuuCoordSystemSearch.h>

#include "KuuCoordSystemIndex.h"

#include <algorithm>
#include <tuple>

namespace
{
using Record = KuuCoordSystemIndex::Record;

/// How a text matches a system, the best first.
enum Match {
    EXACT_CODE,
    EXACT_NAME,
    NAME_START,
    PHRASE, ///< as whole words, one behind the other
    WHOLE_WORDS,
    WORD_STARTS,
    INSIDE,
    ELSEWHERE, ///< in the code and the name of the area, too
    NONE
};

struct Words {
    QStringList list; ///< folded, none is empty
    QString phrase;   ///< all of them, with blanks between
    QString joined;   ///< without
    QString code;     ///< folded, behind the authority if that was given
    QString authority;
};

/// "EPSG:2154" asks for one authority's code, "2154" for any.
Words readWords(const QString& text)
{
    Words words;
    for (const QString& word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString folded = KuuCoordSystemIndex::fold(word);
        words.list += folded.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    words.phrase = words.list.join(QLatin1Char(' '));
    words.joined = words.list.join(QString());
    words.code = text.trimmed().toLower();
    const int colon = words.code.indexOf(QLatin1Char(':'));
    if (colon >= 0) {
        words.authority = words.code.left(colon).toUpper();
        words.code = words.code.mid(colon + 1).trimmed();
    }
    return words;
}

bool isWordStart(const QString& text, int at)
{
    return at == 0 || text.at(at - 1) == QLatin1Char(' ');
}

/// A number is asked for as a number: "3" is no part of "31".
bool splitsNumber(const QString& text, int at, const QString& word)
{
    const int end = at + word.size();
    return (word.at(0).isDigit() && at > 0 && text.at(at - 1).isDigit()) ||
           (word.at(word.size() - 1).isDigit() && end < text.size() && text.at(end).isDigit());
}

/// How well one word stands in a folded text.
Match matchWord(const QString& text, const QString& word)
{
    Match best = NONE;
    for (int at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + 1)) {
        if (splitsNumber(text, at, word))
            continue;
        const int end = at + word.size();
        const bool isEnd = end == text.size() || text.at(end) == QLatin1Char(' ');
        if (!isWordStart(text, at))
            best = std::min(best, INSIDE);
        else if (isEnd)
            return WHOLE_WORDS;
        else
            best = std::min(best, WORD_STARTS);
    }
    return best;
}

Match match(const Record& record, const Words& words)
{
    if (words.list.isEmpty())
        return ELSEWHERE;
    if (record.code == words.code &&
        (words.authority.isEmpty() || record.entry.authority == words.authority))
        return EXACT_CODE;
    if (record.joinedName == words.joined)
        return EXACT_NAME;
    Match worst = EXACT_CODE;
    for (const QString& word : words.list) {
        Match found = matchWord(record.name, word);
        if (found == NONE && (record.code.startsWith(word) || record.authority == word ||
                              matchWord(record.area, word) != NONE))
            found = ELSEWHERE;
        worst = std::max(worst, found);
    }
    if (worst < ELSEWHERE && record.joinedName.startsWith(words.joined))
        return NAME_START;
    if (worst == WHOLE_WORDS && words.list.size() > 1 &&
        matchWord(record.name, words.phrase) == WHOLE_WORDS)
        return PHRASE;
    // "lambert93" for "Lambert-93"
    if (worst == NONE && words.joined.size() > 3) {
        const int at = record.joinedName.indexOf(words.joined);
        if (at >= 0 && !splitsNumber(record.joinedName, at, words.joined))
            return INSIDE;
    }
    return worst;
}

int kindRank(Ku::CoordSystemKind kind)
{
    switch (kind) {
    case Ku::CoordSystemKind::GEOGRAPHIC_3D:
        return 1;
    case Ku::CoordSystemKind::COMPOUND:
        return 2;
    default:
        return 0;
    }
}

struct Hit {
    Match match;
    const Record* record;
};

/// Less comes first. Where the words stand loosely, common use says more than where exactly.
auto sortKey(const Hit& hit, double areaSign)
{
    const Record& record = *hit.record;
    return std::make_tuple(hit.match != EXACT_CODE, record.entry.isDeprecated,
                           std::min(hit.match, WHOLE_WORDS), !record.isCommon, hit.match,
                           kindRank(record.entry.kind), areaSign * record.size, record.place);
}
} // namespace

KuuCoordSystemSearch::Answer KuuCoordSystemSearch::find(const Question& question)
{
    const Words words = readWords(question.text);
    const KuuCoordSystemArea& area = question.area;
    const auto& records = KuuCoordSystemIndex::getInstance().getRecords();
    std::vector<Hit> hits;
    for (const Record& record : records) {
        const Entry& entry = record.entry;
        const bool isGeographic = entry.mode == Ku::CoordSystemMode::GEOGRAPHIC;
        if (!(isGeographic ? question.withGeographic : question.withProjected) ||
            (entry.isDeprecated && !question.withDeprecated) ||
            (area.isValid && !entry.area.contains(area)))
            continue;
        const Match found = match(record, words);
        if (found != NONE)
            hits.push_back({found, &record});
    }
    const double areaSign = area.isValid ? 1. : -1.;
    const size_t count = std::min(hits.size(), size_t(std::max(question.limit, 0)));
    std::partial_sort(hits.begin(), hits.begin() + std::ptrdiff_t(count), hits.end(),
                      [areaSign](const Hit& a, const Hit& b) {
                          return sortKey(a, areaSign) < sortKey(b, areaSign);
                      });
    Answer answer;
    answer.count = int(hits.size());
    for (size_t i = 0; i < count; ++i)
        answer.entries.append(hits[i].record->entry);
    return answer;
}

KuuCoordSystemSearch::Answer KuuCoordSystemSearch::find(const QString& text, int limit)
{
    Question question;
    question.text = text;
    question.limit = limit;
    return find(question);
}

int KuuCoordSystemSearch::getSystemCount()
{
    return int(KuuCoordSystemIndex::getInstance().getRecords().size());
}
