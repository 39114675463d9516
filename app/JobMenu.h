#pragma once

#include <QMenu>

class FourPs;
class QMimeData;

/// The context menu of the panel's free space: what the panel shows as a job file, and a job file
/// in the panel, and the guide. A job file that is dropped there is opened, too. Belongs to the
/// panel.
class JobMenu : public QMenu
{
    Q_OBJECT

public:
    explicit JobMenu(FourPs& panel);

    /// Writes what the panel shows as a job; what a job cannot hold is told in one line.
    void save(const QString& path);
    /// Fills the panel from a job; what it cannot show is told in one line. A job that cannot be
    /// read, or one of whose files cannot, is refused in one line and changes nothing.
    void open(const QString& path);

protected:
    /// Of the panel: what is dropped.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addEntry(const char* name, const QString& text, const char* keys,
                  void (JobMenu::*entry)());
    void askToSave();
    void askToOpen();
    void showGuide();
    bool isFree(const QPoint& place) const;

    FourPs& m_panel;
};
