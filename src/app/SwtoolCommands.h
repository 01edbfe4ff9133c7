#pragma once
// The commands of swtool that read songs and their files; each returns the exit code.

#include <QStringList>

// swtool lyrics FILE [--editor] [--write OUT]
int PrintLyrics(const QStringList& args);
// swtool probe FILE
int PrintProbe(const QStringList& args);
