#include "ScreenshotRenderer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>

namespace {

// Lets the window lay itself out and paint before it is grabbed.
void settle(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// A click on a tab as a person makes it, so the control sees what it sees
// when the user switches tabs.
void clickTab(QTabWidget* tabs, int index)
{
    QTabBar* bar = tabs->tabBar();
    const QPoint centre = bar->tabRect(index).center();
    const QPoint global = bar->mapToGlobal(centre);
    QMouseEvent press(QEvent::MouseButtonPress, centre, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(bar, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, centre, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(bar, &release);
}

} // namespace

ScreenshotRenderer::ScreenshotRenderer(QWidget* window) : m_window(window) {}

void ScreenshotRenderer::renderSuggestions(const QString& dir, QStringList* written, QStringList* problems)
{
    // The review dialog of the shown dump, grabbed while it is open, then
    // cancelled: nothing is written into the document.
    auto* suggest = m_window->findChild<QAbstractButton*>(QStringLiteral("CmdSuggest"));
    if (!suggest || !suggest->isEnabled())
        return;
    const QString path = QDir(dir).absoluteFilePath(QStringLiteral("suggestions.png"));
    m_answerer.setPaused(true);
    QTimer poll;
    poll.setInterval(20);
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog->objectName() != QStringLiteral("FrmSuggest"))
            return;
        poll.stop();
        if (auto* list = dialog->findChild<QTreeWidget*>(); list && list->topLevelItemCount() > 1)
            list->topLevelItem(1)->setExpanded(true);
        settle(200);
        if (dialog->grab().save(path))
            written->append(path);
        else
            problems->append(QStringLiteral("cannot write %1").arg(path));
        dialog->reject();
    });
    poll.start();
    suggest->click();
    m_answerer.setPaused(false);
}

QStringList ScreenshotRenderer::render(const QString& dir, QStringList* notes)
{
    QStringList written;
    QStringList problems;
    if (!QDir().mkpath(dir)) {
        problems.append(QStringLiteral("cannot create %1").arg(dir));
    } else {
        m_window->resize(1280, 800);
        m_window->show();
        settle(200);
        auto* tabs = m_window->findChild<QTabWidget*>(QStringLiteral("MainTab"));
        if (!tabs)
            problems.append(QStringLiteral("the control has no tab strip \"MainTab\""));
        const struct {
            int tab;
            QString file;
        } pages[] = {{0, QStringLiteral("mapping-object.png")}, {1, QStringLiteral("define-dumps.png")}};
        for (const auto& page : pages) {
            if (tabs && tabs->currentIndex() != page.tab) {
                clickTab(tabs, page.tab);
                settle(300);
                if (tabs->currentIndex() != page.tab)
                    problems.append(QStringLiteral("tab %1 did not become current").arg(page.tab));
            }
            // The workbench at work: the source list narrowed by a find.
            if (auto* find = m_window->findChild<QLineEdit*>(QStringLiteral("txtFindSource"));
                find && page.tab == 1)
                find->setText(QStringLiteral("cust"));
            settle(100);
            const QString path = QDir(dir).absoluteFilePath(page.file);
            if (m_window->grab().save(path))
                written.append(path);
            else
                problems.append(QStringLiteral("cannot write %1").arg(path));
        }
    }
    if (problems.isEmpty())
        renderSuggestions(dir, &written, &problems);
    for (const QString& text : m_answerer.answered())
        problems.append(QStringLiteral("answered a box: %1").arg(text));
    if (notes)
        *notes = problems;
    return written;
}
