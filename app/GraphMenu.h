#pragma once

#include "display/Displays.h"

#include <QMenu>

class FileQuestion;
class FourPs;

/// The context menu of a graph: its picture and its numbers as files, and the whole range again.
/// Belongs to the canvas.
class GraphMenu : public QMenu
{
    Q_OBJECT

public:
    /// @param question  has to stay as long as the canvas
    GraphMenu(FourPs& panel, DispABase& graph, Displays::DispId id, FileQuestion& question);

private:
    void addEntry(const char* name, const QString& text, void (GraphMenu::*entry)());
    void copyPicture();
    void savePicture();
    void saveData();
    void resetRange();

    void writePicture(const QString& path);
    void writeData(const QString& path);
    bool hasData();
    /// Says why a file cannot be written here; nothing that is shown is written over.
    bool mayWrite(const QString& path);

    FourPs& m_panel;
    DispABase& m_graph;
    DispArea& m_canvas;
    Displays::DispId m_id;
    FileQuestion& m_question;
};
