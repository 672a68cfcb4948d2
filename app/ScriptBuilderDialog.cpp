#include "ScriptBuilderDialog.h"

#include "AnswerButtons.h"
#include "core/document/LineBreaks.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

QString titleFor(ScriptBuilderDialog::Kind kind)
{
    switch (kind) {
    case ScriptBuilderDialog::Kind::Condition:
        return ScriptBuilderDialog::tr("Condition Builder");
    case ScriptBuilderDialog::Kind::Query:
        return ScriptBuilderDialog::tr("Query Builder");
    case ScriptBuilderDialog::Kind::Function:
        return ScriptBuilderDialog::tr("Function Builder");
    }
    return {};
}

QString objectNameFor(ScriptBuilderDialog::Kind kind)
{
    switch (kind) {
    case ScriptBuilderDialog::Kind::Condition:
        return QStringLiteral("ConditionBuilder");
    case ScriptBuilderDialog::Kind::Query:
        return QStringLiteral("QueryBuilder");
    case ScriptBuilderDialog::Kind::Function:
        return QStringLiteral("FunctionBuilder");
    }
    return {};
}

} // namespace

ScriptBuilderDialog::ScriptBuilderDialog(Kind kind, const QString& script,
                                         const QList<MappingFile::SourceTable>& tables, bool editable,
                                         QWidget* parent)
    : QDialog(parent)
{
    setObjectName(objectNameFor(kind));
    setWindowTitle(titleFor(kind));

    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txtScript"));
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_text->setPlainText(fb::LfText(script));
    m_text->setReadOnly(!editable);
    m_text->moveCursor(QTextCursor::End);

    m_fields = new QListWidget(this);
    m_fields->setObjectName(QStringLiteral("lstFields"));
    for (const MappingFile::SourceTable& table : tables) {
        for (const MappingFile::SourceField& field : table.fields) {
            auto* item = new QListWidgetItem(field.qualifiedName, m_fields);
            item->setToolTip(field.description);
        }
    }
    if (editable)
        connect(m_fields, &QListWidget::itemDoubleClicked, this, &ScriptBuilderDialog::insertField);

    auto* fieldsPane = new QWidget(this);
    auto* fieldsLayout = new QVBoxLayout(fieldsPane);
    fieldsLayout->setContentsMargins(0, 0, 0, 0);
    auto* fieldsLabel = new QLabel(tr("Source &fields (double click inserts):"), fieldsPane);
    fieldsLabel->setBuddy(m_fields);
    fieldsLayout->addWidget(fieldsLabel);
    fieldsLayout->addWidget(m_fields);

    auto* splitter = new QSplitter(this);
    splitter->addWidget(m_text);
    splitter->addWidget(fieldsPane);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);

    auto* buttons = MakeAnswerButtons(this, editable);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    layout->addWidget(buttons);
    resize(760, 480);
    m_text->setFocus();
}

QString ScriptBuilderDialog::script() const
{
    return m_text->toPlainText();
}

void ScriptBuilderDialog::insertField(QListWidgetItem* item)
{
    m_text->insertPlainText(item->text());
    m_text->setFocus();
}
