#pragma once

#include <QStringList>

namespace test {

/// What went to the Qt debug stream since the test began (or since clear()).
class DebugStream
{
  public:
    static QStringList lines();
    static bool contains(const QString& line);
    static void clear();

    /// A warning with this text must come once in this test; any other warning fails it.
    static void expectWarning(const QString& text);
};

} // namespace test
