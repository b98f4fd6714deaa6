#pragma once

#include "ExitCode.h"

#include <QByteArray>
#include <QString>

/// The bytes of a download file, or why it is none at first sight.
struct FileBytes
{
    QByteArray bytes;
    ExitCode code = exitDone;
    QString message; ///< what is wrong, one sentence; empty when there are bytes
    QString advice;
};

/// Reads a file that a user named.
FileBytes readFile(const QString& path);
