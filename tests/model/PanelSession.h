#pragma once

#include "tests/model/PanelModel.h"
#include "tests/model/RandomFiles.h"

#include <QMap>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

#include <memory>

class AFileSelect;
class FourPs;
class QAbstractButton;
class QLineEdit;

/// A person at the real panel who does one thing after another at random, and the model that is
/// told of each. What differs between the two is put into words.
class PanelSession
{
public:
    /// @param broken  some of the session's files are, and not everything is loaded at the start
    PanelSession(quint32 seed, const QString& folder, bool broken = true);
    ~PanelSession();

    /// One act. False if the panel and the model differ afterwards.
    bool step();
    // Single acts, compared likewise.
    bool type(const QString& field, const QString& text);
    bool push(const QString& button);
    bool drop(const QString& selector, const QString& path);

    FourPs& panel() { return *m_panel; }
    QStringList fields() const { return m_edits.keys(); }
    QString text(const QString& field) const { return m_model.texts.value(field); }
    const RandomFiles& files() const { return m_files; }

    /// The differences and all acts that led to them.
    QString report() const;
    QStringList messages() const { return m_model.messages; }
    int drags() const { return m_drags; }
    int written() const { return m_written; }

private:
    using Act = void (PanelSession::*)();

    int below(int limit) { return m_random.bounded(limit); }
    bool chance(int percent) { return below(100) < percent; }
    QString anyOf(const QStringList& list) { return list.at(below(list.size())); }
    QString anyRow(const char* field) { return literal::PanelModel::inRow(1 + below(8), field); }

    void nameWidgets();
    void nameRow(int row);
    void listen(const QString& name, QLineEdit* edit);
    Act chooseAct();

    void setUp(bool everything);
    bool agree();
    void dropSpectrum();
    void dropImage();
    void chooseInDialog();
    void chooseImages();
    void chooseDisplayFiles();
    void selectDisplayFile();
    void clearSelector();
    void clickRow();
    void clickOption();
    void pushButton();
    void writeResults();
    void typeEnergy();
    void typeEdge();
    void typeSetting();
    void typeMut();
    void dragLine();
    void showGraphs();

    void act(const QString& description) { m_acts.append(description); }
    void click(const QString& name);
    void typeInto(const QString& name, const QString& text);
    void dropOn(const QString& selector, const QString& path);
    void mouse(QWidget* widget, int type, QPoint at, Qt::MouseButtons held);
    QString oddText();

    void compare();
    void differ(const QString& what, const QString& is, const QString& expected);
    void compareMessages();
    void compareDisplayFiles();
    void compareOutput();
    QMap<QString, QByteArray> outputFiles() const;

    QRandomGenerator m_random;
    QString m_folder;
    RandomFiles m_files;
    literal::PanelModel m_model; // told of fields that are left until the panel is gone
    std::unique_ptr<FourPs> m_panel;
    QMap<QString, QLineEdit*> m_edits;
    QMap<QString, QAbstractButton*> m_buttons;
    QMap<QString, AFileSelect*> m_selectors;
    QMap<QString, QByteArray> m_expectedFiles;
    QStringList m_acts;
    QStringList m_differences;
    int m_drags = 0;
    int m_written = 0;
};
