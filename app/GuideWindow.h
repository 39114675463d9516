#pragma once

#include <QTextBrowser>

/// The guide in a window of the program: it needs neither a browser nor a network, and nothing
/// waits for it.
class GuideWindow : public QTextBrowser
{
    Q_OBJECT

public:
    /// @param page  path of the page to begin with
    explicit GuideWindow(const QString& page);

    /// The list of the guide's pages, where the program is installed or built.
    /// @param folder  of the program
    /// @return the path; empty where the guide is not there
    static QString firstPage(const QString& folder, bool japanese);
};
