// How the host reads mapping-object files before it hands them to the
// control: decoding, the root name, the SRCTAB catalogue, table lists and
// line breaks.
#include "MappingFile.h"

#include <QFile>
#include <QStringEncoder>
#include <QTest>

using namespace MappingFile;

class TestMappingFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodesFiles_data();
    void decodesFiles();
    void readsSampleCatalogues_data();
    void readsSampleCatalogues();
    void reportsMalformedText_data();
    void reportsMalformedText();
    void showsFieldNames_data();
    void showsFieldNames();
    void picksNamedTables_data();
    void picksNamedTables();
};

void TestMappingFile::decodesFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("declarationRemoved");

    const QString body = QStringLiteral("<abcde001><PREC>Größe</PREC></abcde001>");
    QTest::newRow("utf-8 without declaration") << body.toUtf8() << body << false;
    QTest::newRow("utf-8 with byte-order mark") << QByteArray("\xEF\xBB\xBF") + body.toUtf8() << body << false;
    QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    QTest::newRow("utf-16 with byte-order mark") << QByteArray(utf16(body)) << body << false;
    QTest::newRow("declared latin-1, declaration left out")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n") + body.toLatin1() << body << true;
    QTest::newRow("declared utf-8 in single quotes")
        << QByteArray("<?xml version='1.0' encoding='UTF-8'?>") + body.toUtf8() << body << true;
    QTest::newRow("unknown encoding falls back to utf-8")
        << QByteArray("<?xml version=\"1.0\" encoding=\"no-such-set\"?>\r\n") + body.toUtf8() << body << true;
    QTest::newRow("processing instruction that is no declaration stays")
        << QByteArray("<?xml-stylesheet href=\"a\"?>") + body.toUtf8()
        << QStringLiteral("<?xml-stylesheet href=\"a\"?>") + body << false;
}

void TestMappingFile::decodesFiles()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QFETCH(bool, declarationRemoved);

    const Decoded decoded = decode(bytes);
    QCOMPARE(decoded.text, text);
    QCOMPARE(decoded.declarationRemoved, declarationRemoved);
}

void TestMappingFile::readsSampleCatalogues_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("rootName");
    QTest::addColumn<QStringList>("tables");
    QTest::addColumn<QString>("firstField");
    QTest::addColumn<QString>("someField");

    QTest::newRow("single target") << QStringLiteral("klmno001.xml") << QStringLiteral("klmno001")
                                   << QStringList{QStringLiteral("PQRST002"), QStringLiteral("UVWXY003"),
                                                  QStringLiteral("ABCDE004")}
                                   << QStringLiteral("pqrst002.custno") << QStringLiteral("pqrst002.note(2)");
    QTest::newRow("multi target") << QStringLiteral("fghij100.xml") << QStringLiteral("fghij100")
                                  << QStringList{QStringLiteral("LMNOP010"), QStringLiteral("RSTUV020"),
                                                 QStringLiteral("HIJKL030")}
                                  << QStringLiteral("lmnop010.item") << QStringLiteral("hijkl030.price");
}

void TestMappingFile::readsSampleCatalogues()
{
    QFETCH(QString, file);
    QFETCH(QString, rootName);
    QFETCH(QStringList, tables);
    QFETCH(QString, firstField);
    QFETCH(QString, someField);

    QFile sample(QString::fromLocal8Bit(qgetenv("FIELDBRIDGE_EXAMPLES")) + u'/' + file);
    QVERIFY2(sample.open(QIODevice::ReadOnly), qPrintable(sample.fileName()));
    Catalogue catalogue;
    QString error;
    QVERIFY2(readCatalogue(decode(sample.readAll()).text, &catalogue, &error), qPrintable(error));

    QCOMPARE(catalogue.rootName, rootName);
    QStringList names;
    QStringList fields;
    for (const SourceTable& table : catalogue.sourceTables) {
        names.append(table.name);
        QVERIFY2(!table.fields.isEmpty(), qPrintable(table.name));
        for (const SourceField& field : table.fields) {
            QVERIFY2(field.qualifiedName.startsWith(table.name.toLower() + u'.'), qPrintable(field.qualifiedName));
            fields.append(field.qualifiedName);
        }
    }
    QVERIFY2(fields.contains(someField), qPrintable(fields.join(u' ')));
    QCOMPARE(names, tables);
    QCOMPARE(catalogue.sourceTables.constFirst().fields.constFirst().qualifiedName, firstField);
    QVERIFY(!catalogue.sourceTables.constFirst().fields.constFirst().description.isEmpty());
}

