#include "app/BusyBar.h"

#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QStatusBar>

namespace
{

constexpr qint64 betweenPaintsMs = 50;
constexpr int steps = 1000;

} // namespace

BusyBar::BusyBar(QStatusBar* bar, int patience)
    : m_bar(bar), m_label(new QLabel), m_progress(new QProgressBar), m_patience(patience)
{
    m_label->setObjectName(QStringLiteral("BusyText"));
    m_progress->setObjectName(QStringLiteral("BusyProgress"));
    m_progress->setRange(0, steps);
    m_progress->setFixedHeight(m_label->sizeHint().height()); // the status bar stays as it is
    m_bar->addWidget(m_label, 1);
    m_bar->addWidget(m_progress);
    m_label->hide();
    m_progress->hide();
}

void BusyBar::show(const QString& text, double part)
{
    if (part <= 0.0) {
        m_begun.start();
        m_painted.invalidate();
    } else if (part >= 1.0) {
        m_label->hide();
        m_progress->hide();
    } else if (m_begun.isValid() && m_begun.elapsed() >= m_patience &&
               !(m_painted.isValid() && m_painted.elapsed() < betweenPaintsMs)) {
        m_label->setText(text);
        m_progress->setValue(static_cast<int>(part * steps));
        repaint();
    }
}

void BusyBar::repaint()
{
    m_label->show();
    m_progress->show();
    m_bar->layout()->activate(); // without the event loop nobody else does
    m_bar->repaint();
    m_painted.start();
}
