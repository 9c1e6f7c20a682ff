// The filter expression parser: a recursive descent over the tokens of the text.
#include "Filter.h"

#include "DB.h"
#include "Strings.h"

namespace mattoni {

namespace {

enum class Tok { End, Name, Text, Number, LParen, RParen, Op, And, Or, Not, Is, Null, True, False };

struct Token
{
    Tok kind = Tok::End;
    QString text;
    TFilterNode::Op op = TFilterNode::Equal;
    int position = 0;
};

class Parser
{
public:
    explicit Parser(const QString &text) : m_text(text) { Advance(); }

    std::unique_ptr<TFilterNode> Parse()
    {
        auto root = Expression();
        if (m_token.kind != Tok::End)
            Fail("end of expression expected");
        return root;
    }

private:
    [[noreturn]] void Fail(const char *what) const
    {
        DatabaseErrorFmt(DBConsts::SFilterParseError, {m_token.position, QString::fromLatin1(what)});
    }

    static bool isNameStart(QChar c) { return c.isLetter() || c == QLatin1Char('_'); }
    static bool isNameChar(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('.'); }

    void Advance()
    {
        const int n = int(m_text.size());
        while (m_pos < n && m_text.at(m_pos).unicode() <= 32)
            ++m_pos;
        m_token = Token();
        m_token.position = m_pos + 1;
        if (m_pos >= n)
            return;
        const QChar c = m_text.at(m_pos);
        if (c == QLatin1Char('(') || c == QLatin1Char(')')) {
            m_token.kind = c == QLatin1Char('(') ? Tok::LParen : Tok::RParen;
            ++m_pos;
        } else if (c == QLatin1Char('\'')) {
            ReadText();
        } else if (c == QLatin1Char('[')) {
            const int close = int(m_text.indexOf(QLatin1Char(']'), m_pos + 1));
            if (close < 0)
                Fail("\"]\" expected");
            m_token.kind = Tok::Name;
            m_token.text = m_text.mid(m_pos + 1, close - m_pos - 1);
            m_pos = close + 1;
        } else if (c.isDigit() || (c == QLatin1Char('.') && m_pos + 1 < n && m_text.at(m_pos + 1).isDigit())) {
            ReadNumber();
        } else if (c == QLatin1Char('-') && m_pos + 1 < n
                   && (m_text.at(m_pos + 1).isDigit() || m_text.at(m_pos + 1) == QLatin1Char('.'))) {
            ++m_pos;
            ReadNumber();
            m_token.text.prepend(QLatin1Char('-'));
            m_token.position -= 1;
        } else if (isNameStart(c)) {
            const int start = m_pos;
            while (m_pos < n && isNameChar(m_text.at(m_pos)))
                ++m_pos;
            m_token.text = m_text.mid(start, m_pos - start);
            const QString word = UpperCase(m_token.text);
            m_token.kind = word == QLatin1String("AND")     ? Tok::And
                         : word == QLatin1String("OR")    ? Tok::Or
                         : word == QLatin1String("NOT")   ? Tok::Not
                         : word == QLatin1String("IS")    ? Tok::Is
                         : word == QLatin1String("NULL")  ? Tok::Null
                         : word == QLatin1String("TRUE")  ? Tok::True
                         : word == QLatin1String("FALSE") ? Tok::False
                                                          : Tok::Name;
        } else {
            ReadOperator();
        }
    }

    void ReadText()
    {
        QString value;
        int i = m_pos + 1;
        const int n = int(m_text.size());
        for (;;) {
            if (i >= n)
                Fail("closing quote expected");
            if (m_text.at(i) == QLatin1Char('\'')) {
                if (i + 1 < n && m_text.at(i + 1) == QLatin1Char('\'')) {
                    value += QLatin1Char('\'');
                    i += 2;
                    continue;
                }
                break;
            }
            value += m_text.at(i++);
        }
        m_token.kind = Tok::Text;
        m_token.text = value;
        m_pos = i + 1;
    }

    void ReadNumber()
    {
        const int n = int(m_text.size());
        const int start = m_pos;
        while (m_pos < n && (m_text.at(m_pos).isDigit() || m_text.at(m_pos) == QLatin1Char('.')))
            ++m_pos;
        if (m_pos < n && (m_text.at(m_pos) == QLatin1Char('e') || m_text.at(m_pos) == QLatin1Char('E'))) {
            int j = m_pos + 1;
            if (j < n && (m_text.at(j) == QLatin1Char('+') || m_text.at(j) == QLatin1Char('-')))
                ++j;
            if (j < n && m_text.at(j).isDigit()) {
                m_pos = j;
                while (m_pos < n && m_text.at(m_pos).isDigit())
                    ++m_pos;
            }
        }
        m_token.kind = Tok::Number;
        m_token.text = m_text.mid(start, m_pos - start);
        bool ok = false;
        m_token.text.toDouble(&ok);
        if (!ok)
            Fail("number expected");
    }

