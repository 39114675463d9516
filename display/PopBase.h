#pragma once

#include "ui_PopBase.h"

#include <QFrame>

/// The floating window of a graph that was popped out of its panel.
class PopBase : public QFrame, public Ui_PopBase
{
    Q_OBJECT

public:
    explicit PopBase(QWidget* parent = nullptr);

public slots:
    /// Repaints what the graph inside leaves free. The graph has just painted itself when this is
    /// asked for; painting it again from here would go on without end.
    void update();

signals:
    void closed(); ///< the user closed the window

protected:
    void closeEvent(QCloseEvent* event) override;
};
