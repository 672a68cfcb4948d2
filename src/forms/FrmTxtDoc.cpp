#include "FrmTxtDoc.h"

#include "control/BoxText.h"
#include "control/Twips.h"
#include "core/document/TextRules.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

namespace fb {

FrmTxtDoc::FrmTxtDoc(const Module1& module, QWidget* parent)
    : QDialog(parent), m_values(module), m_txtDoc(new QPlainTextEdit(this)),
      m_cmbTargetTable(new QComboBox(this)), m_lblTarget(new QLabel(QStringLiteral("Target Table:"), this)),
      m_cmdOk(new QPushButton(QStringLiteral("OK"), this)),
      m_cmdCancel(new QPushButton(QStringLiteral("Cancel"), this))
{
    setObjectName(QStringLiteral("FrmTxtDoc"));
    setModal(true);
    m_txtDoc->setObjectName(QStringLiteral("TxtDoc"));
    m_cmbTargetTable->setObjectName(QStringLiteral("CmbTargetTable"));
    m_lblTarget->setObjectName(QStringLiteral("LBLTARGET"));
    m_cmdOk->setObjectName(QStringLiteral("CmdOk"));
    m_cmdCancel->setObjectName(QStringLiteral("CmdCancel"));
    m_cmdOk->setDefault(!module.DocTextMode);
    m_cmdOk->setAutoDefault(false);
    m_cmdCancel->setAutoDefault(false);

    const auto px = [this](int twips) { return TwipsToPixelsX(twips, this); };
    const auto py = [this](int twips) { return TwipsToPixelsY(twips, this); };
    const int buttonW = px(1095);
    const int buttonH = py(375);

    if (module.DocTextMode) {
        setFixedSize(px(8490), py(5130));
        m_txtDoc->setGeometry(0, 0, px(8295), py(4575));
        m_lblTarget->hide();
        m_cmbTargetTable->hide();
        m_cmdOk->setGeometry(0, py(4560), buttonW, buttonH);
        m_cmdCancel->setGeometry(px(1200), py(4560), buttonW, buttonH);
        setWindowTitle(module.DocTitle);
        m_txtDoc->setPlainText(ToEditorText(module.DocText));
        if (!module.DocTextEditable) {
            m_txtDoc->setReadOnly(true);
            m_cmdOk->setEnabled(false);
        }
        connect(m_txtDoc, &QPlainTextEdit::textChanged, this, [this] { m_changed = true; });
    } else {
        setFixedSize(px(4350), py(1230));
        m_txtDoc->hide();
        m_lblTarget->setGeometry(px(120), py(180), px(1300), py(315));
        m_cmbTargetTable->setGeometry(px(1440), py(150), px(2700), py(315));
        m_cmdOk->setGeometry(px(840), py(600), buttonW, buttonH);
        m_cmdCancel->setGeometry(px(2040), py(600), buttonW, buttonH);
        setWindowTitle(QStringLiteral("Choose Target for Dump No: ") + str::SignPadded(module.DialogDumpNumber));
        const QStringList pieces = module.TableList.split(u';');
        for (qsizetype i = 0; i + 1 < pieces.size(); ++i)
            m_cmbTargetTable->addItem(pieces[i]);
        if (m_cmbTargetTable->count() > 0)
            m_cmbTargetTable->setCurrentIndex(0);
    }
    connect(m_cmdOk, &QPushButton::clicked, this, &FrmTxtDoc::onOk);
    connect(m_cmdCancel, &QPushButton::clicked, this, &FrmTxtDoc::onCancel);
}

void FrmTxtDoc::onOk()
{
    m_byButton = true;
    if (m_values.DocTextMode)
        m_values.DocText = BoxText(m_txtDoc);
    else
        m_values.ChosenTable = m_cmbTargetTable->currentText();
    accept();
}

void FrmTxtDoc::onCancel()
{
    m_byButton = true;
    QDialog::reject();
}

void FrmTxtDoc::reject()
{
    // Escape closes the dialog as its close box does.
    close();
}

void FrmTxtDoc::closeEvent(QCloseEvent* event)
{
    if (!m_byButton && m_values.DocTextMode && m_values.DocTextEditable && m_changed) {
        const QString text = BoxText(m_txtDoc);
        if (text != m_values.DocText) {
            QMessageBox box(QMessageBox::NoIcon, QString(), QStringLiteral("Save Changes Done ?"),
                            QMessageBox::Yes | QMessageBox::No, this);
            if (box.exec() == QMessageBox::Yes)
                m_values.DocText = text;
        }
    }
    m_byButton = true;
    event->accept();
    QDialog::reject();
}

namespace {

// Marks the control's dialog as open for as long as it lives.
class OpenDialog {
public:
    explicit OpenDialog(Module1& shared) : m_shared(shared) { m_shared.DialogOpen = true; }
    ~OpenDialog() { m_shared.DialogOpen = false; }
    OpenDialog(const OpenDialog&) = delete;
    OpenDialog& operator=(const OpenDialog&) = delete;

private:
    Module1& m_shared;
};

Module1 execDialog(Module1& shared, Module1 values, QWidget* parent)
{
    const OpenDialog open(shared);
    values.DocTextEditable = shared.DocTextEditable;
    FrmTxtDoc dialog(values, parent);
    dialog.exec();
    return dialog.values();
}

} // namespace

std::optional<QString> EditDocText(Module1& shared, QWidget* parent, const QString& title, const QString& text)
{
    if (shared.DialogOpen)
        return std::nullopt;
    Module1 values;
    values.DocTextMode = true;
    values.DocTitle = title;
    values.DocText = text;
    return execDialog(shared, values, parent).DocText;
}

std::optional<QString> ChooseTargetTable(Module1& shared, QWidget* parent, qint16 dumpNumber,
                                         const QString& tableList, const QString& preset)
{
    if (shared.DialogOpen)
        return std::nullopt;
    Module1 values;
    values.DocTextMode = false;
    values.DialogDumpNumber = dumpNumber;
    values.TableList = tableList;
    values.ChosenTable = preset;
    return execDialog(shared, values, parent).ChosenTable;
}

} // namespace fb
