#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "LibraryLog.h"
#include "reader/CardFailure.h"
#include "reader/ReaderSurvey.h"

#include <algorithm>

namespace {

void printLine(const char* what, const QString& finding)
{
    out() << what << ": " << printable(finding) << '\n';
}

void printAdvice(const QString& advice)
{
    out() << "  " << advice << '\n';
}

ExitCode tellFailure(const char* what, const aux::Error& chain)
{
    FailureScene scene;
    scene.ef = LibraryLog::currentEf();
    const CardFailure failure = cardFailureOf(chain, scene);
    printLine(what, failure.message);
    printAdvice(failure.advice);
    out().flush();
    printChain(chain);
    return failure.code;
}

QString stateOf(const ReaderSeen& reader)
{
    if (!reader.hasCard())
        return QStringLiteral("no card");
    if (reader.isExclusive())
        return QStringLiteral("card, held by another program");
    if (reader.isMute() || reader.isUnpowered())
        return QStringLiteral("card that does not answer");
    return reader.isInUse() ? QStringLiteral("card, in use") : QStringLiteral("card");
}

void printReaders(const ReaderSurvey& survey)
{
    for (const ReaderSeen& reader : survey.readers) {
        const bool isUsed = &reader == &survey.readers.front();
        printLine(
            "Reader", reader.nameText() + (isUsed ? QStringLiteral(" (used): ") : QStringLiteral(": ")) +
                          stateOf(reader));
    }
}

ExitCode noCard(const ReaderSurvey& survey)
{
    printLine("Card", QStringLiteral("There is no card in the reader that is used."));
    const auto other = std::find_if(
        survey.readers.begin(), survey.readers.end(), [](const ReaderSeen& each) { return each.hasCard(); });
    if (other == survey.readers.end())
        printAdvice(
            QStringLiteral("Put the card into %1, chip first.").arg(survey.readers.front().nameText()));
    else
        printAdvice(QStringLiteral("Put the card of %1 into %2, or unplug the other readers.")
                        .arg(other->nameText(), survey.readers.front().nameText()));
    return exitNoCard;
}

ExitCode lookAtCard(const ReaderSeen& reader)
{
    if (reader.isInUse() && !reader.isExclusive()) {
        // What it selects on the card would spoil what the other program reads.
        printLine("Card", QStringLiteral("Another program is connected to the card; it is not disturbed."));
        printAdvice(QStringLiteral("To look at the card, end that program and try again."));
        return exitDone;
    }
    LibraryLog::restart();
    const IdentifiedCard identified = identifyCard(reader);
    if (!identified.failure.isEmpty())
        return tellFailure("Card", identified.failure);
    printLine("Card", identified.card->text());
    return exitDone;
}

ExitCode lookAtEverything()
{
    const ReaderSurvey survey = lookAtReaders();
    if (!survey.serviceReachable)
        return tellFailure("Card service", survey.failure);
    printLine("Card service", QStringLiteral("answers"));
    if (!survey.failure.isEmpty())
        return tellFailure("Reader", survey.failure);
    printReaders(survey);
    const ReaderSeen& first = survey.readers.front();
    return first.hasCard() ? lookAtCard(first) : noCard(survey);
}

} // namespace

ExitCode runDoctor(const QStringList& arguments)
{
    Arguments given(
        QStringLiteral("scard doctor"),
        QStringLiteral(
            "Looks at the card service, the readers and the card, and says what to do about what is "
            "wrong. Names nobody. Ends with 0 when a card can be downloaded, 2 without service or "
            "reader, 3 without a card, 4 when the card cannot be used."));
    if (const std::optional<ExitCode> end = given.read(arguments))
        return *end;
    const QStringList beside = given.positional();
    if (!beside.isEmpty())
        return given.usageError(QStringLiteral("unexpected argument \"%1\".").arg(beside.front()));
    return finishOutput(lookAtEverything());
}
