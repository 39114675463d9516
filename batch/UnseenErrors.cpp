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

constexpr std::array<Told, 16> all{
    {{&UnseenErrors::targetShift, "target 0.1 eV higher: valence ", true},
     {&UnseenErrors::ref1Shift, "Ref 1 0.1 eV higher: valence ", true},
     {&UnseenErrors::ref2Shift, "Ref 2 0.1 eV higher: valence ", true},
     {&UnseenErrors::leakage, "1 % of the light past the target: valence ", true,
      ", if mu-t is absolute"},
     {&UnseenErrors::thickness, "uneven thickness: valence ", true, ", if mu-t is absolute"},
     {&UnseenErrors::threePoint, "three points: valence ", true},
     {&UnseenErrors::fourPoint, "four points: valence ", true},
     {&UnseenErrors::fit, "linear combination fit: valence ", true},
     {&UnseenErrors::closure, "closure: valence off by ", true},
     {&UnseenErrors::sigmasOutside, "a outside 0 to 1 by ", false, " standard deviations"},
     {&UnseenErrors::fitWeights, "weights of the fit: sum ", false},
     {&UnseenErrors::fitChiSquare, "fit: reduced chi-square ", false},
     {&UnseenErrors::fitBias, "noise of the references: valence of the fit ", true},
     {&UnseenErrors::fitBiasInSigma, "noise of the references: moves the fit by ", false,
      " of its standard deviations"},
     {&UnseenErrors::largestMut, "largest mu-t ", false},
     {&UnseenErrors::edgeJump, "edge jump ", false}}};

QString shown(double value, bool isChange)
{
    constexpr int digits = 3;
    const QString text = QString::number(value, 'g', digits);
    return isChange && value > 0.0 ? QLatin1Char('+') + text : text;
}

} // namespace

QStringList unseenLines(const UnseenErrors& errors)
{
    QStringList lines;
    for (const Told& told : all)
        if (const auto& value = errors.*told.field)
            lines += QLatin1String(told.before) + shown(*value, told.isChange) +
                     QLatin1String(told.after);
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
