#pragma once

#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

// Readable failure output for Qt strings.
inline void PrintTo(const QString& s, std::ostream* os)
{
    *os << '"' << s.toStdString() << '"';
}

namespace fb {

inline void PrintTo(MsgIcon icon, std::ostream* os)
{
    switch (icon) {
    case MsgIcon::None:
        *os << "None";
        return;
    case MsgIcon::Critical:
        *os << "Critical";
        return;
    case MsgIcon::Exclamation:
        *os << "Exclamation";
        return;
    case MsgIcon::Information:
        *os << "Information";
        return;
    case MsgIcon::Question:
        *os << "Question";
        return;
    }
}

namespace test {

// A row of a data-driven test. Its name, a valid identifier, names the test
// instance and is what a failure prints for the row.
struct Row {
    std::string name;
};

inline std::ostream& operator<<(std::ostream& os, const Row& row)
{
    return os << row.name;
}

// Names the instances of a data-driven test by their rows.
struct RowName {
    template <typename Info>
    std::string operator()(const Info& info) const
    {
        return info.param.name;
    }
};

// A document loaded from text, with the table name set; the load must work.
inline void Load(MappingDocument& doc, const QString& xml, const QString& tableName)
{
    ASSERT_TRUE(doc.LoadXml(xml)) << xml.left(200).toStdString();
    doc.SetTableName(tableName);
}

// The sample mapping objects shipped with the project: in $FIELDBRIDGE_EXAMPLES
// when the environment names it, else in the source tree's examples folder.
inline QString ExamplePath(const QString& file)
{
    QByteArray dir = qgetenv("FIELDBRIDGE_EXAMPLES");
#ifdef FIELDBRIDGE_EXAMPLES_DIR
    if (dir.isEmpty())
        dir = FIELDBRIDGE_EXAMPLES_DIR;
#endif
    return QString::fromLocal8Bit(dir) + u'/' + file;
}

inline QString ReadExample(const QString& file)
{
    QFile f(ExamplePath(file));
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(f.readAll());
}

} // namespace test
} // namespace fb
