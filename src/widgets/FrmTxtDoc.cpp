#include "FrmTxtDoc.h"

#include "BoxText.h"
#include "Twips.h"
#include "core/document/TextRules.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

namespace fb {

FrmTxtDoc::FrmTxtDoc(bool textMode, QWidget* parent)
    : QDialog(parent), m_textMode(textMode), m_txtDoc(new QPlainTextEdit(this)),
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
    m_cmdOk->setDefault(!textMode);
    m_cmdOk->setAutoDefault(false);
    m_cmdCancel->setAutoDefault(false);
    connect(m_cmdOk, &QPushButton::clicked, this, &FrmTxtDoc::onOk);
    connect(m_cmdCancel, &QPushButton::clicked, this, &FrmTxtDoc::onCancel);
}

FrmTxtDoc::FrmTxtDoc(const QString& title, const QString& text, bool editable, QWidget* parent)
    : FrmTxtDoc(true, parent)
{
    m_editable = editable;
    m_docText = text;
    const auto px = [this](int twips) { return TwipsToPixelsX(twips, this); };
    const auto py = [this](int twips) { return TwipsToPixelsY(twips, this); };
    setFixedSize(px(8490), py(5130));
    m_txtDoc->setGeometry(0, 0, px(8295), py(4575));
    m_lblTarget->hide();
    m_cmbTargetTable->hide();
    m_cmdOk->setGeometry(0, py(4560), px(1095), py(375));
    m_cmdCancel->setGeometry(px(1200), py(4560), px(1095), py(375));
    setWindowTitle(title);
    SetBoxText(m_txtDoc, text);
    if (!editable) {
        m_txtDoc->setReadOnly(true);
        m_cmdOk->setEnabled(false);
    }
    connect(m_txtDoc, &QPlainTextEdit::textChanged, this, [this] { m_changed = true; });
}

FrmTxtDoc::FrmTxtDoc(qint16 dumpNumber, const QStringList& tables, const QString& preset, QWidget* parent)
    : FrmTxtDoc(false, parent)
{
    m_chosenTable = preset;
    const auto px = [this](int twips) { return TwipsToPixelsX(twips, this); };
    const auto py = [this](int twips) { return TwipsToPixelsY(twips, this); };
    setFixedSize(px(4350), py(1230));
    m_txtDoc->hide();
    m_lblTarget->setGeometry(px(120), py(180), px(1300), py(315));
    m_cmbTargetTable->setGeometry(px(1440), py(150), px(2700), py(315));
    m_cmdOk->setGeometry(px(840), py(600), px(1095), py(375));
    m_cmdCancel->setGeometry(px(2040), py(600), px(1095), py(375));
    setWindowTitle(QStringLiteral("Choose Target for Dump No: ") + str::SignPadded(dumpNumber));
    m_cmbTargetTable->addItems(tables);
    if (m_cmbTargetTable->count() > 0)
        m_cmbTargetTable->setCurrentIndex(0);
}

void FrmTxtDoc::onOk()
{
    m_byButton = true;
    if (m_textMode)
        m_docText = BoxText(m_txtDoc);
    else
        m_chosenTable = m_cmbTargetTable->currentText();
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
    if (!m_byButton && m_textMode && m_editable && m_changed) {
        const QString text = BoxText(m_txtDoc);
        if (text != m_docText) {
            QMessageBox box(QMessageBox::NoIcon, QString(), QStringLiteral("Save Changes Done ?"),
                            QMessageBox::Yes | QMessageBox::No, this);
            if (box.exec() == QMessageBox::Yes)
                m_docText = text;
        }
    }
    m_byButton = true;
    event->accept();
    QDialog::reject();
}

} // namespace fb
