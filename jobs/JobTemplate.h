#pragma once

#include <QByteArray>

/// A job with all keys and what they mean, to begin with. What excludes one another, or is seldom
/// wanted, is commented out. It is a job as it stands, of files that are not there.
QByteArray jobTemplate();
