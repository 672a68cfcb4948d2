// A minimal host: creates the control, drives it by property and method
// names only, answers a source-table request and reads the document back.
// Usage: consumer SAMPLE.xml; exit code 0 when everything held.
#include <QApplication>
#include <QFile>
#include <QMetaObject>
#include <QTextStream>
#include <VelkPrjFieldbridge/ctlFieldbridge.h>

namespace {

int failures = 0;

void check(bool ok, const QString& what)
{
    QTextStream(stdout) << (ok ? "ok   " : "FAIL ") << what << Qt::endl;
    if (!ok)
        ++failures;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    if (argc < 2)
        return 2;
    QFile sample(QString::fromLocal8Bit(argv[1]));
    if (!sample.open(QIODevice::ReadOnly))
        return 2;
    const QString text = QString::fromUtf8(sample.readAll());

    ctlFieldbridge control;
    QObject* host = &control;
    QString requested = QStringLiteral("(none)");
    QObject::connect(&control, &ctlFieldbridge::ShowSourceTablesPopUp,
                     [&requested](const QString& tables) { requested = tables; });

    check(host->setProperty("Edit", true), QStringLiteral("Edit is a property"));
    check(host->setProperty("TargetTable", QStringLiteral("klmno001")),
          QStringLiteral("TargetTable is a property"));
    check(host->setProperty("MappingObjectXML", text), QStringLiteral("MappingObjectXML is a property"));
    check(QMetaObject::invokeMethod(host, "ShowControl"), QStringLiteral("ShowControl is invokable"));
    check(host->property("SourceTables").toString() == QStringLiteral("pqrst002,uvwxy003,abcde004"),
          QStringLiteral("SourceTables reads the document's list"));

    check(host->setProperty("SourceTables", QStringLiteral("pqrst002,uvwxy003,abcde004,fghij005")),
          QStringLiteral("SourceTables can be assigned"));
    const QString document = host->property("MappingObjectXML").toString();
    check(document.startsWith(QStringLiteral("<klmno001")), QStringLiteral("the document comes back"));
    check(document.contains(QStringLiteral("<SRCTBL>pqrst002,uvwxy003,abcde004,fghij005</SRCTBL>")),
          QStringLiteral("the assigned source tables are in the document"));
    check(host->property("MappingObjectXML").toString() == document,
          QStringLiteral("reading twice gives the same document"));

    const int signal = control.metaObject()->indexOfSignal("ShowSourceTablesPopUp(QString)");
    check(signal >= 0, QStringLiteral("ShowSourceTablesPopUp is a signal"));
    check(requested == QStringLiteral("(none)"), QStringLiteral("no event without a click"));

    return failures == 0 ? 0 : 1;
}
