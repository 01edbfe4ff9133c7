#pragma once
// Text as the search index holds it and a typed query as the index is asked: letters without
// their accents in lower case, so "Żółć" is found by "zolc" and "Beyoncé" by "beyonce", and
// each typed word matching the beginnings of words.

#include <QString>

QString FoldForSearch(const QString& text);
// Words of a query past this many are not searched for: a text pasted into the search box
// must not become a query that takes minutes.
inline constexpr int kMostSearchWords = 12;

// An FTS5 expression: every word of the query as a prefix, all of them required; empty when the
// query holds no letters or digits.
QString SearchExpression(const QString& query);
