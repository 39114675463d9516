#pragma once

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class QFileDialog;

/// Asks for a file in a dialog that nothing waits for: what is to be done with the file
/// is called when one is chosen. A new question takes the place of one that is open. The folder of
/// the last answer is where the next question begins.
class FileQuestion : public QObject
{
    Q_OBJECT

public:
    using Answer = std::function<void(const QString& path)>;

    /// A kind of file: "PNG" and "png".
    struct Kind {
        QString name;
        QString suffix;
    };

    explicit FileQuestion(QObject* parent = nullptr);
    ~FileQuestion() override;

    /// Asks under which name a file is to be written. A name without the suffix of a kind gets that
    /// of the kind chosen in the dialog, at first the first one.
    /// @param name  proposed, without suffix
    void askToSave(const QString& title, const QString& name, const std::vector<Kind>& kinds,
                   const Answer& answer);

    /// Asks for a file that is there.
    void askToOpen(const QString& title, const std::vector<Kind>& kinds, const Answer& answer);

    /// Nothing is chosen.
    void close();

    QFileDialog* dialog(); ///< made when first asked for

private:
    void ask(const QString& title, const std::vector<Kind>& kinds, const Answer& answer);
    QString withSuffix(const QString& path) const;
    void finish(const QString& path);

    std::unique_ptr<QFileDialog> m_dialog;
    std::vector<Kind> m_kinds;
    Answer m_answer;
};
