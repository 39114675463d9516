#include "app/ResultsMenu.h"

#include "app/FourPs.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>

ResultsMenu::ResultsMenu(FourPs& panel)
    : QObject(&panel), m_panel(panel), m_copy(new QAction(tr("Copy All &Results"), &panel))
{
    m_copy->setObjectName(QStringLiteral("CopyResults"));
    connect(m_copy, &QAction::triggered, this, &ResultsMenu::copyResults);
    for (QLineEdit* field : {panel.CalcRes, panel.LCFRes})
        extend(field, [field](const QPoint&) { return field->createStandardContextMenu(); });
    QTextEdit* pane = panel.Message;
    extend(pane, [pane](const QPoint& at) { return pane->createStandardContextMenu(at); });
}

template <class Standard>
void ResultsMenu::extend(QWidget* widget, const Standard& standard)
{
    widget->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(widget, &QWidget::customContextMenuRequested, this,
            [this, widget, standard](const QPoint& at) {
                QMenu* menu = standard(at);
                menu->setAttribute(Qt::WA_DeleteOnClose);
                menu->addSeparator();
                menu->addAction(m_copy);
                menu->popup(widget->mapToGlobal(at));
            });
}

void ResultsMenu::copyResults() const
{
    QApplication::clipboard()->setText(m_panel.resultsAsTable());
}
