#pragma once

#include <QCoreApplication>

#include <memory>

/// What a program needs that paints pictures: fonts, but no display, whatever the environment
/// names. Takes the place of a QCoreApplication, which must be gone.
std::unique_ptr<QCoreApplication> pictureApplication(int& argc, char** argv);
