#include "LibraryLog.h"

#include "Console.h"

#include <QtGlobal>

namespace LibraryLog {

namespace {

bool shown = false;
QString efBeingRead;
QStringList efsNotRead;
std::function<void(const QString&)> efListener;
std::function<void()> selectionListener;
bool secondGeneration = false;
int structureVersion = 0;

void receiveIdentification(const QString& text)
{
    const QLatin1String version("Card Structure Version: ");
    const QLatin1String generation("Card Generation: ");
    if (text.startsWith(version))
        structureVersion = text.mid(version.size()).toInt();
    if (text.startsWith(generation))
        secondGeneration = text.mid(generation.size()) == QLatin1String("second generation");
}

void receive(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    // "\nEF_Places" begins an EF; "Error reading m_EF_Places: …" says that it failed, where some names are
    // spelled otherwise.
    if (text.startsWith(QLatin1String("\nEF_"))) {
        efBeingRead = text.mid(1).trimmed();
        if (efListener)
            efListener(efBeingRead);
    }
    if (text.startsWith(QLatin1String("Error reading Generic "))) // while the card is identified
        efsNotRead << QStringLiteral("EF_Application_Identification");
    else if (text.startsWith(QLatin1String("Error reading ")))
        efsNotRead << efBeingRead;
    receiveIdentification(text);
    if (selectionListener && text.startsWith(QLatin1String("ScSelectFile: ")))
        selectionListener();
    if (type != QtDebugMsg || shown)
        err() << text << Qt::endl;
}

} // namespace

void install()
{
    qInstallMessageHandler(receive);
}

void show()
{
    shown = true;
}

bool isShown()
{
    return shown;
}

void restart()
{
    efBeingRead.clear();
    efsNotRead.clear();
    secondGeneration = false;
    structureVersion = 0;
}

QString currentEf()
{
    return efBeingRead;
}

QStringList unreadableEfs()
{
    return efsNotRead;
}

bool isSecondGeneration()
{
    return secondGeneration;
}

bool isVersion2()
{
    // Structure version bytes 01 01; the library counts them low byte first.
    constexpr int firstVersion = 256;
    return secondGeneration && structureVersion > firstVersion;
}

void setEfListener(std::function<void(const QString&)> listener)
{
    efListener = std::move(listener);
}

void setSelectionListener(std::function<void()> listener)
{
    selectionListener = std::move(listener);
}

} // namespace LibraryLog