    void ReadOperator()
    {
        const QStringView rest = QStringView(m_text).mid(m_pos);
        struct
        {
            const char *text;
            TFilterNode::Op op;
        } static const ops[] = {{"<>", TFilterNode::NotEqual}, {"<=", TFilterNode::LessEqual},
                                {">=", TFilterNode::GreaterEqual}, {"=", TFilterNode::Equal},
                                {"<", TFilterNode::Less}, {">", TFilterNode::Greater}};
        for (const auto &o : ops) {
            if (rest.startsWith(QLatin1String(o.text))) {
                m_token.kind = Tok::Op;
                m_token.op = o.op;
                m_pos += int(qstrlen(o.text));
                return;
            }
        }
        Fail("unexpected character");
    }

    static std::unique_ptr<TFilterNode> Node(TFilterNode::Kind kind, int position)
    {
        auto node = std::make_unique<TFilterNode>();
        node->kind = kind;
        node->position = position;
        return node;
    }

    // Operands of Next joined by the operator Op, left to right.
    std::unique_ptr<TFilterNode> Joined(Tok op, TFilterNode::Kind kind, std::unique_ptr<TFilterNode> (Parser::*next)())
    {
        auto left = (this->*next)();
        while (m_token.kind == op) {
            auto node = Node(kind, m_token.position);
            Advance();
            node->children.push_back(std::move(left));
            node->children.push_back((this->*next)());
            left = std::move(node);
        }
        return left;
    }

    std::unique_ptr<TFilterNode> Expression() { return Joined(Tok::Or, TFilterNode::Or, &Parser::Term); }
    std::unique_ptr<TFilterNode> Term() { return Joined(Tok::And, TFilterNode::And, &Parser::Factor); }

    std::unique_ptr<TFilterNode> Factor()
    {
        if (m_token.kind == Tok::Not) {
            auto node = Node(TFilterNode::Not, m_token.position);
            Advance();
            node->children.push_back(Factor());
            return node;
        }
        if (m_token.kind == Tok::LParen) {
            Advance();
            auto inner = Expression();
            if (m_token.kind != Tok::RParen)
                Fail("\")\" expected");
            Advance();
            return inner;
        }
        return Comparison();
    }

    std::unique_ptr<TFilterNode> Comparison()
    {
        const int position = m_token.position;
        auto left = Operand();
        if (m_token.kind == Tok::Is) {
            Advance();
            bool negated = false;
            if (m_token.kind == Tok::Not) {
                negated = true;
                Advance();
            }
            if (m_token.kind != Tok::Null)
                Fail("NULL expected");
            Advance();
            auto node = Node(negated ? TFilterNode::IsNotNull : TFilterNode::IsNull, position);
            node->children.push_back(std::move(left));
            return node;
        }
        if (m_token.kind == Tok::Op) {
            auto node = Node(TFilterNode::Compare, position);
            node->op = m_token.op;
            Advance();
            node->children.push_back(std::move(left));
            node->children.push_back(Operand());
            return node;
        }
        if (left->kind != TFilterNode::Field && left->kind != TFilterNode::Boolean)
            Fail("comparison expected");
        // A lone field is a truth test.
        auto node = Node(TFilterNode::Compare, position);
        auto truth = Node(TFilterNode::Boolean, position);
        truth->boolean = true;
        node->children.push_back(std::move(left));
        node->children.push_back(std::move(truth));
        return node;
    }

    std::unique_ptr<TFilterNode> Operand()
    {
        std::unique_ptr<TFilterNode> node;
        switch (m_token.kind) {
        case Tok::Name:
            node = Node(TFilterNode::Field, m_token.position);
            node->text = m_token.text;
            break;
        case Tok::Text:
            node = Node(TFilterNode::Text, m_token.position);
            node->text = m_token.text;
            break;
        case Tok::Number:
            node = Node(TFilterNode::Number, m_token.position);
            node->text = m_token.text;
            node->number = m_token.text.toDouble();
            break;
        case Tok::Null:
            node = Node(TFilterNode::NullLiteral, m_token.position);
            break;
        case Tok::True:
        case Tok::False:
            node = Node(TFilterNode::Boolean, m_token.position);
            node->boolean = m_token.kind == Tok::True;
            break;
        default:
            Fail("field or value expected");
        }
        Advance();
        return node;
    }

    const QString &m_text;
    int m_pos = 0;
    Token m_token;
};

} // namespace

std::unique_ptr<TFilterNode> ParseFilter(const QString &text)
{
    if (Trim(text).isEmpty())
        return nullptr;
    return Parser(text).Parse();
}

} // namespace mattoni
