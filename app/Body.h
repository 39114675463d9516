#pragma once

#include "ui_Body.h"

#include <QMainWindow>

#include <memory>

class BusyBar;
class FourPs;
class StatusWords;

/// The main window; its only content is the analysis panel. Long work of the panel shows in the
/// status bar.
class Body : public QMainWindow, private Ui_Body
{
    Q_OBJECT

public:
    explicit Body(QWidget* parent = nullptr);
    ~Body() override;

    FourPs* panel() const { return m_panel; }

    /// Opens the job that drovik-batch has handed over, if it has; nothing that this program starts
    /// gets it, too.
    void openGivenJob();

public slots:
    /// An operation was broken off: nothing of it shows in the status bar any more, and the panel
    /// tells why.
    void tellFailure(const QString& line);

protected:
    /// Opens no larger than the screen.
    void showEvent(QShowEvent* event) override;

    /// The graph window opens beside this one.
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// The graphs and the file dialogs go too: without the panel there is nothing to do with them,
    /// and the program ends with its last window.
    void closeEvent(QCloseEvent* event) override;

private:
    FourPs* m_panel;
    bool m_graphsPlaced = false; ///< from then on they stay where the user puts them
    std::unique_ptr<BusyBar> m_busy;
    std::unique_ptr<StatusWords> m_words;
};
