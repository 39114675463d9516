#pragma once

#include <QStringList>
#include <QTranslator>

/// The catalogue of the user interface. An entry that was left empty on purpose (a number, a
/// bracket) keeps its English text, where the toolkit would show nothing.
class Catalogue : public QTranslator
{
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override;
};

/// Whether the command line asks for Japanese: the last of "-j" and "-e" counts, Japanese without
/// either, anything else is ignored.
/// @param arguments  the program's name first
bool wantsJapanese(const QStringList& arguments);
