#pragma once

#include <QObject>
#include <memory>

class QLineEdit;

/// A vertical or horizontal line on a graph whose position is the number typed in a line edit.
class MarkLine : public QObject
{
    Q_OBJECT

public:
    /// @param lineEdit  the field that holds the position; without one the line makes its own
    /// @param lineKind  0 for a vertical line at an x value, else a horizontal one at a y value
    MarkLine(QLineEdit* lineEdit, int lineKind, QObject* parent);
    ~MarkLine() override;

    int reserved = 0;
    QLineEdit* edit; ///< not owned when given
    int kind;
    bool relative = false; ///< the number is an offset from another line of the same set
    int refIndex = -1;     ///< that line's place in the set

    bool isXLine() const { return kind == 0; }
    /// The number in the field, 0 for text that is not a number.
    double number() const;

private:
    std::unique_ptr<QLineEdit> m_ownEdit;
};
