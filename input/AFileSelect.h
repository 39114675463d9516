#pragma once

#include "ui_AFileSelect.h"

#include <QFrame>
#include <QStringList>

#include <memory>

class QFileDialog;

/// A line that names a file, with a button for the file dialog, a button that clears the choice,
/// and a target for files dropped from the desktop.
class AFileSelect : public QFrame, public Ui_AFileSelect
{
    Q_OBJECT
    Q_PROPERTY(QString label READ label WRITE setLabel)

public:
    enum Mode {
        Open = 0, ///< one existing file, or several in multi mode
        Save = 1, ///< any name; a default extension is added
    };

    explicit AFileSelect(QWidget* parent = nullptr, int mode = Open);
    ~AFileSelect() override;

    QString label() const { return Label->text(); }
    void setLabel(const QString& text) { Label->setText(text); }

    /// Names the line and the buttons for screen readers.
    void nameParts(const QString& name);

    /// Open or Save; any other value changes nothing but the stored mode.
    void setMode(int mode);
    int mode() const { return m_mode; }

    /// In open mode, accept several files. Takes effect when the mode is set again.
    void setMulti(bool multi) { m_multi = multi; }

    /// Folder in which the dialog starts.
    void setDir(const QString& dir);
    QString dir() const { return m_dir; }

    /// Name of the last chosen file, without its folder.
    QString fileName() const { return m_fileName; }

    /// Shows the path and announces its folder and itself. In save mode the default extension is
    /// added unless the path has it.
    void setFile(const QString& path);

    /// The dialog behind "Sel."; made when first asked for, since it is slow to build and a
    /// window has many selectors.
    QFileDialog* dialog();

    /// Closes the dialog, nothing chosen, where it is open.
    void closeDialog();

signals:
    void newDir(const QString& dir);
    void newFilePath(const QString& path);
    void newFilePaths(const QStringList& paths);

public slots:
    void newFile(const QString& path) { setFile(path); }
    /// The dialog's highlighted file. Only the final choice counts, so nothing happens.
    void selectingFile(const QString& path);
    void newFiles(const QStringList& paths);
    void clearFileName();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// What the dialog lets choose; settled when a mode is set, whether the dialog is there or not.
    enum class Accepts { ExistingFile, ExistingFiles, AnyName };

    void applyModeToDialog();
    void showDialog();

    int m_mode = Open;
    bool m_multi = false;
    Accepts m_accepts = Accepts::ExistingFile;
    QString m_dir;
    QString m_fileName;
    QString m_defaultSuffix = QStringLiteral("dat");
    std::unique_ptr<QFileDialog> m_dialog;
};
