#pragma once

#include <QObject>

class FourPs;
class QAction;
class QMenu;
class QWidget;

/// The context menus of the result fields and of the message pane: the toolkit's entries, and one
/// that copies all results. Belongs to the panel.
class ResultsMenu : public QObject
{
    Q_OBJECT

public:
    explicit ResultsMenu(FourPs& panel);

private:
    /// @param standard  makes the toolkit's menu of the widget
    template <class Standard>
    void extend(QWidget* widget, const Standard& standard);
    void copyResults() const;

    FourPs& m_panel;
    QAction* m_copy; ///< owned by the panel
};
