#include "tests/model/PanelSession.h"

#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "tests/support/PanelActions.h"

#include <QApplication>
#include <QBuffer>
#include <QComboBox>
#include <QDirIterator>
#include <QFile>
#include <QFileDialog>
#include <QTextStream>

// The person's widgets and what is compared; the acts are in PanelSessionActs.cpp.
using literal::PanelModel;

PanelSession::PanelSession(quint32 seed, const QString& folder, bool broken)
    : m_random(seed), m_folder(folder), m_files(seed, folder, broken),
      m_panel(std::make_unique<FourPs>())
{
    nameWidgets();
    m_panel->show();
    QApplication::setActiveWindow(m_panel.get());
    m_panel->displays->resize(900, 750);
    act(QStringLiteral("start"));
    compare();
    setUp(!broken);
}

PanelSession::~PanelSession()
{
    m_panel.reset(); // a field may be left while the panel goes, and the model is told of it
}

void PanelSession::nameWidgets()
{
    for (const char* name :
         {"Valence1", "Valence2", "EdgeE", "PreEEndDE", "PostEStartDE", "CalcRes", "LCFRes",
          "HgAFrom", "HgATo", "HgABoxes", "HgTFrom", "HgTTo", "HgTBoxes"})
        listen(QLatin1String(name), m_panel->findChild<QLineEdit*>(QLatin1String(name)));
    for (const char* name :
         {"RefFile1", "RefFile2", "TargetFile", "BlankFile", "DispFSelect", "SaveFSelect"})
        m_selectors[QLatin1String(name)] = m_panel->findChild<AFileSelect*>(QLatin1String(name));
    m_selectors[QStringLiteral("mapFileSelect")] = m_panel->mapFileSelect;
    for (const char* name : {"DispCondsB",
                             "ShowFourPs",
                             "HgAAuto",
                             "HgTAuto",
                             "TRSbyS",
                             "TRMean",
                             "TRLSquare",
                             "TRLSquareNB",
                             "TRVic2",
                             "UseVicCB",
                             "UseVicForTargetCB",
                             "TheVicIs1",
                             "TheVicIs2",
                             "TypeTMKisExact",
                             "TypeTMKisLS",
                             "NNone",
                             "NBySubPre",
                             "NByEJ",
                             "NBy2Vics",
                             "CalcTargetB",
                             "CalcMapB",
                             "LCFB",
                             "WriteB",
                             "RemoveAFile"})
        m_buttons[QLatin1String(name)] = m_panel->findChild<QAbstractButton*>(QLatin1String(name));
    for (int row = 1; row <= 8; ++row)
        nameRow(row);
    for (auto it = m_selectors.constBegin(); it != m_selectors.constEnd(); ++it)
        listen(it.key(), it.value()->FileName);
}

void PanelSession::nameRow(int row)
{
    const AEPoint* point = m_panel->ePoints.at(row - 1);
    m_buttons[PanelModel::inRow(row, "use")] = point->UseCB;
    m_buttons[PanelModel::inRow(row, "tratio")] = point->TRatCB;
    m_buttons[PanelModel::inRow(row, "vpoint")] = point->VPointCB;
    listen(PanelModel::inRow(row, "energy"), point->Energy);
    listen(PanelModel::inRow(row, "mut1"), point->Mut1);
    listen(PanelModel::inRow(row, "mut2"), point->Mut2);
    listen(PanelModel::inRow(row, "mutT"), point->MutT);
    listen(PanelModel::inRow(row, "mutBlank"), point->MutBlank);
    m_selectors[PanelModel::inRow(row, "2d")] = point->MapFile;
}

/// The model is told of what is typed and of fields that are left, in the moment it happens.
void PanelSession::listen(const QString& name, QLineEdit* edit)
{
    m_edits[name] = edit;
    QObject::connect(edit, &QLineEdit::textEdited, m_panel.get(),
                     [this, name](const QString& text) { m_model.type(name, text); });
    QObject::connect(edit, &QLineEdit::editingFinished, m_panel.get(),
                     [this, name] { m_model.finishEditing(name); });
}

bool PanelSession::agree()
{
    compare();
    return m_differences.isEmpty();
}

bool PanelSession::step()
{
    (this->*chooseAct())();
    return agree();
}

