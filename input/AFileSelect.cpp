#include "input/AFileSelect.h"

#include "input/LightField.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace
{

const QString openStyle = QStringLiteral("background-color: rgb(255, 255, 220);");
const QString saveStyle = QStringLiteral("background-color: rgb(255, 255, 255);");

/// A name like "map_12.dat" is to be seen whole.
constexpr int shortNameLength = 12;
constexpr int lineEditMargin = 5;

/// Folder of a file without links and detours. A folder that does not exist (yet) is only made
/// absolute.
QString folderOf(const QString& path)
{
    const QDir folder = QFileInfo(path).absoluteDir();
    const QString canonical = folder.canonicalPath();
    return canonical.isEmpty() ? folder.absolutePath() : canonical;
}

const QString fileScheme = QStringLiteral("file://");

/// Text of a URL, that of a file fully decoded so that names with blanks, '%' or '#' survive. What
/// a careless desktop lets pass for a query or a fragment is the rest of a file's name.
QString textOf(const QUrl& url)
{
    QString plain = url.toString();
    if (!plain.startsWith(fileScheme)) // as that of "file:name", which names no place
        return plain;
    QString text = fileScheme + url.host() + url.path(QUrl::FullyDecoded);
    if (url.hasQuery())
        text += QLatin1Char('?') + url.query(QUrl::FullyDecoded);
    if (url.hasFragment())
        text += QLatin1Char('#') + url.fragment(QUrl::FullyDecoded);
    return text;
}

} // namespace

AFileSelect::AFileSelect(QWidget* parent, int mode) : QFrame(parent)
{
    setupUi(this);
    setBlackText(*FileName);
    setAcceptDrops(true);
    FileName->setAcceptDrops(false); // the whole selector is the target, its line is no text field
    for (QPushButton* button : {SelectB, ClearB}) // as narrow as their texts: a window has many
        button->setFixedWidth(button->fontMetrics().horizontalAdvance(button->text()) +
                              2 * button->fontMetrics().averageCharWidth() + 8);
    const QFontMetrics metrics = FileName->fontMetrics();
    FileName->setMinimumWidth(shortNameLength * metrics.averageCharWidth() + 2 * lineEditMargin);
    setMode(mode);
    connect(SelectB, &QPushButton::clicked, this, &AFileSelect::showDialog);
    connect(ClearB, &QPushButton::clicked, this, &AFileSelect::clearFileName);
}

AFileSelect::~AFileSelect() = default;

QFileDialog* AFileSelect::dialog()
{
    if (m_dialog)
        return m_dialog.get();
    m_dialog = std::make_unique<QFileDialog>();
    m_dialog->setNameFilters({QStringLiteral("Data Files (*.dat)"), QStringLiteral("All (* *.*)")});
    if (!m_dir.isEmpty())
        m_dialog->setDirectory(m_dir);
    applyModeToDialog();
    connect(m_dialog.get(), &QFileDialog::fileSelected, this, &AFileSelect::newFile);
    connect(m_dialog.get(), &QFileDialog::currentChanged, this, &AFileSelect::selectingFile);
    connect(m_dialog.get(), &QFileDialog::filesSelected, this, &AFileSelect::newFiles);
    return m_dialog.get();
}

void AFileSelect::nameParts(const QString& name)
{
    const QString button = QStringLiteral("%1, %2");
    FileName->setAccessibleName(name);
    SelectB->setAccessibleName(button.arg(name, SelectB->text()));
    ClearB->setAccessibleName(button.arg(name, ClearB->text()));
}

void AFileSelect::showDialog()
{
    dialog()->show();
}

void AFileSelect::closeDialog()
{
    if (m_dialog)
        m_dialog->close();
}

void AFileSelect::setMode(int mode)
{
    m_mode = mode;
    if (mode != Open && mode != Save)
        return;
    FileName->setReadOnly(mode == Open);
    FileName->setStyleSheet(mode == Open ? openStyle : saveStyle);
    m_accepts = mode == Save ? Accepts::AnyName
                : m_multi    ? Accepts::ExistingFiles
                             : Accepts::ExistingFile;
    if (m_dialog)
        applyModeToDialog();
}

void AFileSelect::applyModeToDialog()
{
    if (m_accepts == Accepts::AnyName) {
        m_dialog->setAcceptMode(QFileDialog::AcceptSave);
        m_dialog->setFileMode(QFileDialog::AnyFile);
        // Overwriting needs no question anywhere in the program.
        m_dialog->setOption(QFileDialog::DontConfirmOverwrite);
        return;
    }
    m_dialog->setAcceptMode(QFileDialog::AcceptOpen);
    m_dialog->setFileMode(m_accepts == Accepts::ExistingFiles ? QFileDialog::ExistingFiles
                                                              : QFileDialog::ExistingFile);
}

void AFileSelect::setDir(const QString& dir)
{
    if (dir == m_dir)
        return;
    m_dir = dir;
    if (m_dialog)
        m_dialog->setDirectory(m_dir);
}

void AFileSelect::setFile(const QString& path)
{
    QString file = path;
    if (m_mode == Save && !m_defaultSuffix.isEmpty() && QFileInfo(file).suffix() != m_defaultSuffix)
        file += QLatin1Char('.') + m_defaultSuffix;
    FileName->setText(file);
    m_fileName = QFileInfo(file).fileName();
    setDir(folderOf(file));
    emit newDir(m_dir);
    emit newFilePath(file);
}

void AFileSelect::selectingFile(const QString& path)
{
    Q_UNUSED(path)
}

void AFileSelect::newFiles(const QStringList& paths)
{
    if (paths.isEmpty())
        return;
    QString names;
    for (const QString& path : paths)
        names += QFileInfo(path).fileName() + QLatin1Char(' ');
    FileName->setText(names);
    setDir(folderOf(paths.first()));
    emit newDir(m_dir);
    emit newFilePaths(paths);
}

void AFileSelect::clearFileName()
{
    FileName->clear();
    emit newFilePath(QString());
}

void AFileSelect::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void AFileSelect::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty())
        return;
    const QString text = textOf(urls.first());
    if (!text.startsWith(fileScheme))
        return;
    event->acceptProposedAction();
    const QString path = text.mid(fileScheme.size()).simplified();
    setFile(path.startsWith(QLatin1Char('/')) ? path : QStringLiteral("//") + path);
}
