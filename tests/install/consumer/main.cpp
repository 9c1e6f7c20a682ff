// A console program of a user: links mattoni_core alone.
#include <mattoni/Ambiente.h>
#include <mattoni/Formatting.h>
#include <mattoni/SqlLiterals.h>

#include <cstdio>

int main()
{
    using namespace mattoni;
    SetItalianFormatSettings();
    TipoDatabase = dbmsFirebird;
    const QString literal = GetFormattedDate(QVariant(EncodeDate(2006, 3, 7)));
    std::printf("%s %s\n", qPrintable(literal), qPrintable(FormatFloat(QStringLiteral("#,##0.00"), 1234.5)));
    return 0;
}
