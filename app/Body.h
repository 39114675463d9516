#pragma once

#include "ui_Body.h"

#include <QMainWindow>

#include <memory>

class BusyBar;
class FourPs;

/// The main window; its only content is the analysis panel. Long work of the panel shows in the
/// status bar.
class Body : public QMainWindow, private Ui_Body
{
    Q_OBJECT

public:
    explicit Body(QWidget* parent = nullptr);
    ~Body() override;

    FourPs* panel() const { return m_panel; }

public slots:
    /// An operation was broken off: nothing of it shows in the status bar any more, and the panel
    /// tells why.
    void tellFailure(const QString& line);

protected:
    /// Opens no larger than the screen.
    void showEvent(QShowEvent* event) override;

    /// The graphs and the file dialogs go too: without the panel there is nothing to do with them,
    /// and the program ends with its last window.
    void closeEvent(QCloseEvent* event) override;

private:
    FourPs* m_panel;
    std::unique_ptr<BusyBar> m_busy;
};
