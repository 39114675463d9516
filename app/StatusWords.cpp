#include "app/StatusWords.h"

#include "input/AEPoint.h"

#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QTimer>

#include <algorithm>

namespace
{

constexpr int noteMs = 20000;

const QString listSeparator = QStringLiteral(", ");

} // namespace

StatusWords::StatusWords(FourPs& panel, QStatusBar& bar)
    : QObject(&bar), m_panel(panel), m_bar(bar), m_hint(new QLabel)
{
    m_hint->setObjectName(QStringLiteral("StatusHint"));
    m_hint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // never widens the window
    m_hint->hide();
    m_bar.addWidget(m_hint, 1);
    watchMuts();
    watchFields();
    watchFiles();
}

void StatusWords::watchMuts()
{
    for (int row = 0; row < m_panel.ePoints.size(); ++row) {
        const AEPoint* point = m_panel.ePoints[row];
        m_muts.append({point->Mut1, point->Mut2, point->MutT, point->MutBlank});
        m_sources.append(QVector<MutSource>(columns));
        for (int column = 0; column < columns; ++column) {
            filled(row, column);
            // What is typed over is meant as it is.
            connect(m_muts[row][column], &QLineEdit::textEdited, this,
                    [this, row, column] { filled(row, column); });
        }
        connect(point->UseCB, &QCheckBox::toggled, this, &StatusWords::update);
    }
    connect(&m_panel, &FourPs::mutFilled, this, &StatusWords::filled);
}

void StatusWords::watchFields()
{
    add(m_panel.EdgeE, m_panel.EdgeELabel->text());
    add(m_panel.PreEEndDE, m_panel.PreEEndDELabel->text());
    add(m_panel.PostEStartDE, m_panel.PostEStartDELabel->text());
    for (QLineEdit* field : {m_panel.Valence1, m_panel.Valence2})
        add(field, field->accessibleName());
    for (const AEPoint* point : qAsConst(m_panel.ePoints))
        add(point->Energy, point->Energy->accessibleName());
    for (const QVector<QLineEdit*>& row : qAsConst(m_muts))
        for (QLineEdit* field : row)
            add(field, field->accessibleName());
    for (const QLineEdit* field : qAsConst(m_fields))
        connect(field, &QLineEdit::textChanged, this, &StatusWords::update);
    m_used.fill(texts(), FourPs::results);
    connect(&m_panel, &FourPs::calculated, this, [this](FourPs::Result result) {
        m_used[static_cast<int>(result)] = texts();
        update();
    });
}

void StatusWords::watchFiles()
{
    connect(&m_panel, &FourPs::unread, this, [this](const QString& path) {
        m_bar.showMessage(tr("Nothing could be read from %1.").arg(QFileInfo(path).fileName()),
                          noteMs);
    });
    connect(&m_panel, &FourPs::guideMissing, this,
            [this] { m_bar.showMessage(tr("The guide is not installed."), noteMs); });
    connect(&m_panel, &FourPs::written, this, [this](const QString& path) {
        const QFileInfo file(path);
        m_written.append(QStringLiteral("%1 (%2)").arg(
            file.absoluteFilePath(), QLocale::c().formattedDataSize(file.size())));
        m_bar.showMessage(tr("Written: %1").arg(m_written.join(listSeparator)), noteMs);
        QTimer::singleShot(0, this, [this] { m_written.clear(); });
    });
    connect(&m_panel, &FourPs::progress, this, [this](const QString&, double part) {
        if (part <= 0.0)
            m_bar.clearMessage(); // how far a long operation is shows in its place
    });
}

void StatusWords::add(QLineEdit* field, const QString& name)
{
    m_fields.append(field);
    m_names.append(name);
}

QStringList StatusWords::texts() const
{
    QStringList texts;
    for (const QLineEdit* field : m_fields)
        texts.append(field->text());
    return texts;
}

StatusWords::MutSource StatusWords::sourceNow(int row, int column) const
{
    const bool isTarget = column == SpectrumSet::Target;
    const bool isBlank = column == SpectrumSet::Blank;
    const bool loses =
        !isBlank && (isTarget ? m_panel.UseVicForTargetCB : m_panel.UseVicCB)->isChecked();
    const QStringList lines = {m_panel.EdgeE->text(), m_panel.PreEEndDE->text(),
                               m_panel.PostEStartDE->text()};
    return {m_panel.ePoints[row]->Energy->text(), loses ? lines.join(listSeparator) : QString()};
}

void StatusWords::filled(int row, int column)
{
    m_sources[row][column] = sourceNow(row, column);
    update();
}

void StatusWords::update()
{
    if (m_used.isEmpty())
        return; // still being built
    const QString words = hint();
    m_hint->setText(words);
    m_hint->setToolTip(words);
    m_hint->setVisible(!words.isEmpty());
}

/// The first row in use with mu-t of before, by a part of their source; empty without one.
QString StatusWords::rowOfBefore(QString MutSource::*part) const
{
    for (int row = 0; row < m_muts.size(); ++row) {
        if (!m_panel.ePoints[row]->UseCB->isChecked())
            continue;
        for (int column = 0; column < columns; ++column) {
            if (!m_muts[row][column]->text().isEmpty() &&
                m_sources[row][column].*part != sourceNow(row, column).*part)
                return QString::number(row + 1);
        }
    }
    return {};
}

QString StatusWords::hint() const
{
    if (const QString row = rowOfBefore(&MutSource::energy); !row.isEmpty())
        return tr("No. %1: mut of the energy before. Press Enter in its energy field.").arg(row);
    if (!rowOfBefore(&MutSource::lines).isEmpty())
        return tr("mut of the Victreen lines before. Click %1 off and on again.")
            .arg(m_panel.UseVicCB->text());
    const QString buttons = buttonsToPress();
    if (buttons.isEmpty())
        return {};
    return tr("Not used yet: %1. Press %2.").arg(unusedFields(), buttons);
}

bool StatusWords::isShown(FourPs::Result result) const
{
    switch (result) {
    case FourPs::Result::Map:
        return m_panel.lastMap().size() > 0;
    case FourPs::Result::Target:
        return !m_panel.CalcRes->text().isEmpty();
    case FourPs::Result::Fit:
        break;
    }
    return !m_panel.LCFRes->text().isEmpty();
}

/// Names of what no shown result has used, the first one and that there are more.
QString StatusWords::unusedFields() const
{
    const QStringList now = texts();
    QStringList names;
    for (int i = 0; i < m_fields.size(); ++i) {
        const bool unused = std::any_of(m_used.begin(), m_used.end(),
                                        [&](const QStringList& used) { return used[i] != now[i]; });
        if (unused)
            names.append(m_names[i]);
    }
    return names.size() > 1 ? names.first() + QStringLiteral(", …") : names.join(QString());
}

QString StatusWords::buttonsToPress() const
{
    const QStringList now = texts();
    const QStringList names = {m_panel.CalcMapB->accessibleName(),
                               m_panel.CalcTargetB->accessibleName(), m_panel.LCFB->text()};
    QStringList buttons;
    for (int i = 0; i < FourPs::results; ++i) {
        if (isShown(static_cast<FourPs::Result>(i)) && m_used[i] != now)
            buttons.append(QStringLiteral("[%1]").arg(names[i]));
    }
    return buttons.join(QLatin1Char(' '));
}