bool PanelSession::type(const QString& field, const QString& text)
{
    typeInto(field, text);
    return agree();
}

bool PanelSession::push(const QString& button)
{
    m_expectedFiles = outputFiles();
    m_model.output.clear();
    click(button);
    compareOutput();
    return agree();
}

bool PanelSession::drop(const QString& selector, const QString& path)
{
    dropOn(selector, path);
    return agree();
}

QString PanelSession::report() const
{
    return QStringLiteral("%1\nafter\n%2")
        .arg(m_differences.join(QLatin1Char('\n')), m_acts.join(QLatin1Char('\n')));
}

void PanelSession::differ(const QString& what, const QString& is, const QString& expected)
{
    m_differences.append(QStringLiteral("%1: panel \"%2\", model \"%3\"").arg(what, is, expected));
}

void PanelSession::compare()
{
    for (auto it = m_edits.constBegin(); it != m_edits.constEnd(); ++it) {
        if (it.value()->text() != m_model.texts.value(it.key()))
            differ(it.key(), it.value()->text(), m_model.texts.value(it.key()));
    }
    for (auto it = m_model.checks.constBegin(); it != m_model.checks.constEnd(); ++it) {
        const bool is = m_buttons.value(it.key())->isChecked();
        if (is != it.value())
            differ(it.key(), QString::number(is), QString::number(it.value()));
    }
    const bool conditions = m_model.checks.value(QStringLiteral("DispCondsB"));
    if (m_panel->CConds->isVisible() != conditions)
        differ(QStringLiteral("CConds"), QString::number(!conditions), QString::number(conditions));
    compareMessages();
    compareDisplayFiles();
}

void PanelSession::compareMessages()
{
    QStringList lines = m_panel->Message->toPlainText().split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    if (lines == m_model.messages)
        return;
    const int count = qMax(lines.size(), m_model.messages.size());
    for (int i = 0; i < count; ++i) {
        if (lines.value(i) != m_model.messages.value(i))
            differ(QStringLiteral("message %1").arg(i + 1), lines.value(i),
                   m_model.messages.value(i));
    }
}

void PanelSession::compareDisplayFiles()
{
    const QComboBox* list = m_panel->SelectedFs;
    QStringList items;
    for (int i = 0; i < list->count(); ++i)
        items.append(list->itemText(i));
    const QString bar = QStringLiteral(" | ");
    if (items != m_model.displayFiles)
        differ(QStringLiteral("SelectedFs"), items.join(bar), m_model.displayFiles.join(bar));
    if (list->currentIndex() != m_model.currentDisplayFile)
        differ(QStringLiteral("SelectedFs' choice"), QString::number(list->currentIndex()),
               QString::number(m_model.currentDisplayFile));
}

/// As the model knows them, which has texts: the comments of 2D data go into a result byte by byte
/// (tst_MapReader::headersInOtherEncodings), also those that are no UTF-8.
QMap<QString, QByteArray> PanelSession::outputFiles() const
{
    QMap<QString, QByteArray> files;
    QDirIterator it(m_folder + QStringLiteral("/out"), QDir::Files | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            files[file.fileName()] = QString::fromUtf8(file.readAll()).toUtf8();
    }
    return files;
}

void PanelSession::compareOutput()
{
    for (auto it = m_model.output.constBegin(); it != m_model.output.constEnd(); ++it) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly | QIODevice::Text);
        QTextStream stream(&buffer);
        stream << it.value();
        stream.flush();
        m_expectedFiles[it.key()] = buffer.data();
        m_written += 1;
    }
    const QMap<QString, QByteArray> files = outputFiles();
    if (files == m_expectedFiles)
        return;
    for (const QString& path : (files.keys() + m_expectedFiles.keys())) {
        if (files.value(path) != m_expectedFiles.value(path))
            differ(path, QString::fromLocal8Bit(files.value(path)),
                   QString::fromLocal8Bit(m_expectedFiles.value(path)));
    }
    if (files.keys() != m_expectedFiles.keys())
        differ(QStringLiteral("files"), QStringList(files.keys()).join(QLatin1Char(' ')),
               QStringList(m_expectedFiles.keys()).join(QLatin1Char(' ')));
}
