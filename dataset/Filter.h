// The filter expression language of datasets: comparisons of fields and literals joined by AND,
// OR and NOT, parsed into a tree that a dataset compiles against its records.
//
//   expression := term { OR term }            term := factor { AND factor }
//   factor     := NOT factor | "(" expression ")" | comparison
//   comparison := operand [ ("=" | "<>" | "<" | ">" | "<=" | ">=") operand | IS [NOT] NULL ]
//   operand    := field | 'text' | number | NULL | TRUE | FALSE
//
// Fields are names (letters, digits, "_", and "." for the children of object fields) or any text
// in square brackets. Texts are single-quoted with '' for a quote; numbers use "." for decimals.
// Keywords ignore case. A date is written as a text ('07/03/2006' in the short date format, or
// '2006-03-07' / '2006-03-07 14:05:00'), converted when compared with a date field. A text ending
// in "*" compared with = or <> matches a prefix unless foNoPartialCompare is set. A lone field
// stands for "field = TRUE".
#pragma once

#include "mattoni_core_export.h"

#include <QString>

#include <memory>
#include <vector>

namespace mattoni {

struct MATTONI_CORE_EXPORT TFilterNode
{
    enum Kind { And, Or, Not, Compare, IsNull, IsNotNull, Field, Text, Number, NullLiteral, Boolean };
    enum Op { Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual };

    Kind kind = NullLiteral;
    Op op = Equal;
    // The field name (Field), the literal as written (Text, Number).
    QString text;
    double number = 0;
    bool boolean = false;
    // 1-based position in the expression, for messages.
    int position = 0;
    std::vector<std::unique_ptr<TFilterNode>> children;
};

// The tree of Text; nullptr for a blank text (no filter). Raises EDatabaseError
// "Filter expression error at position %d: %s" naming what was expected.
MATTONI_CORE_EXPORT std::unique_ptr<TFilterNode> ParseFilter(const QString &text);

} // namespace mattoni
