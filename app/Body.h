#pragma once

#include "ui_Body.h"

#include <QMainWindow>

class FourPs;

/// The main window; its only content is the analysis panel.
class Body : public QMainWindow, private Ui_Body
{
    Q_OBJECT

public:
    explicit Body(QWidget* parent = nullptr);

    FourPs* panel() const { return m_panel; }

private:
    FourPs* m_panel;
};
