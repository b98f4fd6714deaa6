#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// The library's debug stream while the program runs. It is for who looks for the cause of a failure, and
/// shown only when it was asked for; but it alone says which EF is being read, and which one could not be.
namespace LibraryLog {

/// Takes the debug stream over, once, at the start of the program.
void install();

/// Shows the debug stream on standard error from now on (--verbose).
void show();
bool isShown();

/// Forgets what was said so far of the EFs and of the card.
void restart();

/// The EF that was named last; empty before the first.
QString currentEf();

/// The EFs that could not be read, in their order.
QStringList unreadableEfs();

/// The generation of the card that was identified last: the reader's signals tell its type only.
bool isSecondGeneration();
bool isVersion2();

/// Calls @p listener, on the thread that reads, whenever the next EF is begun; an empty one ends it.
void setEfListener(std::function<void(const QString& ef)> listener);

/// Calls @p listener, on the thread that reads, before each selection on the card; an empty one ends it.
void setSelectionListener(std::function<void()> listener);

} // namespace LibraryLog
