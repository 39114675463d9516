// What comes out of a graph: its picture on other devices and its numbers, each opened by another
// program or reader, and the range as it was.

#include "app/Body.h"
#include "app/FileQuestion.h"
#include "app/GraphMenu.h"
#include "tests/support/Exact.h"
#include "tests/support/Files.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/PanelActions.h"
#include "tests/support/PlainCsv.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

namespace
{

using Id = Displays::DispId;

void addGraphs()
{
    QTest::addColumn<int>("position");
    const char* names[] = {"Ref1",          "Ref2",          "Target", "Muts", "LCF vs 4PS",
                           "Histgram of a", "Histgram of t", "t/a",    "M2/M3"};
    for (int position = 0; position < 9; ++position)
        QTest::newRow(names[position]) << position;
}

/// Chooses an entry of a graph's menu.
void choose(const DispArea* canvas, const char* entry)
{
    canvas->findChild<QAction*>(QString::fromLatin1(entry))->trigger();
}

/// Answers the dialog that an entry opens.
void saveAs(LoadedPanel& loaded, int position, const char* entry, const QString& path)
{
    choose(loaded.area(position), entry);
    QFileDialog* dialog = loaded.panel().fileQuestion().dialog();
    QVERIFY(dialog->isVisible());
    emit dialog->fileSelected(path);
    dialog->close();
}

/// A picture as another program shows it, in as many pixels as the canvas has times four. That
/// program reads pixels as a part of a drawing.
QImage shown(const QString& path, const QSize& canvas)
{
    const QSize size = 4 * canvas;
    const QString width = QString::number(size.width());
    const QString height = QString::number(size.height());
    const QString picture = path + QStringLiteral("_shown");
    if (path.endsWith(QLatin1String(".pdf"))) {
        QProcess::execute(QStringLiteral("pdftoppm"),
                          {QStringLiteral("-png"), QStringLiteral("-singlefile"),
                           QStringLiteral("-scale-to-x"), width, QStringLiteral("-scale-to-y"),
                           height, path, picture});
    } else {
        QString drawing = path;
        if (path.endsWith(QLatin1String(".png"))) {
            drawing += QStringLiteral(".svg");
            create(drawing, QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' width='%1' "
                                           "height='%2'><image width='%1' height='%2' "
                                           "href='picture.png'/></svg>")
                                .arg(width, height)
                                .toUtf8());
        }
        QProcess::execute(QStringLiteral("rsvg-convert"),
                          {QStringLiteral("-w"), width, QStringLiteral("-h"), height,
                           QStringLiteral("-b"), QStringLiteral("white"), QStringLiteral("-o"),
                           picture + QStringLiteral(".png"), drawing});
    }
    return QImage(picture + QStringLiteral(".png")).convertToFormat(QImage::Format_RGB32);
}

bool isLike(QRgb a, QRgb b)
{
    constexpr int much = 96;
    return qAbs(qRed(a) - qRed(b)) < much && qAbs(qGreen(a) - qGreen(b)) < much &&
           qAbs(qBlue(a) - qBlue(b)) < much;
}

/// Whether a picture has a colour like that of a pixel at its place or around it, as far as a line
/// may stand elsewhere on another device.
bool isAround(const QImage& picture, const QPoint& place, QRgb color)
{
    const QRect around = QRect(place - QPoint(6, 6), QSize(13, 13)) & picture.rect();
    for (int y = around.top(); y <= around.bottom(); ++y) {
        for (int x = around.left(); x <= around.right(); ++x) {
            if (isLike(picture.pixel(x, y), color))
                return true;
        }
    }
    return false;
}

/// Of the pixels of a picture that are not white, in every eighth row and column, the part whose
/// colour another one has not.
double missing(const QImage& picture, const QImage& other)
{
    int absent = 0;
    int all = 0;
    for (int y = 0; y < picture.height(); y += 8) {
        for (int x = 0; x < picture.width(); x += 8) {
            const QRgb color = picture.pixel(x, y);
            if (isLike(color, qRgb(255, 255, 255)))
                continue;
            ++all;
            absent += !isAround(other, {x, y}, color);
        }
    }
    return static_cast<double>(absent) / all;
}

} // namespace

class tst_Exports : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    QVector<QStringList> csv(LoadedPanel& loaded, int position)
    {
        const QString file = path("data.csv");
        QFile::remove(file);
        saveAs(loaded, position, "SaveData", file);
        return plainCsv::read(contents(file));
    }

