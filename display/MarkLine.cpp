#include "display/MarkLine.h"

#include "text/NumberText.h"

#include <QLineEdit>

MarkLine::MarkLine(QLineEdit* lineEdit, int lineKind, QObject* parent)
    : QObject(parent), edit(lineEdit), kind(lineKind)
{
    if (edit)
        return;
    m_ownEdit = std::make_unique<QLineEdit>();
    edit = m_ownEdit.get();
}

MarkLine::~MarkLine() = default;

double MarkLine::number() const
{
    return numberFromText(edit->text());
}
