#pragma once

#include <QScrollArea>

/// Scroll area that asks for room for the whole of its widget, as small as that can be, unless the
/// screen is smaller: then for as much as the screen has, and the rest is scrolled into view.
class ScreenScroll : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScreenScroll(QWidget* parent = nullptr);

    QSize sizeHint() const override;        ///< whatever the screen is
    QSize minimumSizeHint() const override; ///< no larger than the screen

protected:
    /// The widget's demands are this area's demands: both change together.
    bool eventFilter(QObject* watched, QEvent* event) override;
};