private slots:
    void picturesAreThoseOfTheCanvas_data() { addGraphs(); }
    void picturesAreThoseOfTheCanvas()
    {
        QFETCH(int, position);
        LoadedPanel loaded;
        const QImage pixels = loaded.picture(position);
        const QImage canvas = pixels.scaled(4 * pixels.size());
        for (const char* suffix : {"png", "svg", "pdf"}) {
            const QString file = path("picture.") + QString::fromLatin1(suffix);
            QSignalSpy written(&loaded.panel(), &FourPs::written);
            saveAs(loaded, position, "SavePicture", file);
            QCOMPARE(written, QList<QVariantList>{{file}});
            const QImage picture = shown(file, pixels.size());
            QCOMPARE(picture.size(), canvas.size());
            // Letters and the ends of lines are not the same everywhere.
            QVERIFY2(missing(picture, canvas) < 0.08, suffix);
            QVERIFY2(missing(canvas, picture) < 0.08, suffix);
        }
    }

    void pictureIsCopied()
    {
        LoadedPanel loaded;
        choose(loaded.area(Id::DispHistA), "CopyPicture");
        const QImage copy = QApplication::clipboard()->image();
        const QImage pixels = loaded.picture(Id::DispHistA);
        QCOMPARE(copy.size(), 4 * pixels.size());
        QVERIFY(missing(copy, pixels.scaled(copy.size())) < 0.08);
    }

    void previewAsNumbers()
    {
        LoadedPanel loaded(false);
        const auto lines = csv(loaded, Id::DispTarget);
        const AXafsData& data = *loaded.panel().TargetFile->data();
        const QString name = QStringLiteral("Target | target.dat | ");
        const QVector<double> energies =
            plainCsv::numbers(lines, name + QStringLiteral("Eng.[eV]"));
        const QVector<double> muts = plainCsv::numbers(lines, name + QStringLiteral("mut"));
        const QVector<double> pre =
            plainCsv::numbers(lines, name + QStringLiteral("pre-edge line"));
        const QVector<double> post =
            plainCsv::numbers(lines, name + QStringLiteral("post-edge line"));
        QCOMPARE(energies.size(), static_cast<int>(data.points.size()));
        for (int i = 0; i < energies.size(); ++i) {
            const SpectrumPoint& point = data.points[static_cast<std::size_t>(i)];
            COMPARE_EXACT(energies[i], point.energy);
            COMPARE_EXACT(muts[i], point.mut);
            COMPARE_EXACT(pre[i], data.preVic.at(point.energy));
            COMPARE_EXACT(post[i], data.postVic.at(point.energy));
        }
        QCOMPARE(plainCsv::column(lines, QStringLiteral("Quantity")),
                 QStringList({QStringLiteral("Edge[eV]"), QStringLiteral("Pre Edge End [eV]"),
                              QStringLiteral("Post Edge Start [eV]"),
                              QStringLiteral("Edge Jump(1)"), QStringLiteral("Edge Jump(2)")}));
        const QVector<double> values = plainCsv::numbers(lines, QStringLiteral("Value"));
        COMPARE_EXACT(values[0], 8350.0);
        COMPARE_EXACT(values[1], 8300.0);
        COMPARE_EXACT(values[2], 8450.0);
        COMPARE_EXACT(values[3], data.postVicNoC.at(8350.0) - data.preVicNoC.at(8350.0));
        COMPARE_EXACT(values[4], data.postVic.at(8350.0) - data.preVic.at(8350.0));
    }

    void spectraAsNumbers()
    {
        LoadedPanel loaded(false);
        loaded.panel().lcf();
        const auto lines = csv(loaded, Id::DispMuts);
        QStringList titles;
        for (const char* name : {"Ref 1 | ref1.dat", "Ref 2 | ref2.dat", "Target | target.dat",
                                 "Disp. Only | ref1.dat", "Disp. Only | target.dat", "LCF"}) {
            titles << QString::fromLatin1(name) + QStringLiteral(" | Eng.[eV]")
                   << QString::fromLatin1(name) + QStringLiteral(" | mut");
        }
        titles << QStringLiteral("Mark") << QStringLiteral("Eng.[eV]") << QStringLiteral("Use")
               << QStringLiteral("T.Ratio.");
        QCOMPARE(lines.first(), titles); // the blank has no edge and is not drawn
        const AXafsData& data = *loaded.panel().RefFile2->data();
        const QVector<double> muts =
            plainCsv::numbers(lines, QStringLiteral("Ref 2 | ref2.dat | mut"));
        QCOMPARE(muts.size(), static_cast<int>(data.points.size()));
        for (int i = 0; i < muts.size(); ++i) {
            const SpectrumPoint& point = data.points[static_cast<std::size_t>(i)];
            const double pre = data.preVic.at(point.energy);
            COMPARE_EXACT(muts[i], (point.mut - pre) / (data.postVic.at(point.energy) - pre));
        }
        QCOMPARE(plainCsv::column(lines, QStringLiteral("Mark")),
                 QStringLiteral("Edge,Pre Edge End,Post Edge Start,No. 1,No. 2,No. 3,No. 4,No. 5,"
                                "No. 6,No. 7,No. 8")
                     .split(QLatin1Char(',')));
        QCOMPARE(plainCsv::column(lines, QStringLiteral("Eng.[eV]")),
                 QStringLiteral("8350,8300,8450,8313,8381,8390,8404.5,8460,8475,0,0")
                     .split(QLatin1Char(',')));
        QCOMPARE(plainCsv::column(lines, QStringLiteral("T.Ratio.")).join(QString()),
                 QStringLiteral("11010000"));
    }

    void fitsAsNumbers()
    {
        LoadedPanel loaded(false);
        FourPs& panel = loaded.panel();
        panel.clearLCFvs4PS(nullptr);
        panel.calcBoth();
        panel.TargetFile->setFile(loaded.file("ref1.dat"));
        const auto lines = csv(loaded, Id::DispLCFvs4PS);
        QCOMPARE(plainCsv::column(lines, QStringLiteral("Target")),
                 QStringList({QStringLiteral("target.dat"), QStringLiteral("ref1.dat")}));
        const QVector<double> lcf = plainCsv::numbers(lines, QStringLiteral("LCF"));
        const QVector<double> points = plainCsv::numbers(lines, QStringLiteral("4ps"));
        for (int i = 0; i < 2; ++i) {
            COMPARE_EXACT(lcf[i], panel.fits()[static_cast<std::size_t>(i)].lcfValence);
            COMPARE_EXACT(points[i], panel.fits()[static_cast<std::size_t>(i)].psValence);
        }
    }

    void histogramAsNumbers()
    {
        LoadedPanel loaded;
        const auto lines = csv(loaded, Id::DispHistA);
        const QString files = QStringLiteral("map_0.dat; map_1.dat; map_2.dat; map_3.dat | ");
        const QVector<double> from =
            plainCsv::numbers(lines, files + QStringLiteral("Valence | from"));
        const QVector<double> centres =
            plainCsv::numbers(lines, files + QStringLiteral("Valence | centre"));
        const QVector<double> to = plainCsv::numbers(lines, files + QStringLiteral("Valence | to"));
        const QVector<double> counts = plainCsv::numbers(lines, files + QStringLiteral("Num."));
        QCOMPARE(counts.size(), 43); // with those below and above
        const MapResults& map = loaded.panel().lastMap();
        double sum = 0.0;
        for (int i = 0; i < counts.size(); ++i) {
            sum += counts[i];
            // From 1.5 to 3.5 in steps of 0.05, and half a step around.
            QVERIFY(std::fabs(centres[i] - (1.45 + 0.05 * i)) < 1e-9);
            QVERIFY(std::fabs(from[i] - centres[i] + 0.025) < 1e-9);
            QVERIFY(std::fabs(to[i] - centres[i] - 0.025) < 1e-9);
            int inside = 0;
            for (std::size_t k = 0; k < map.size(); ++k) {
                const double valence = 2.0 * map.a[k] + 3.0 * (1.0 - map.a[k]);
                inside += valence >= from[i] && valence < to[i];
            }
            QCOMPARE(counts[i], double(inside));
        }
        QCOMPARE(sum, 600.0);
        QVERIFY(
            csv(loaded, Id::DispHistT).first().contains(files + QStringLiteral("Thick. | centre")));
    }

    void thicknessAgainstValenceAsNumbers()
    {
        LoadedPanel loaded;
        const auto lines = csv(loaded, Id::DispTA);
        const QString files = QStringLiteral("map_0.dat; map_1.dat; map_2.dat; map_3.dat | ");
        const QVector<double> x = plainCsv::numbers(lines, QStringLiteral("first position"));
        const QVector<double> y = plainCsv::numbers(lines, QStringLiteral("second position"));
        const QVector<double> valences =
            plainCsv::numbers(lines, files + QStringLiteral("Valence"));
        const QVector<double> t = plainCsv::numbers(lines, files + QStringLiteral("Thick."));
        const MapResults& map = loaded.panel().lastMap();
        QCOMPARE(t.size(), 600);
        for (int i = 0; i < 600; ++i) {
            const auto pixel = static_cast<std::size_t>(i);
            COMPARE_EXACT(x[i], double(i % 30));
            COMPARE_EXACT(y[i], double(i / 30));
            COMPARE_EXACT(valences[i], 2.0 * map.a[pixel] + 3.0 * (1.0 - map.a[pixel]));
            COMPARE_EXACT(t[i], map.t[pixel]);
        }
    }

    void fourPointsAsNumbers()
    {
        LoadedPanel loaded(false);
        const auto lines = csv(loaded, Id::DispM2M3);
        const QStringList names = plainCsv::column(lines, QStringLiteral("Place"));
        const QVector<double> m2 = plainCsv::numbers(lines, QStringLiteral("ref1.dat | M2"));
        const QVector<double> m3 = plainCsv::numbers(lines, QStringLiteral("ref2.dat | M3"));
        QCOMPARE(names.mid(8),
                 QStringList({QStringLiteral("pure Ref 1"), QStringLiteral("pure Ref 2"),
                              QStringLiteral("Target")}));
        for (int i = 0; i < 8; ++i) {
            // With a Victreen line subtracted the references keep the blank.
            COMPARE_EXACT(m2[i], loaded.panel().ePoints[i]->row().reference1());
            COMPARE_EXACT(m3[i], loaded.panel().ePoints[i]->row().reference2());
        }
        QCOMPARE(plainCsv::column(lines, QStringLiteral("V.Point")).join(QString()),
                 QStringLiteral("00100000"));
        // What the lengths show is the fraction that the method finds.
        const double a = (m3[10] - m3[9]) / (m3[8] - m3[9]);
        QVERIFY(std::fabs(a - loaded.panel().lastA()) < 1e-6);
    }

    void fileNameWithCommaAndQuotes()
    {
        LoadedPanel loaded(false);
        const QString name = QStringLiteral("a, \"b\".dat");
        QFile::copy(loaded.file("ref1.dat"), m_dir.filePath(name));
        loaded.panel().RefFile1->setFile(m_dir.filePath(name));
        const auto lines = csv(loaded, Id::DispRef1);
        QCOMPARE(lines[0][0], QStringLiteral("Ref 1 | %1 | Eng.[eV]").arg(name));
    }

    void rangeIsReset()
    {
        LoadedPanel loaded(false);
        const QImage before = loaded.picture(Id::DispLCFvs4PS);
        const std::size_t fits = loaded.panel().fits().size();
        QVERIFY(fits > 0);
        canvas::move(loaded.area(Id::DispLCFvs4PS), QPointF(80, 80), Qt::NoButton);
        canvas::wheel(loaded.area(Id::DispLCFvs4PS), QPointF(80, 80), QPoint(0, 120));
        QVERIFY(loaded.picture(Id::DispLCFvs4PS) != before);
        choose(loaded.area(Id::DispLCFvs4PS), "ResetRange");
        QCOMPARE(loaded.picture(Id::DispLCFvs4PS), before);
        QCOMPARE(loaded.panel().fits().size(), fits);
    }

    void menuIsThatOfTheRightButton_data() { addGraphs(); }
    void menuIsThatOfTheRightButton()
    {
        QFETCH(int, position);
        LoadedPanel loaded;
        DispArea* area = loaded.area(position);
        const QImage before = loaded.picture(position);
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(50, 50),
                                area->mapToGlobal(QPoint(50, 50)));
        QApplication::sendEvent(area, &event);
        const auto* menu = area->findChild<GraphMenu*>();
        QCOMPARE(QApplication::activePopupWidget(), menu);
        QStringList names;
        QSet<QChar> mnemonics;
        for (const QAction* action : menu->actions()) {
            if (action->isSeparator())
                continue;
            names << action->objectName();
            mnemonics << action->text().at(action->text().indexOf(QLatin1Char('&')) + 1).toLower();
        }
        QStringList expected = {QStringLiteral("CopyPicture"), QStringLiteral("SavePicture"),
                                QStringLiteral("SaveData"), QStringLiteral("ResetRange")};
        if (position >= Id::DispHistA && position <= Id::DispTA)
            expected << QStringLiteral("ShowMap");
        QCOMPARE(names, expected);
        QCOMPARE(mnemonics.size(), names.size());
        QVERIFY(!mnemonics.contains(QLatin1Char('&')));
        QCOMPARE(menu->accessibleName(), loaded.graph(position)->Title->text());
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        QVERIFY(!menu->isVisible());
        QCOMPARE(loaded.picture(position), before);
    }

    void nothingIsSavedOfAnEmptyGraph_data() { addGraphs(); }
    void nothingIsSavedOfAnEmptyGraph()
    {
        QFETCH(int, position);
        FourPs panel;
        for (const char* entry : {"CopyPicture", "SavePicture", "SaveData"}) {
            const int lines = user::messages(panel).size();
            QApplication::clipboard()->clear();
            choose(panel.displays->panel(position)->DispA, entry);
            QCOMPARE(user::messagesSince(panel, lines),
                     QStringList(QStringLiteral("There is nothing in the graph yet.")));
            QVERIFY(!panel.fileQuestion().dialog()->isVisible());
            QVERIFY(QApplication::clipboard()->image().isNull());
        }
    }

    void filesThatAreShownAreNotWrittenOver()
    {
        LoadedPanel loaded;
        const QString map = loaded.file("map_2.dat");
        const QByteArray before = contents(map);
        const QString link = path("link.csv"); // to a file that is read
        QVERIFY(QFile::link(map, link));
        for (const char* entry : {"SavePicture", "SaveData"}) {
            const int lines = user::messages(loaded.panel()).size();
            const QString place = entry == QByteArray("SaveData") ? link : path("link.png");
            if (place != link)
                QVERIFY(QFile::link(loaded.file("target.dat"), place));
            saveAs(loaded, Id::DispTA, entry, place);
            QCOMPARE(
                user::messagesSince(loaded.panel(), lines),
                QStringList(QStringLiteral("The file [%1] is one that is shown: choose another "
                                           "name.")
                                .arg(place)));
        }
        QCOMPARE(contents(map), before);
    }

    void whatCannotBeWrittenIsTold()
    {
        LoadedPanel loaded;
        QSignalSpy written(&loaded.panel(), &FourPs::written);
        for (const char* entry : {"SavePicture", "SaveData"}) {
            const QString suffix =
                QString::fromLatin1(entry == QByteArray("SaveData") ? "csv" : "pdf");
            const QString place = path("nowhere/graph.") + suffix;
            const int lines = user::messages(loaded.panel()).size();
            saveAs(loaded, Id::DispMuts, entry, place);
            QCOMPARE(user::messagesSince(loaded.panel(), lines),
                     QStringList(QStringLiteral("Can't open the file [%1]").arg(place)));
        }
        QCOMPARE(written.size(), 0);
    }

    void nameIsTypedInTheDialog_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("file");
        const auto row = [](const char* filter, const char* typed, const char* file) {
            QTest::newRow(typed) << QString::fromLatin1(filter) << QString::fromLatin1(typed)
                                 << QString::fromLatin1(file);
        };
        row("PNG (*.png)", "plain", "plain.png");
        row("SVG (*.svg)", "drawing", "drawing.svg");
        row("SVG (*.svg)", "page.pdf", "page.pdf");
        row("PDF (*.pdf)", "of.another", "of.another.pdf");
    }
    void nameIsTypedInTheDialog()
    {
        QFETCH(QString, filter);
        QFETCH(QString, typed);
        QFETCH(QString, file);
        LoadedPanel loaded(false);
        QSignalSpy written(&loaded.panel(), &FourPs::written);
        choose(loaded.area(Id::DispMuts), "SavePicture");
        QFileDialog* dialog = loaded.panel().fileQuestion().dialog();
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QCOMPARE(name->text(), QStringLiteral("Muts"));
        dialog->selectNameFilter(filter);
        name->setText(m_dir.filePath(typed));
        QTest::keyClick(name, Qt::Key_Return);
        QCOMPARE(written, QList<QVariantList>{{m_dir.filePath(file)}});
        QVERIFY(!dialog->isVisible());
    }

    void questionGoesWithTheMainWindow()
    {
        Body body;
        body.show();
        FourPs& panel = *body.panel();
        LoadedPanel example(false);
        panel.TargetFile->setFile(example.file("target.dat"));
        choose(panel.displays->panel(Id::DispTarget)->DispA, "SaveData");
        QVERIFY(panel.fileQuestion().dialog()->isVisible());
        body.close();
        QVERIFY(!panel.fileQuestion().dialog()->isVisible());
    }
};

QTEST_MAIN(tst_Exports)
#include "tst_Exports.moc"
