// Fields and field definitions: conversions between the typed accessors with the library's
// formatting rules and errors, texts for showing and editing, events, and the structure checks.
#include "ClientDataSet.h"
#include "DataTestSupport.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "Variants.h"

#include <QtTest>

using namespace mattoni;
using datatest::errorOf;

namespace {

// One record in insert mode with a field of each kind the tests need.
struct Record
{
    TClientDataSet ds;
    Record()
    {
        ds.FieldDefs().Add(QStringLiteral("S"), ftString, 20);
        ds.FieldDefs().Add(QStringLiteral("I"), ftInteger);
        ds.FieldDefs().Add(QStringLiteral("SI"), ftSmallint);
        ds.FieldDefs().Add(QStringLiteral("W"), ftWord);
        ds.FieldDefs().Add(QStringLiteral("L"), ftLargeint);
        ds.FieldDefs().Add(QStringLiteral("F"), ftFloat);
        ds.FieldDefs().Add(QStringLiteral("C"), ftCurrency);
        ds.FieldDefs().Add(QStringLiteral("BCD"), ftBCD, 4)->setPrecision(10);
        ds.FieldDefs().Add(QStringLiteral("B"), ftBoolean);
        ds.FieldDefs().Add(QStringLiteral("D"), ftDate);
        ds.FieldDefs().Add(QStringLiteral("T"), ftTime);
        ds.FieldDefs().Add(QStringLiteral("DT"), ftDateTime);
        ds.FieldDefs().Add(QStringLiteral("M"), ftMemo);
        ds.FieldDefs().Add(QStringLiteral("BL"), ftBlob);
        ds.FieldDefs().Add(QStringLiteral("V"), ftVariant);
        ds.CreateDataSet();
        ds.Append();
    }
    TField *f(const char *name) { return ds.FieldByName(QLatin1String(name)); }
};

} // namespace

class tst_Fields : public QObject
{
    Q_OBJECT
private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void fieldClassesFollowTheTypes()
    {
        Record r;
        QVERIFY(qobject_cast<TStringField *>(r.f("S")));
        QVERIFY(qobject_cast<TSmallintField *>(r.f("SI")));
        QVERIFY(qobject_cast<TCurrencyField *>(r.f("C")));
        QVERIFY(qobject_cast<TBCDField *>(r.f("BCD")));
        QVERIFY(qobject_cast<TDateField *>(r.f("D")));
        QVERIFY(qobject_cast<TMemoField *>(r.f("M")));
        QVERIFY(qobject_cast<TVariantField *>(r.f("V")));
        QCOMPARE(static_cast<TBCDField *>(r.f("BCD"))->Precision(), 10);
        QCOMPARE(r.f("S")->Size(), 20);
        QCOMPARE(r.f("S")->DisplayWidth(), 20);
        QCOMPARE(r.f("SI")->DisplayWidth(), 6);
        QCOMPARE(r.f("I")->Alignment(), Qt::AlignRight);
        QCOMPARE(r.f("S")->Alignment(), Qt::AlignLeft);
        QCOMPARE(r.f("I")->Index(), 1);
        QCOMPARE(r.f("M")->FieldNo(), 13);
    }

