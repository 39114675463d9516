#include "batch/UnseenErrors.h"

#include "text/Csv.h"
#include "text/NumberText.h"

#include <QByteArrayList>

#include <array>

namespace
{

using Field = UnseenErrors::Number UnseenErrors::*;

/// A field with the line that tells it.
struct Told {
    Field field;
    const char* before;
    bool isChange; ///< with its sign
    const char* after = "";
};

constexpr std::array<Told, 17> all{
    {{&UnseenErrors::targetShift, QT_TRANSLATE_NOOP("Output", "target 0.1 eV higher: valence "),
      true},
     {&UnseenErrors::ref1Shift, QT_TRANSLATE_NOOP("Output", "Ref 1 0.1 eV higher: valence "), true},
     {&UnseenErrors::ref2Shift, QT_TRANSLATE_NOOP("Output", "Ref 2 0.1 eV higher: valence "), true},
     {&UnseenErrors::leakage,
      QT_TRANSLATE_NOOP("Output", "1 % of the light past the target: valence "), true,
      QT_TRANSLATE_NOOP("Output", ", if mu-t is absolute")},
     {&UnseenErrors::thickness, QT_TRANSLATE_NOOP("Output", "uneven thickness: valence "), true,
      QT_TRANSLATE_NOOP("Output", ", if mu-t is absolute")},
     {&UnseenErrors::threePoint, QT_TRANSLATE_NOOP("Output", "three points: valence "), true},
     {&UnseenErrors::fourPoint, QT_TRANSLATE_NOOP("Output", "four points: valence "), true},
     {&UnseenErrors::fit, QT_TRANSLATE_NOOP("Output", "linear combination fit: valence "), true},
     {&UnseenErrors::closure, QT_TRANSLATE_NOOP("Output", "closure: valence off by "), true},
     {&UnseenErrors::sigmasOutside, QT_TRANSLATE_NOOP("Output", "a outside 0 to 1 by "), false,
      QT_TRANSLATE_NOOP("Output", " standard deviations")},
     {&UnseenErrors::fitWeights, QT_TRANSLATE_NOOP("Output", "weights of the fit: sum "), false},
     {&UnseenErrors::fitChiSquare, QT_TRANSLATE_NOOP("Output", "fit: reduced chi-square "), false},
     {&UnseenErrors::fitBias,
      QT_TRANSLATE_NOOP("Output", "noise of the references: valence of the fit "), true},
     {&UnseenErrors::fitBiasInSigma,
      QT_TRANSLATE_NOOP("Output", "noise of the references: moves the fit by "), false,
      QT_TRANSLATE_NOOP("Output", " of its standard deviations")},
     {&UnseenErrors::largestMut, QT_TRANSLATE_NOOP("Output", "largest mu-t "), false},
     {&UnseenErrors::edgeJump, QT_TRANSLATE_NOOP("Output", "edge jump "), false},
     {&UnseenErrors::gain,
      QT_TRANSLATE_NOOP("Output", "these readings are not photons: their scatter has "), false,
      QT_TRANSLATE_NOOP("Output", " times the variance")}}};

QString shown(double value, bool isChange)
{
    constexpr int digits = 3;
    const QString text = QString::number(value, 'g', digits);
    return isChange && value > 0.0 ? QLatin1Char('+') + text : text;
}

} // namespace

QStringList unseenLines(const UnseenErrors& errors, const OutputWords& words)
{
    QStringList lines;
    for (const Told& told : all)
        if (const auto& value = errors.*told.field)
            lines += words(told.before) + shown(*value, told.isChange) +
                     (*told.after == '\0' ? QString() : words(told.after));
    return lines;
}

QByteArray unseenText(const UnseenErrors& errors)
{
    QByteArrayList fields;
    for (const Told& told : all)
        fields += csv::number(errors.*told.field);
    return fields.join(',');
}

UnseenErrors unseenFromText(const QByteArray& text)
{
    const QList<QByteArray> fields = text.split(',');
    UnseenErrors errors;
    if (static_cast<std::size_t>(fields.size()) != all.size())
        return errors;
    for (std::size_t i = 0; i < all.size(); ++i)
        if (const QByteArray& field = fields[static_cast<int>(i)]; !field.isEmpty())
            errors.*all[i].field = numberFromText(QString::fromLatin1(field));
    return errors;
}
