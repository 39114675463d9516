#include "results/Histgram.h"

#include "text/NumberText.h"

#include <QAbstractButton>
#include <QLineEdit>

Histgram::Histgram(QLineEdit* fromField, QLineEdit* toField, QLineEdit* boxesField,
                   QAbstractButton* automatic)
    : fromEdit(fromField), toEdit(toField), boxesEdit(boxesField), autoButton(automatic)
{
}

HistogramSettings Histgram::settings() const
{
    return {numberFromText(fromEdit->text()), numberFromText(toEdit->text()),
            numberFromText(boxesEdit->text()), autoButton->isChecked()};
}
