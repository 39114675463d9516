#include "tests/model/PanelModel.h"

#include <QFileInfo>

#include <cmath>

// Construction, the fields, the files and the marker lines; the calculations are in
// PanelModelCalculation.cpp.
namespace literal
{

namespace
{

const char* const selectorNames[] = {"RefFile1", "RefFile2", "TargetFile", "BlankFile"};
const char* const mutNames[] = {"mut1", "mut2", "mutT", "mutBlank"};

QString sixDigits(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

QString PanelModel::inRow(int row, const char* field)
{
    return QStringLiteral("%1.%2").arg(row).arg(name(field));
}

QStringList PanelModel::rowFields()
{
    QStringList fields;
    for (const char* field :
         {"use", "tratio", "vpoint", "energy", "mut1", "mut2", "mutT", "mutBlank", "2d"})
        fields.append(name(field));
    return fields;
}

PanelModel::PanelModel()
{
    const char* const defaults[][2] = {
        {"Valence1", "2"},    {"Valence2", "3"},    {"EdgeE", "8350"},    {"PreEEndDE", "-50"},
        {"HgAFrom", "1.5"},   {"HgATo", "3.5"},     {"HgABoxes", "41"},   {"PostEStartDE", "100"},
        {"HgTFrom", "-0.2"},  {"HgTTo", "1.2"},     {"HgTBoxes", "41"},   {"CalcRes", ""},
        {"LCFRes", ""},       {"RefFile1", ""},     {"RefFile2", ""},     {"TargetFile", ""},
        {"BlankFile", ""},    {"DispFSelect", ""},  {"SaveFSelect", ""},  {"mapFileSelect", ""},
        {"1.energy", "8313"}, {"2.energy", "8381"}, {"3.energy", "8390"}, {"4.energy", "8404.5"},
        {"5.energy", "8460"}, {"6.energy", "8475"}, {"7.energy", ""},     {"8.energy", ""}};
    for (const auto& entry : defaults)
        texts[name(entry[0])] = name(entry[1]);
    for (int row = 1; row <= 8; ++row) {
        for (const char* field : mutNames)
            texts[inRow(row, field)] = QString();
        texts[inRow(row, "2d")] = QString();
        checks[inRow(row, "use")] = row <= 4;
        checks[inRow(row, "tratio")] = false;
        checks[inRow(row, "vpoint")] = row == 3;
    }
    for (const char* button :
         {"DispCondsB", "ShowFourPs", "HgAAuto", "HgTAuto", "TRSbyS", "TRMean", "TRLSquare",
          "TRLSquareNB", "TRVic2", "UseVicCB", "UseVicForTargetCB", "TheVicIs1", "TheVicIs2",
          "TypeTMKisExact", "TypeTMKisLS", "NNone", "NBySubPre", "NByEJ", "NBy2Vics"})
        checks[name(button)] = false;
    for (const char* button : {"TRVic2", "UseVicCB", "TheVicIs2", "TypeTMKisLS", "NBy2Vics"})
        checks[name(button)] = true;
    setEdge();
    changedUseVic();
    changedVictreenChoice(!checks[name("TheVicIs1")]);
    changedUseVicForTarget();
}

void PanelModel::finishEditing(const QString& field)
{
    if (field == name("EdgeE") || field == name("PreEEndDE") || field == name("PostEStartDE"))
        setEdge();
    if (field.endsWith(name(".energy")))
        newEnergy(field.left(1).toInt());
}

void PanelModel::setEdge()
{
    const double edge = number(name("EdgeE"));
    const double preEnd = edge + number(name("PreEEndDE"));
    const double postStart = edge + number(name("PostEStartDE"));
    const auto apply = [&](Spectrum& spectrum) {
        spectrum.preEdgeEnd = preEnd;
        spectrum.edge = edge;
        spectrum.postEdgeStart = postStart;
        spectrum.fitVictreens();
    };
    for (Selector& selector : selectors)
        apply(selector.spectrum);
    for (Spectrum& spectrum : displayData)
        apply(spectrum);
}

void PanelModel::appendMessage(const QString& text)
{
    messages.append(text.simplified());
}

void PanelModel::lookUp(int row, int selector)
{
    double mut = 0.0;
    const QString field = inRow(row, mutNames[selector]);
    // A row without an energy has no mu-t.
    const bool hasEnergy = !texts[inRow(row, "energy")].trimmed().isEmpty();
    if (hasEnergy && selectors[selector].muTAt(rowNumber(row, "energy"), mut))
        texts[field] = sixDigits(mut);
    else
        texts[field].clear();
}

void PanelModel::refreshColumn(int selector)
{
    for (int row = 1; row <= 8; ++row)
        lookUp(row, selector);
}

void PanelModel::newEnergy(int row)
{
    for (int selector = 0; selector < 4; ++selector)
        lookUp(row, selector);
}

void PanelModel::chooseRadio(const QString& button, const QStringList& group)
{
    for (const QString& other : group)
        checks[other] = other == button;
}

void PanelModel::push(const QString& button)
{
    if (button == name("CalcTargetB")) {
        calcTarget();
    } else if (button == name("CalcMapB")) {
        calcMap();
    } else if (button == name("LCFB")) {
        lcf();
    } else if (button == name("WriteB")) {
        calcMap();
        write();
    } else if (button == name("RemoveAFile")) {
        removeDisplayFile();
    }
}

bool PanelModel::chooseOption(const QString& button)
{
    const QStringList ratios{name("TRSbyS"), name("TRMean"), name("TRLSquare"), name("TRLSquareNB"),
                             name("TRVic2")};
    const QStringList lines{name("TheVicIs1"), name("TheVicIs2")};
    const QStringList kinds{name("TypeTMKisExact"), name("TypeTMKisLS")};
    const QStringList norms{name("NNone"), name("NBySubPre"), name("NByEJ"), name("NBy2Vics")};
    const bool lineBefore = checks[name("TheVicIs1")];
    for (const QStringList& group : {ratios, lines, kinds, norms}) {
        if (!group.contains(button))
            continue;
        chooseRadio(button, group);
        if (group == ratios)
            calcBoth();
        if (group == lines)
            changedVictreenChoice(lineBefore);
        return true;
    }
    return false;
}

void PanelModel::click(const QString& button)
{
    if (!checks.contains(button)) {
        push(button);
        return;
    }
    if (chooseOption(button))
        return;
    if (button.endsWith(name(".vpoint"))) {
        for (int row = 1; row <= 8; ++row)
            checks[inRow(row, "vpoint")] = inRow(row, "vpoint") == button;
        calcBoth();
        return;
    }
    checks[button] = !checks[button];
    if (button == name("UseVicCB"))
        changedUseVic();
    else if (button == name("UseVicForTargetCB"))
        changedUseVicForTarget();
    else if (button.endsWith(name(".use")) || button.endsWith(name(".tratio")))
        calcBoth();
}

void PanelModel::changedUseVic()
{
    rowsUseVic = checks[name("UseVicCB")];
    selectors[0].useVic = rowsUseVic;
    selectors[1].useVic = rowsUseVic;
    refreshColumn(0);
    refreshColumn(1);
    calcBoth();
}

void PanelModel::changedUseVicForTarget()
{
    rowsUseVicForTarget = checks[name("UseVicForTargetCB")];
    selectors[2].useVic = rowsUseVicForTarget;
    refreshColumn(2);
    calcBoth();
}

void PanelModel::changedVictreenChoice(bool before)
{
    const bool first = checks[name("TheVicIs1")];
    if (first == before)
        return;
    for (int selector = 0; selector < 4; ++selector) {
        selectors[selector].vicIsPre = first;
        refreshColumn(selector);
    }
    calcBoth();
}

void PanelModel::removeDisplayFile()
{
    if (displayData.isEmpty() || currentDisplayFile < 0 || currentDisplayFile >= displayData.size())
        return;
    displayData.remove(currentDisplayFile);
    displayFiles.removeAt(currentDisplayFile);
    // The toolkit's list then shows the next item, or the new last one.
    currentDisplayFile = qMin(currentDisplayFile, displayFiles.size() - 1);
}

void PanelModel::giveFile(const QString& selector, const QString& path)
{
    QString shown = path;
    if (selector == name("SaveFSelect") && QFileInfo(path).suffix() != name("dat"))
        shown += name(".dat");
    texts[selector] = shown;
    for (int i = 0; i < 4; ++i) {
        if (selector == name(selectorNames[i])) {
            selectors[i].spectrum.read(shown);
            refreshColumn(i);
            calcBoth();
        }
    }
    if (selector.endsWith(name(".2d")))
        loadImage(selector.left(1).toInt(), shown);
}

void PanelModel::giveFiles(const QString& selector, const QStringList& paths)
{
    QString shown;
    for (const QString& path : paths)
        shown += path.section(QLatin1Char('/'), -1) + QLatin1Char(' ');
    texts[selector] = shown;
    if (selector == name("DispFSelect"))
        giveDisplayFiles(paths);
    if (selector == name("mapFileSelect")) {
        for (int k = 0; k < paths.size() && k < 8; ++k)
            giveFile(inRow(k + 1, "2d"), paths[k]);
    }
}

void PanelModel::clearFile(const QString& selector)
{
    texts[selector].clear();
    for (int i = 0; i < 4; ++i) {
        if (selector == name(selectorNames[i])) {
            refreshColumn(i);
            calcBoth();
        }
    }
    if (selector.endsWith(name(".2d")))
        images[selector.left(1).toInt()].valid = false;
}

void PanelModel::giveDisplayFiles(const QStringList& paths)
{
    for (const QString& path : paths) {
        Spectrum spectrum;
        if (!spectrum.read(path))
            continue;
        displayFiles.append(path);
        displayData.append(spectrum);
        if (displayFiles.size() == 1)
            currentDisplayFile = 0;
        setEdge();
    }
}

void PanelModel::loadImage(int row, const QString& path)
{
    images[row].load(path);
    for (const QString& energy : images[row].energies) {
        texts[inRow(row, "energy")] = energy;
        newEnergy(row);
    }
}

bool PanelModel::drag(bool allSpectra, const XAxis& axis, const QVector<int>& pixels)
{
    QStringList lines{name("EdgeE"), name("PreEEndDE"), name("PostEStartDE")};
    for (int row = 1; allSpectra && row <= 8; ++row)
        lines.append(inRow(row, "energy"));
    const auto base = [&](int i) { return i == 1 || i == 2 ? number(lines[0]) : 0.0; };
    double best = 1e300;
    int index = -1;
    for (int i = 0; i < lines.size(); ++i) {
        const double value = number(lines[i]) + base(i);
        const double screen =
            axis.p0 + (axis.p1 - axis.p0) / (axis.r1 - axis.r0) * (value - axis.r0);
        const double distance = std::fabs(screen - pixels.first());
        if (distance < best) {
            best = distance;
            index = i;
        }
    }
    if (!(best < 10.0))
        return false;
    const auto follow = [&](int pixel) {
        const double value =
            axis.r0 + (axis.r1 - axis.r0) / (axis.p1 - axis.p0) * (pixel - axis.p0);
        texts[lines[index]] = sixDigits(value - base(index));
        setEdge();
    };
    for (const int pixel : pixels.mid(1))
        follow(pixel);
    follow(pixels.last());
    setEdge();
    calcBoth();
    return true;
}

} // namespace literal
