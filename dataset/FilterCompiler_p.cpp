// Filter expressions and Locate keys compiled into tests on a record store.
#include "FilterCompiler_p.h"

#include "Exceptions.h"
#include "Formatting.h"
#include "Strings.h"
#include "Variants.h"

#include <QLocale>

#include <cmath>

namespace mattoni::detail {

namespace {

using Op = TFilterNode::Op;

bool isNullValue(const QVariant &v)
{
    return !v.isValid() || VarIsNull(v);
}

bool isDateType(TFieldType t)
{
    return t == ftDate || t == ftTime || t == ftDateTime || t == ftTimeStamp || t == ftOraTimeStamp;
}

bool applyOp(int c, Op op)
{
    switch (op) {
    case TFilterNode::Equal: return c == 0;
    case TFilterNode::NotEqual: return c != 0;
    case TFilterNode::Less: return c < 0;
    case TFilterNode::Greater: return c > 0;
    case TFilterNode::LessEqual: return c <= 0;
    case TFilterNode::GreaterEqual: return c >= 0;
    }
    return false;
}

Op mirrored(Op op)
{
    switch (op) {
    case TFilterNode::Less: return TFilterNode::Greater;
    case TFilterNode::Greater: return TFilterNode::Less;
    case TFilterNode::LessEqual: return TFilterNode::GreaterEqual;
    case TFilterNode::GreaterEqual: return TFilterNode::LessEqual;
    default: return op;
    }
}

template<typename T>
int threeWay(T a, T b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

bool isLiteral(const TFilterNode &n)
{
    return n.kind == TFilterNode::Text || n.kind == TFilterNode::Number || n.kind == TFilterNode::NullLiteral
        || n.kind == TFilterNode::Boolean;
}

// Dates in filters: the short date format of the settings first, then ISO 8601.
bool parseDate(const QString &text, double &value)
{
    if (TryStrToDateTime(text, value))
        return true;
    const QDateTime dt = QDateTime::fromString(Trim(text), Qt::ISODate);
    if (dt.isValid()) {
        value = QDateTimeToDateTime(dt);
        return true;
    }
    const QDate d = QDate::fromString(Trim(text), Qt::ISODate);
    if (d.isValid()) {
        value = QDateToDateTime(d);
        return true;
    }
    return false;
}

// Numbers in texts: the settings' decimal separator first, then ".".
bool parseNumber(const QString &text, double &value)
{
    if (TryStrToFloat(text, value))
        return true;
    bool ok = false;
    value = QLocale::c().toDouble(Trim(text), &ok);
    return ok;
}

[[noreturn]] void mismatch(const TFilterNode &literal, const QString &fieldName)
{
    DatabaseErrorFmt(DBConsts::SFilterParseError,
                     {literal.position, QStringLiteral("value does not fit field %1").arg(fieldName)});
}

// A literal as the number a numeric field of Type compares with.
double numberFor(const TFilterNode &literal, const FieldAccess &field)
{
    double d = 0;
    switch (literal.kind) {
    case TFilterNode::Number: return literal.number;
    case TFilterNode::Boolean: return literal.boolean ? 1 : 0;
    case TFilterNode::Text:
        if (isDateType(field.type) ? parseDate(literal.text, d) : parseNumber(literal.text, d))
            return d;
        if (field.type == ftBoolean && (SameText(literal.text, QStringLiteral("True")) || SameText(literal.text, QStringLiteral("False"))))
            return SameText(literal.text, QStringLiteral("True")) ? 1 : 0;
        break;
    default: break;
    }
    mismatch(literal, field.name);
}

QString textFor(const TFilterNode &literal)
{
    switch (literal.kind) {
    case TFilterNode::Boolean: return literal.boolean ? QStringLiteral("True") : QStringLiteral("False");
    default: return literal.text;
    }
}

QVariant literalValue(const TFilterNode &n)
{
    switch (n.kind) {
    case TFilterNode::Text: return n.text;
    case TFilterNode::Number: return n.number;
    case TFilterNode::Boolean: return n.boolean;
    default: return Null();
    }
}

// Two values of any kind: numbers and dates by value, a text against a number as a number when it
// reads as one, texts as texts.
int compareAny(const QVariant &a, const QVariant &b, Qt::CaseSensitivity cs)
{
    auto numeric = [](const QVariant &v) {
        return VarIsNumeric(v) || v.metaType().id() == QMetaType::QDate || v.metaType().id() == QMetaType::QTime
            || v.metaType().id() == QMetaType::QDateTime;
    };
    const bool na = numeric(a), nb = numeric(b);
    if (na || nb) {
        double x = 0, y = 0;
        const bool okA = na ? (x = VarToFloat(a), true) : parseNumber(a.toString(), x);
        const bool okB = nb ? (y = VarToFloat(b), true) : parseNumber(b.toString(), y);
        if (okA && okB)
            return threeWay(x, y);
    }
    return VarToStr(a).compare(VarToStr(b), cs);
}

class Compiler
{
public:
    Compiler(const RecordStore &store, const FieldResolver &resolve, TFilterOptions options)
        : m_store(store), m_resolve(resolve),
          m_cs(options.testFlag(foCaseInsensitive) ? Qt::CaseInsensitive : Qt::CaseSensitive),
          m_partial(!options.testFlag(foNoPartialCompare))
    {
    }

    Predicate Compile(const TFilterNode &n)
    {
        switch (n.kind) {
        case TFilterNode::And: {
            Predicate a = Compile(*n.children[0]), b = Compile(*n.children[1]);
            return [a, b](RecordId id) { return a(id) && b(id); };
        }
        case TFilterNode::Or: {
            Predicate a = Compile(*n.children[0]), b = Compile(*n.children[1]);
            return [a, b](RecordId id) { return a(id) || b(id); };
        }
        case TFilterNode::Not: {
            Predicate a = Compile(*n.children[0]);
            return [a](RecordId id) { return !a(id); };
        }
        case TFilterNode::IsNull:
        case TFilterNode::IsNotNull:
            return NullTest(*n.children[0], n.kind == TFilterNode::IsNotNull);
        case TFilterNode::Compare:
            return Comparison(*n.children[0], n.op, *n.children[1]);
        default:
            DatabaseErrorFmt(DBConsts::SFilterParseError, {n.position, QStringLiteral("comparison expected")});
        }
    }

private:
    using Reader = std::function<QVariant(RecordId)>;

    Reader Operand(const TFilterNode &n)
    {
        if (n.kind == TFilterNode::Field) {
            const FieldAccess f = m_resolve(n.text);
            if (f.column < 0)
                return f.read;
            const Column *col = &m_store.ColumnAt(f.column);
            return [col](RecordId id) { return col->Get(id); };
        }
        const QVariant v = literalValue(n);
        return [v](RecordId) { return v; };
    }

    Predicate NullTest(const TFilterNode &operand, bool negated)
    {
        if (operand.kind == TFilterNode::Field) {
            const FieldAccess f = m_resolve(operand.text);
            if (f.column >= 0) {
                const Column *col = &m_store.ColumnAt(f.column);
                return [col, negated](RecordId id) { return col->IsNull(id) != negated; };
            }
            Reader read = f.read;
            return [read, negated](RecordId id) { return isNullValue(read(id)) != negated; };
        }
        const bool result = (operand.kind == TFilterNode::NullLiteral) != negated;
        return [result](RecordId) { return result; };
    }

    Predicate Comparison(const TFilterNode &left, Op op, const TFilterNode &right)
    {
        if (isLiteral(left) && right.kind == TFilterNode::Field)
            return Comparison(right, mirrored(op), left);
        if (right.kind == TFilterNode::NullLiteral) {
            // "= NULL" and "<> NULL" read as IS NULL and IS NOT NULL; other comparisons with NULL never hold.
            if (op == TFilterNode::Equal || op == TFilterNode::NotEqual)
                return NullTest(left, op == TFilterNode::NotEqual);
            return [](RecordId) { return false; };
        }
        if (left.kind == TFilterNode::Field && isLiteral(right)) {
            const FieldAccess f = m_resolve(left.text);
            if (f.column >= 0)
                return ColumnLiteral(f, op, right);
        }
        if (left.kind == TFilterNode::Field && right.kind == TFilterNode::Field) {
            const FieldAccess a = m_resolve(left.text), b = m_resolve(right.text);
            if (a.column >= 0 && b.column >= 0)
                if (Predicate p = ColumnColumn(a, op, b))
                    return p;
        }
        return Generic(left, op, right);
    }

    Predicate ColumnLiteral(const FieldAccess &f, Op op, const TFilterNode &literal)
    {
        const Column *col = &m_store.ColumnAt(f.column);
        switch (col->Kind()) {
        case Storage::Int:
        case Storage::Bool: {
            const double d = numberFor(literal, f);
            if (d == std::floor(d) && std::fabs(d) < 9.0e18) {
                const qint64 k = qint64(d);
                return [col, k, op](RecordId id) { return !col->IsNull(id) && applyOp(threeWay(col->Int(id), k), op); };
            }
            return [col, d, op](RecordId id) { return !col->IsNull(id) && applyOp(threeWay(double(col->Int(id)), d), op); };
        }
        case Storage::Curr: {
            double d = 0;
            if (literal.kind == TFilterNode::Text) {
                if (!parseNumber(literal.text, d))
                    mismatch(literal, f.name);
            } else {
                d = numberFor(literal, f);
            }
            const qint64 k = Currency(d).Raw();
            return [col, k, op](RecordId id) { return !col->IsNull(id) && applyOp(threeWay(col->Int(id), k), op); };
        }
        case Storage::Float: {
            const double d = numberFor(literal, f);
            return [col, d, op](RecordId id) { return !col->IsNull(id) && applyOp(threeWay(col->Float(id), d), op); };
        }
        case Storage::Text:
        case Storage::Memo: {
            QString text = textFor(literal);
            const Qt::CaseSensitivity cs = m_cs;
            if (m_partial && literal.kind == TFilterNode::Text && text.endsWith(QLatin1Char('*'))
                && (op == TFilterNode::Equal || op == TFilterNode::NotEqual)) {
                text.chop(1);
                const bool negated = op == TFilterNode::NotEqual;
                return [col, text, cs, negated](RecordId id) {
                    return !col->IsNull(id) && col->Text(id).startsWith(text, cs) != negated;
                };
            }
            return [col, text, cs, op](RecordId id) {
                return !col->IsNull(id) && applyOp(col->Text(id).compare(text, cs), op);
            };
        }
        default:
            return Generic(f, op, literal);
        }
    }

    Predicate ColumnColumn(const FieldAccess &a, Op op, const FieldAccess &b)
    {
        const Column *x = &m_store.ColumnAt(a.column), *y = &m_store.ColumnAt(b.column);
        auto bothNumeric = [](Storage k) { return k == Storage::Int || k == Storage::Bool || k == Storage::Float; };
        if (bothNumeric(x->Kind()) && bothNumeric(y->Kind())) {
            auto value = [](const Column *c, RecordId id) { return c->Kind() == Storage::Float ? c->Float(id) : double(c->Int(id)); };
            return [x, y, op, value](RecordId id) {
                return !x->IsNull(id) && !y->IsNull(id) && applyOp(threeWay(value(x, id), value(y, id)), op);
            };
        }
        if (x->Kind() == Storage::Curr && y->Kind() == Storage::Curr)
            return [x, y, op](RecordId id) {
                return !x->IsNull(id) && !y->IsNull(id) && applyOp(threeWay(x->Int(id), y->Int(id)), op);
            };
        auto text = [](Storage k) { return k == Storage::Text || k == Storage::Memo; };
        if (text(x->Kind()) && text(y->Kind())) {
            const Qt::CaseSensitivity cs = m_cs;
            return [x, y, op, cs](RecordId id) {
                return !x->IsNull(id) && !y->IsNull(id) && applyOp(x->Text(id).compare(y->Text(id), cs), op);
            };
        }
        return {};
    }

    Predicate Generic(const FieldAccess &f, Op op, const TFilterNode &literal)
    {
        const Column *col = f.column >= 0 ? &m_store.ColumnAt(f.column) : nullptr;
        Reader read = col ? Reader([col](RecordId id) { return col->Get(id); }) : f.read;
        return GenericReaders(read, op, literalValue(literal));
    }

    Predicate Generic(const TFilterNode &left, Op op, const TFilterNode &right)
    {
        Reader a = Operand(left), b = Operand(right);
        const Qt::CaseSensitivity cs = m_cs;
        return [a, b, op, cs](RecordId id) {
            const QVariant x = a(id), y = b(id);
            if (isNullValue(x) || isNullValue(y))
                return false;
            return applyOp(compareAny(x, y, cs), op);
        };
    }

    Predicate GenericReaders(const Reader &read, Op op, const QVariant &constant)
    {
        const Qt::CaseSensitivity cs = m_cs;
        return [read, op, constant, cs](RecordId id) {
            const QVariant x = read(id);
            return !isNullValue(x) && applyOp(compareAny(x, constant, cs), op);
        };
    }

    const RecordStore &m_store;
    const FieldResolver &m_resolve;
    Qt::CaseSensitivity m_cs;
    bool m_partial;
};

} // namespace

Predicate CompileFilter(const TFilterNode &root, const RecordStore &store, const FieldResolver &resolve,
                        TFilterOptions options)
{
    return Compiler(store, resolve, options).Compile(root);
}

Predicate CompileLocate(const FieldAccess &field, const RecordStore &store, const QVariant &key, TLocateOptions options)
{
    const Column *col = field.column >= 0 ? &store.ColumnAt(field.column) : nullptr;
    const Storage kind = col ? col->Kind() : Storage::None;
    if (isNullValue(key)) {
        if (col)
            return [col](RecordId id) { return col->IsNull(id); };
        auto read = field.read;
        return [read](RecordId id) { return isNullValue(read(id)); };
    }
    const Qt::CaseSensitivity cs = options.testFlag(loCaseInsensitive) ? Qt::CaseInsensitive : Qt::CaseSensitive;
    const bool partial = options.testFlag(loPartialKey);
    try {
        switch (kind) {
        case Storage::Int:
        case Storage::Bool: {
            const double d = key.metaType().id() == QMetaType::Bool ? (key.toBool() ? 1 : 0) : VarToFloat(key);
            if (d != std::floor(d) || !(std::fabs(d) < 9.0e18))
                return [](RecordId) { return false; };
            const qint64 k = qint64(d);
            return [col, k](RecordId id) { return !col->IsNull(id) && col->Int(id) == k; };
        }
        case Storage::Curr: {
            const qint64 k = VarToCurr(key).Raw();
            return [col, k](RecordId id) { return !col->IsNull(id) && col->Int(id) == k; };
        }
        case Storage::Float: {
            const double d = isDateType(field.type) ? VarToDateTime(key) : VarToFloat(key);
            return [col, d](RecordId id) { return !col->IsNull(id) && col->Float(id) == d; };
        }
        case Storage::Text:
        case Storage::Memo: {
            const QString text = VarToStr(key);
            if (partial)
                return [col, text, cs](RecordId id) { return !col->IsNull(id) && col->Text(id).startsWith(text, cs); };
            if (cs == Qt::CaseSensitive)
                return [col, text](RecordId id) { return !col->IsNull(id) && col->Text(id) == text; };
            return [col, text](RecordId id) {
                return !col->IsNull(id) && col->Text(id).compare(text, Qt::CaseInsensitive) == 0;
            };
        }
        default:
            break;
        }
    } catch (const EVariantError &) {
        return [](RecordId) { return false; };
    }
    auto read = col ? std::function<QVariant(RecordId)>([col](RecordId id) { return col->Get(id); }) : field.read;
    const bool text = field.type == ftString || field.type == ftWideString || field.type == ftFixedChar
        || field.type == ftFixedWideChar || field.type == ftMemo || field.type == ftWideMemo || field.type == ftGuid;
    return [read, key, cs, partial, text](RecordId id) {
        const QVariant v = read(id);
        if (isNullValue(v))
            return false;
        if (text) {
            const QString a = VarToStr(v), b = VarToStr(key);
            return partial ? a.startsWith(b, cs) : a.compare(b, cs) == 0;
        }
        return VarSameValue(v, key);
    };
}

} // namespace mattoni::detail