void TestMappingFile::reportsMalformedText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("where");

    QTest::newRow("unclosed root") << QStringLiteral("<abcde001>\n<PREC>x</PREC>") << QStringLiteral("line 2");
    QTest::newRow("crossed elements") << QStringLiteral("<abcde001><A><B></A></B></abcde001>")
                                      << QStringLiteral("line 1");
    QTest::newRow("empty text") << QString() << QString();
    QTest::newRow("no element at all") << QStringLiteral("   ") << QString();
}

void TestMappingFile::reportsMalformedText()
{
    QFETCH(QString, text);
    QFETCH(QString, where);

    Catalogue catalogue;
    catalogue.rootName = QStringLiteral("untouched");
    QString error;
    QVERIFY(!readCatalogue(text, &catalogue, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY2(error.contains(where), qPrintable(error));
    QCOMPARE(catalogue.rootName, QStringLiteral("untouched"));
}

void TestMappingFile::showsFieldNames_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");

    QTest::newRow("plain") << QStringLiteral("CUSTNO") << QStringLiteral("abcde002.custno");
    QTest::newRow("array element") << QStringLiteral("NOTE__2") << QStringLiteral("abcde002.note(2)");
    QTest::newRow("two markers, as the control lists it") << QStringLiteral("A__B__C")
                                                           << QStringLiteral("abcde002.a(b(c)");
}

void TestMappingFile::showsFieldNames()
{
    QFETCH(QString, stored);
    QFETCH(QString, shown);
    const QString xml = QStringLiteral("<abcde001><SRCTAB><ABCDE002><%1 DSCA=\"d\"/></ABCDE002></SRCTAB></abcde001>")
                            .arg(stored);
    Catalogue catalogue;
    QVERIFY(readCatalogue(xml, &catalogue, nullptr));
    QCOMPARE(catalogue.sourceTables.size(), 1);
    QCOMPARE(catalogue.sourceTables.constFirst().fields.size(), 1);
    QCOMPARE(catalogue.sourceTables.constFirst().fields.constFirst().qualifiedName, shown);
}

void TestMappingFile::picksNamedTables_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QStringList>("tables");

    const QStringList all{QStringLiteral("AAAAA001"), QStringLiteral("BBBBB002"), QStringLiteral("CCCCC003")};
    QTest::newRow("one table, other case") << QStringLiteral("bbbbb002") << QStringList{all.at(1)};
    QTest::newRow("list order wins") << QStringLiteral("ccccc003,aaaaa001") << QStringList{all.at(2), all.at(0)};
    QTest::newRow("blanks and empty pieces") << QStringLiteral(" aaaaa001 ,,") << QStringList{all.at(0)};
    QTest::newRow("unknown names only: all tables") << QStringLiteral("zzzzz999") << all;
    QTest::newRow("empty list: all tables") << QString() << all;
}

void TestMappingFile::picksNamedTables()
{
    QFETCH(QString, list);
    QFETCH(QStringList, tables);

    Catalogue catalogue;
    const QStringList defined{QStringLiteral("AAAAA001"), QStringLiteral("BBBBB002"), QStringLiteral("CCCCC003")};
    for (const QString& name : defined)
        catalogue.sourceTables.append(SourceTable{name, {}});
    QStringList names;
    for (const SourceTable& table : tablesNamedIn(catalogue, list))
        names.append(table.name);
    QCOMPARE(names, tables);
}

QTEST_GUILESS_MAIN(TestMappingFile)
#include "tst_mappingfile.moc"