    // Set through one accessor, read through another; "!" starts an expected error message.
    void conversions_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("setter");
        QTest::addColumn<QVariant>("input");
        QTest::addColumn<QString>("getter");
        QTest::addColumn<QString>("expected");
        QTest::newRow("string from integer") << "S" << "AsInteger" << QVariant(42) << "AsString" << "42";
        QTest::newRow("string to integer") << "S" << "AsString" << QVariant(" 12") << "AsInteger" << "12";
        QTest::newRow("string not an integer") << "S" << "AsString" << QVariant("abc") << "AsInteger"
                                               << "!'abc' is not a valid integer value";
        QTest::newRow("string to float") << "S" << "AsString" << QVariant("1,5") << "AsFloat" << "1.5";
        QTest::newRow("string cut to size") << "S" << "AsString" << QVariant("abcdefghijklmnopqrstuvwxyz") << "AsString"
                                            << "abcdefghijklmnopqrst";
        QTest::newRow("string to boolean") << "S" << "AsString" << QVariant("yes") << "AsBoolean" << "true";
        QTest::newRow("string from boolean") << "S" << "AsBoolean" << QVariant(false) << "AsString" << "F";
        QTest::newRow("string from date") << "S" << "AsDateTime" << QVariant(38783.5) << "AsString" << "07/03/2006 12.00.00";
        QTest::newRow("integer from text") << "I" << "AsString" << QVariant("-17") << "AsString" << "-17";
        QTest::newRow("integer blank is null") << "I" << "AsString" << QVariant("") << "IsNull" << "true";
        QTest::newRow("integer not a number") << "I" << "AsString" << QVariant("1,5") << "AsInteger"
                                              << "!'1,5' is not a valid integer value";
        QTest::newRow("integer rounds half to even") << "I" << "AsFloat" << QVariant(2.5) << "AsInteger" << "2";
        QTest::newRow("integer rounds up") << "I" << "AsFloat" << QVariant(3.5) << "AsInteger" << "4";
        QTest::newRow("integer from variant text") << "I" << "Value" << QVariant("8") << "AsFloat" << "8";
        QTest::newRow("integer from bad variant") << "I" << "Value" << QVariant("otto") << "AsInteger"
                                                  << "!Could not convert variant of type (String) into type (Integer)";
        QTest::newRow("integer out of range") << "I" << "AsString" << QVariant("3000000000") << "AsInteger"
                                              << "!3000000000 is not a valid value for field 'I'. The allowed range is -2147483648 to 2147483647";
        QTest::newRow("smallint out of range") << "SI" << "AsInteger" << QVariant(70000) << "AsInteger"
                                               << "!70000 is not a valid value for field 'SI'. The allowed range is -32768 to 32767";
        QTest::newRow("word below zero") << "W" << "AsInteger" << QVariant(-1) << "AsInteger"
                                         << "!-1 is not a valid value for field 'W'. The allowed range is 0 to 65535";
        QTest::newRow("large integer") << "L" << "AsString" << QVariant("9007199254740993") << "AsString" << "9007199254740993";
        QTest::newRow("float text") << "F" << "AsString" << QVariant("1234,5") << "AsFloat" << "1234.5";
        QTest::newRow("float thousands refused") << "F" << "AsString" << QVariant("1.234,5") << "AsFloat"
                                                 << "!'1.234,5' is not a valid floating point value";
        QTest::newRow("float to integer") << "F" << "AsFloat" << QVariant(7.5) << "AsInteger" << "8";
        QTest::newRow("float as text") << "F" << "AsFloat" << QVariant(0.1) << "AsString" << "0,1";
        QTest::newRow("currency shown") << "C" << "AsFloat" << QVariant(1234.5) << "DisplayText" << "1.234,50 €";
        QTest::newRow("currency edited") << "C" << "AsFloat" << QVariant(1234.5) << "Text" << "1234,50";
        QTest::newRow("bcd exact") << "BCD" << "AsString" << QVariant("12,3456") << "AsString" << "12,3456";
        QTest::newRow("bcd as float") << "BCD" << "AsCurrency" << QVariant(2.5) << "AsFloat" << "2.5";
        QTest::newRow("boolean text") << "B" << "AsBoolean" << QVariant(true) << "AsString" << "True";
        QTest::newRow("boolean prefix") << "B" << "AsString" << QVariant("f") << "AsBoolean" << "false";
        QTest::newRow("boolean refused") << "B" << "AsString" << QVariant("forse") << "AsBoolean"
                                         << "!'forse' is not a valid boolean value for field 'B'";
        QTest::newRow("date text") << "D" << "AsString" << QVariant("07/03/2006") << "DisplayText" << "07/03/2006";
        QTest::newRow("date drops the time") << "D" << "AsDateTime" << QVariant(38783.75) << "AsFloat" << "38783";
        QTest::newRow("date not a date") << "D" << "AsString" << QVariant("31/02/2006") << "AsString"
                                         << "!'31/02/2006' is not a valid date";
        QTest::newRow("date as integer") << "D" << "AsString" << QVariant("07/03/2006") << "AsInteger"
                                         << "!Cannot access field 'D' as type Integer";
        QTest::newRow("time text") << "T" << "AsString" << QVariant("14.05.09") << "DisplayText" << "14.05.09";
        QTest::newRow("date-time text") << "DT" << "AsDateTime" << QVariant(38783.5) << "DisplayText" << "07/03/2006 12.00.00";
        QTest::newRow("date-time at midnight") << "DT" << "AsDateTime" << QVariant(38783.0) << "DisplayText" << "07/03/2006";
        QTest::newRow("memo text") << "M" << "AsString" << QVariant("lungo testo") << "AsString" << "lungo testo";
        QTest::newRow("memo shown") << "M" << "AsString" << QVariant("lungo testo") << "DisplayText" << "(MEMO)";
        QTest::newRow("empty memo shown") << "M" << "Value" << QVariant(Null()) << "DisplayText" << "(memo)";
        QTest::newRow("blob shown") << "BL" << "AsString" << QVariant("ab") << "DisplayText" << "(BLOB)";
        QTest::newRow("variant keeps its value") << "V" << "Value" << QVariant(2.5) << "AsString" << "2,5";
    }
    void conversions()
    {
        QFETCH(QString, field);
        QFETCH(QString, setter);
        QFETCH(QVariant, input);
        QFETCH(QString, getter);
        QFETCH(QString, expected);
        Record r;
        TField *f = r.ds.FieldByName(field);
        QString actual;
        const QString error = errorOf([&] {
            if (setter == QLatin1String("AsString"))
                f->setAsString(input.toString());
            else if (setter == QLatin1String("AsInteger"))
                f->setAsInteger(input.toInt());
            else if (setter == QLatin1String("AsFloat"))
                f->setAsFloat(input.toDouble());
            else if (setter == QLatin1String("AsCurrency"))
                f->setAsCurrency(Currency(input.toDouble()));
            else if (setter == QLatin1String("AsBoolean"))
                f->setAsBoolean(input.toBool());
            else if (setter == QLatin1String("AsDateTime"))
                f->setAsDateTime(input.toDouble());
            else
                f->setValue(input);
            if (getter == QLatin1String("AsString"))
                actual = f->AsString();
            else if (getter == QLatin1String("AsInteger"))
                actual = QString::number(f->AsInteger());
            else if (getter == QLatin1String("AsFloat"))
                actual = QString::number(f->AsFloat(), 'g', 17);
            else if (getter == QLatin1String("AsBoolean"))
                actual = f->AsBoolean() ? QStringLiteral("true") : QStringLiteral("false");
            else if (getter == QLatin1String("IsNull"))
                actual = f->IsNull() ? QStringLiteral("true") : QStringLiteral("false");
            else if (getter == QLatin1String("DisplayText"))
                actual = f->DisplayText();
            else
                actual = f->Text();
        });
        if (expected.startsWith(QLatin1Char('!')))
            QCOMPARE(error, expected.mid(1));
        else
            QCOMPARE(actual + error, expected);
    }

    void nullReadsAsEmptyValues()
    {
        Record r;
        QCOMPARE(r.f("I")->AsInteger(), 0);
        QCOMPARE(r.f("F")->AsFloat(), 0.0);
        QCOMPARE(r.f("B")->AsBoolean(), false);
        QCOMPARE(r.f("D")->AsDateTime(), 0.0);
        QCOMPARE(r.f("S")->AsString(), QString());
        QVERIFY(VarIsNull(r.f("I")->Value()));
        r.f("S")->setAsString(QString());
        // An empty text is a value, not Null.
        QVERIFY(!r.f("S")->IsNull());
        r.f("S")->Clear();
        QVERIFY(r.f("S")->IsNull());
    }

    void formatsAndTexts()
    {
        Record r;
        auto *f = static_cast<TFloatField *>(r.f("F"));
        f->setAsFloat(3.14159);
        f->setPrecision(4);
        QCOMPARE(f->DisplayText(), QStringLiteral("3,142"));
        f->setDisplayFormat(QStringLiteral("0.00"));
        QCOMPARE(f->DisplayText(), QStringLiteral("3,14"));
        f->setMaxValue(10);
        QCOMPARE(errorOf([&] { f->setAsFloat(12); }),
                 QStringLiteral("12 is not a valid value for field 'F'. The allowed range is 0 to 10"));
        auto *d = static_cast<TDateField *>(r.f("D"));
        d->setAsString(QStringLiteral("07/03/2006"));
        d->setDisplayFormat(QStringLiteral("dd mmmm yyyy"));
        QCOMPARE(d->DisplayText(), QStringLiteral("07 marzo 2006"));
        QCOMPARE(d->Text(), QStringLiteral("07/03/2006"));
        auto *b = static_cast<TBooleanField *>(r.f("B"));
        b->setDisplayValues(QStringLiteral("Sì;No"));
        b->setAsString(QStringLiteral("s"));
        QCOMPARE(b->AsString(), QStringLiteral("Sì"));
        b->setAsString(QString());
        QVERIFY(b->IsNull());
        auto *i = static_cast<TIntegerField *>(r.f("I"));
        i->setMinValue(1);
        i->setMaxValue(12);
        QCOMPARE(errorOf([&] { i->setAsInteger(13); }),
                 QStringLiteral("13 is not a valid value for field 'I'. The allowed range is 1 to 12"));
        i->setMaxValue(0);
        i->setMinValue(0);
        i->setAsInteger(1234);
        i->setDisplayFormat(QStringLiteral("#,##0"));
        QCOMPARE(i->DisplayText(), QStringLiteral("1.234"));
        r.f("S")->setDisplayLabel(QStringLiteral("Sigla"));
        QCOMPARE(r.f("S")->DisplayName(), QStringLiteral("Sigla"));
        QCOMPARE(r.f("S")->FieldName(), QStringLiteral("S"));
    }

    void events()
    {
        Record r;
        TField *s = r.f("S");
        QStringList log;
        s->OnGetText = [&](TField *sender, QString &text, bool display) {
            text = (display ? QStringLiteral("<") : QStringLiteral("[")) + sender->AsString();
        };
        s->OnSetText = [&](TField *sender, const QString &text) { sender->setAsString(text.toUpper()); };
        s->OnValidate = [&](TField *sender) {
            log << QStringLiteral("validate ") + sender->AsString();
            if (sender->AsString() == QLatin1String("NO"))
                throw EDatabaseError(QStringLiteral("rifiutato"));
        };
        s->OnChange = [&](TField *sender) { log << QStringLiteral("change ") + sender->AsString(); };
        s->setText(QStringLiteral("si"));
        QCOMPARE(s->DisplayText(), QStringLiteral("<SI"));
        QCOMPARE(s->Text(), QStringLiteral("[SI"));
        QCOMPARE(errorOf([&] { s->setText(QStringLiteral("no")); }), QStringLiteral("rifiutato"));
        // The refused value was never stored.
        QCOMPARE(s->AsString(), QStringLiteral("SI"));
        QCOMPARE(log, QStringList({"validate SI", "change SI", "validate NO"}));
    }

    void structureErrors()
    {
        TClientDataSet ds;
        ds.FieldDefs().Add(QStringLiteral("NOME"), ftString, 10);
        auto *wrong = new TIntegerField(&ds);
        wrong->setFieldName(QStringLiteral("NOME"));
        wrong->setDataSet(&ds);
        QCOMPARE(errorOf([&] { ds.CreateDataSet(); }),
                 QStringLiteral("Type mismatch for field 'NOME', expecting: Integer actual: String"));
        QVERIFY(!ds.Active());
        delete wrong;
        auto *lookup = new TStringField(&ds);
        lookup->setFieldName(QStringLiteral("L"));
        lookup->setFieldKind(fkLookup);
        lookup->setDataSet(&ds);
        QCOMPARE(errorOf([&] { ds.CreateDataSet(); }), QStringLiteral("Lookup information for field 'L' is incomplete"));
        delete lookup;
        auto *other = new TStringField(&ds);
        other->setFieldName(QStringLiteral("ALTRO"));
        other->setDataSet(&ds);
        QCOMPARE(errorOf([&] { ds.CreateDataSet(); }), QStringLiteral("Field 'ALTRO' not found"));
        delete other;

        ds.CreateDataSet();
        auto *late = new TStringField(&ds);
        QCOMPARE(errorOf([&] { late->setDataSet(&ds); }),
                 QStringLiteral("Cannot perform this operation on an open dataset"));
        ds.Close();
        late->setFieldName(QStringLiteral("X"));
        late->setDataSet(&ds);
        auto *twin = new TStringField(&ds);
        twin->setFieldName(QStringLiteral("x"));
        QCOMPARE(errorOf([&] { twin->setDataSet(&ds); }), QStringLiteral("Duplicate field name 'x'"));
        QCOMPARE(errorOf([&] { ds.FieldDefs().Add(QStringLiteral("nome"), ftInteger); }),
                 QStringLiteral("Duplicate field name 'nome'"));
        // Deleting a field of an open dataset closes it.
        ds.FieldDefs().Add(QStringLiteral("X"), ftString, 3);
        ds.CreateDataSet();
        delete late;
        QVERIFY(!ds.Active());
    }

    void definitionsMakeFields()
    {
        TClientDataSet ds;
        TFieldDef *hidden = ds.FieldDefs().Add(QStringLiteral("NASCOSTO"), ftInteger);
        hidden->setAttributes(faHiddenCol | faReadonly);
        ds.FieldDefs().Add(QStringLiteral("OBBLIGATORIO"), ftString, 8, true);
        TFieldDef *list = ds.FieldDefs().Add(QStringLiteral("VOTI"), ftArray, 2);
        list->ChildDefs().AddFieldDef()->setDataType(ftInteger);
        list->ChildDefs().AddFieldDef()->setDataType(ftInteger);
        QCOMPARE(list->ChildDefs()[1]->FieldNo(), 5);
        TFieldDefs copy(nullptr);
        copy.Assign(ds.FieldDefs());
        QCOMPARE(copy.Find(QStringLiteral("voti"))->ChildDefs().Count(), 2);
        QCOMPARE(errorOf([&] { copy.Find(QStringLiteral("ASSENTE")); }), QStringLiteral("Field 'ASSENTE' not found"));

        ds.CreateDataSet();
        TField *h = ds.FieldByName(QStringLiteral("NASCOSTO"));
        QVERIFY(!h->Visible());
        QVERIFY(h->ReadOnly());
        QVERIFY(!h->CanModify());
        QVERIFY(ds.FieldByName(QStringLiteral("OBBLIGATORIO"))->Required());
        auto *voti = qobject_cast<TArrayField *>(ds.FieldByName(QStringLiteral("VOTI")));
        QVERIFY(voti);
        QCOMPARE(voti->Fields()[1]->FieldName(), QStringLiteral("VOTI[1]"));
        QCOMPARE(ds.FieldByName(QStringLiteral("VOTI[1]")), voti->Fields()[1]);
        ds.Append();
        voti->setValue(QVariantList{28, 30});
        QCOMPARE(voti->Fields()[0]->AsInteger(), 28);
        QCOMPARE(voti->AsString(), QStringLiteral("(28, 30)"));
        QCOMPARE(voti->DisplayText(), QStringLiteral("(28, 30)"));
        ds.Cancel();
    }
};

QTEST_GUILESS_MAIN(tst_Fields)
#include "tst_fields.moc"
