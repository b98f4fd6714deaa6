#include "VerificationText.h"

#include "../CardNames.h"
#include "../Console.h"
#include "../ImageFile.h"
#include "VerificationWords.h"

#include <scard/ElementaryFile.h>

#include <algorithm>

using namespace scard::verify;

namespace {

QString textOf(Word word)
{
    return QString::fromLatin1(word.text);
}

QString efNameOf(unsigned short fid, Generation generation)
{
    const QString name = scard::efName(fid, generation == Generation::Second);
    return name.isEmpty() ? QStringLiteral("unknown EF") : name;
}

QString dayText(const QDateTime& time)
{
    return time.date().toString(Qt::ISODate);
}

QString validityText(const CertificateReport& certificate)
{
    QStringList limits;
    if (certificate.validFrom.isValid())
        limits << QStringLiteral("from ") + dayText(certificate.validFrom);
    if (certificate.validUntil.isValid())
        limits << QStringLiteral("until ") + dayText(certificate.validUntil);
    return limits.join(QLatin1Char(' '));
}

/// A line of cells, padded to @p widths; the last is as long as it is.
void writeRow(QTextStream& stream, const QStringList& cells, std::initializer_list<int> widths)
{
    QString line = QStringLiteral("  ");
    const int* width = widths.begin();
    for (const QString& cell : cells)
        line += width == widths.end() ? cell : cell.leftJustified(*width++) + QStringLiteral("  ");
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    stream << line << '\n';
}

void writeChain(QTextStream& stream, const std::vector<CertificateReport>& chain)
{
    const auto write = [&stream](const QStringList& cells) { writeRow(stream, cells, {23, 23, 13, 15}); };
    write(
        {QStringLiteral("key of"), QStringLiteral("identifier"), QStringLiteral("certificate"),
         QStringLiteral("algorithm"), QStringLiteral("valid")});
    for (const CertificateReport& each : chain)
        write(
            {textOf(wordFor(each.role)), keyIdentifierText(each.holder), textOf(wordFor(each.verdict)),
             each.algorithm, validityText(each)});
}

void writeRecords(QTextStream& stream, const ApplicationReport& application)
{
    const auto write = [&stream](const QStringList& cells) { writeRow(stream, cells, {4, 33, 6}); };
    write(
        {QStringLiteral("FID"), QStringLiteral("EF"), QStringLiteral(" bytes"), QStringLiteral("signature")});
    for (const RecordReport& each : application.records)
        write(
            {fidText(each.fid), efNameOf(each.fid, application.generation),
             QString::number(each.length).rightJustified(6), textOf(wordFor(each.signature))});
}

void writeApplication(QTextStream& stream, const ApplicationReport& application)
{
    QString heading = applicationName(application.generation);
    heading[0] = heading[0].toUpper();
    if (application.cardType != 0)
        heading +=
            QStringLiteral(", ") + cardTypeName(static_cast<scard::SCardMeta::Type>(application.cardType));
    stream << '\n'
           << heading << ": " << textOf(wordFor(application.verdict)) << ", "
           << application.count(SignatureVerdict::Valid) << " of " << application.signedRecords()
           << " signatures hold\n";
    writeChain(stream, application.chain);
    stream << '\n';
    writeRecords(stream, application);
}

/// A finding with the application that it is about.
struct Reason
{
    Severity severity;
    QString text;
};

/// The heaviest first.
std::vector<Reason> reasonsOf(const VerificationReport& report)
{
    std::vector<Reason> reasons;
    for (const Finding& each : report.findings)
        reasons.push_back({each.severity, each.text});
    for (const ApplicationReport& application : report.applications) {
        for (const Finding& each : application.findings)
            reasons.push_back(
                {each.severity, applicationName(application.generation) + QStringLiteral(": ") + each.text});
    }
    std::stable_sort(reasons.begin(), reasons.end(), [](const Reason& one, const Reason& other) {
        return one.severity > other.severity;
    });
    return reasons;
}

void writeUncovered(QTextStream& stream, const VerificationReport& report)
{
    stream << "\nBytes that nothing vouches for:\n";
    writeRow(
        stream,
        {QStringLiteral("offset"), QStringLiteral(" bytes"), QStringLiteral("of"),
         QStringLiteral("generation")},
        {8, 6, 33});
    for (const UncoveredPart& each : report.uncovered)
        writeRow(
            stream,
            {QString::number(each.offset).rightJustified(8), QString::number(each.length).rightJustified(6),
             efNameOf(each.fid, each.generation), QString::number(static_cast<int>(each.generation))},
            {8, 6, 33});
}

} // namespace

void writeVerification(QTextStream& stream, const VerifiedFile& file)
{
    const Verification& verification = file.verification;
    stream << printable(file.path) << ": " << verdictSentence(verification) << '\n';
    if (verification.downloadedAt.isValid())
        stream << "Downloaded " << verification.downloadedAt.toString(QStringLiteral("yyyy-MM-dd HH:mm"))
               << " UTC, by the file's name. ";
    stream << "SHA-256 " << file.sha256 << '\n';
    for (const ApplicationReport& each : verification.report.applications)
        writeApplication(stream, each);
    if (!reasonsOf(verification.report).empty())
        stream << "\nReasons:\n";
    writeReasons(stream, verification);
    if (!verification.report.uncovered.empty())
        writeUncovered(stream, verification.report);
}

void writeReasons(QTextStream& stream, const Verification& verification)
{
    for (const Reason& each : reasonsOf(verification.report))
        writeRow(stream, {textOf(wordFor(each.severity)), each.text}, {12});
}
